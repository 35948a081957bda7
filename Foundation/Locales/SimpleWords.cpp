#include "Foundation/Locales/SimpleWords.h"

#include <array>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <Foundation/Locales/UnitPages.h>

namespace {

enum class Kind : std::uint8_t {
  letter,
  digit,
  // Joins letters and digits, and what begins with it is a word all the same.
  underscore,
  // A letter that leaves the capital to the next one, as the okina does.
  modifier,
  // Stands alone.
  separator,
  // A word may begin after it whatever stands in front of it.
  space,
  // The rest takes a second look.
  // A letter whose title case is more than a unit.
  untitled,
  // Joins two letters.
  apostrophe,
  // Joins two letters in some languages.
  stop,
  // What only ICU can tell the words or the cases of.
  other,
};

// Whether a map of the unit alone gives one unit.
template <class Map>
bool isUnit(char16_t source, Map map) {
  std::array<char16_t, 4> room;
  UErrorCode status = U_ZERO_ERROR;
  return map(room.data(), 4, &source, 1, "", &status) == 1 && U_SUCCESS(status);
}

// Of Latin, Greek and Cyrillic: no dictionary divides these. Sigma is small in two ways.
bool isSimpleLetter(char16_t unit) {
  const bool isOfScripts = unit < 0x530 || (unit >= 0x1E00 && unit < 0x2000);
  return isOfScripts && u_isalpha(unit) != 0 && unit != u'Σ' && isUnit(unit, u_strToLower);
}

bool isModifier(char16_t unit) {
  return u_charType(unit) == U_MODIFIER_LETTER && u_hasBinaryProperty(unit, UCHAR_CASED) == 0;
}

// Punctuation, symbols and spaces, but not those of scripts that a dictionary divides.
bool isSeparator(char16_t unit) {
  constexpr std::uint32_t separators = U_GC_P_MASK | U_GC_S_MASK | U_GC_ZS_MASK;
  return unit < 0x2100 && (U_GET_GC_MASK(unit) & separators) != 0 &&
         u_getIntPropertyValue(unit, UCHAR_LINE_BREAK) != U_LB_COMPLEX_CONTEXT;
}

Kind kindOf(char16_t unit) {
  switch (unit) {
    case u' ':
    case u'\t':
    case u'\n':
    case u'\r':
      return Kind::space;
    case u'\'':
    case u'‘':
    case u'’':
      return Kind::apostrophe;
    case u'_':
      return Kind::underscore;
    case u'.':
    case u':':
      return Kind::stop;
    case u'"':
      return Kind::separator;
    case u'@':
      // ICU does not divide addresses by it, though Unicode's property does.
      return Kind::other;
    default:
      break;
  }
  switch (u_getIntPropertyValue(unit, UCHAR_WORD_BREAK)) {
    case U_WB_ALETTER:
      if (!isSimpleLetter(unit)) return Kind::other;
      if (isModifier(unit)) return Kind::modifier;
      // No title case is longer than the upper case.
      return isUnit(unit, u_strToUpper) ? Kind::letter : Kind::untitled;
    case U_WB_NUMERIC:
      return unit < 0x80 ? Kind::digit : Kind::other;
    case U_WB_MIDNUM:
    case U_WB_OTHER:
      return isSeparator(unit) ? Kind::separator : Kind::other;
    default:
      return Kind::other;
  }
}

struct Page {
  explicit Page(char16_t first) {
    for (std::uint32_t k = 0; k < kinds.size(); ++k) {
      const auto unit = static_cast<char16_t>(first + k);
      kinds[k] = kindOf(unit);
      cases[0][k] = static_cast<char16_t>(u_totitle(unit));
      cases[1][k] = static_cast<char16_t>(u_tolower(unit));
    }
  }

  std::array<Kind, 256> kinds{};
  // At the start of a word, and inside.
  std::array<std::array<char16_t, 256>, 2> cases{};
};

using Pages = NSUnitPages<Page>;

Kind kindAt(std::u16string_view text, std::size_t at) {
  return at < text.size() ? Pages::of(text[at]).kinds[text[at] & 0xFFU] : Kind::separator;
}

bool isLetter(Kind kind) {
  return kind == Kind::letter || kind == Kind::modifier || kind == Kind::untitled;
}

}  // namespace

std::size_t NSCapitalizeSimpleWords(std::u16string_view text, char16_t* out) {
  std::size_t safe = 0;
  bool isInWord = false;
  Kind last = Kind::separator;
  const Page* page = nullptr;
  char16_t pageStart = 0xFFFF;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = text[at];
    if ((unit & 0xFF00U) != pageStart) {
      pageStart = unit & 0xFF00U;
      page = &Pages::of(unit);
    }
    const Kind kind = page->kinds[unit & 0xFFU];
    out[at] = page->cases[isInWord ? 1 : 0][unit & 0xFFU];
    if (kind > Kind::space) {
      const bool isAmongLetters = isLetter(last) && isLetter(kindAt(text, at + 1));
      if (kind == Kind::other || (kind == Kind::stop && isAmongLetters) ||
          (kind == Kind::untitled && !isInWord)) {
        return safe;
      }
      isInWord = kind == Kind::untitled || (isInWord && isAmongLetters);
    } else {
      // Without branches: words are of any length.
      const bool joins = (kind == Kind::underscore) | (kind == Kind::modifier);
      isInWord = (isInWord & joins) | (kind <= Kind::digit);
    }
    safe = last == Kind::space ? at : safe;
    last = kind;
  }
  return text.size();
}

std::size_t NSLengthOfWords(std::u16string_view text, std::size_t least) {
  bool hasSpace = false;
  for (std::size_t at = least; at < text.size(); ++at) {
    const Kind kind = kindAt(text, at);
    if (hasSpace && kind != Kind::other) return at;
    hasSpace = kind == Kind::space;
  }
  return text.size();
}
