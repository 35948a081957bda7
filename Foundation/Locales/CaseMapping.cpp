#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <Foundation/Locales/UnitPages.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ICU.h>

namespace {

enum Letters : std::size_t { upper, lower };

using Map = std::int32_t (*)(char16_t*, std::int32_t, const char16_t*, std::int32_t, const char*,
                             UErrorCode*);
constexpr std::array<Map, 2> maps = {u_strToUpper, u_strToLower};

// The cases of units that are one unit whatever stands around them.
struct Page {
  // Stands for a unit with another case.
  static constexpr char16_t other = 0xFFFF;

  explicit Page(char16_t first) {
    for (std::uint32_t k = 0; k < 256; ++k) {
      const auto unit = static_cast<char16_t>(first + k);
      for (const Letters letters : {upper, lower}) cases[letters][k] = caseOf(unit, letters);
    }
  }

  static char16_t caseOf(char16_t unit, Letters letters) {
    // Sigma is small in two ways.
    if (NSIsSurrogate(unit) || (letters == lower && unit == u'Σ')) return other;
    std::array<char16_t, 4> room{};
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = maps[letters](room.data(), 4, &unit, 1, "", &status);
    return length == 1 && U_SUCCESS(status) ? room[0] : other;
  }

  std::array<std::array<char16_t, 256>, 2> cases{};
};

constexpr std::size_t blockSize = 16;
// Where the next block is likely to be like the last, so many units go by tables before the next
// is tried as a whole.
constexpr std::size_t tableSize = 4 * blockSize;

// Writes the cases of a block, in vectors, if all its units are ASCII or have no cases.
bool mapSimpleBlock(const char16_t* in, Letters letters, char16_t* out) {
  struct Range {
    char16_t first, count;
  };
  // From Hebrew to Myanmar, punctuation, from CJK radicals to Vai, Hangul.
  constexpr std::array<Range, 4> withoutCases = {
      {{0x0590, 0x0B10}, {0x2000, 0x0100}, {0x2E00, 0x7840}, {0xAC00, 0x2C00}}};
  const char16_t a = letters == upper ? u'a' : u'A';
  std::array<char16_t, blockSize> cases;
  char16_t others = 0;
  for (std::size_t k = 0; k < blockSize; ++k) {
    const char16_t unit = in[k];
    bool isSimple = unit < 0x80;
    for (const auto& [first, count] : withoutCases) {
      isSimple |= static_cast<char16_t>(unit - first) < count;
    }
    others |= isSimple ? 0U : 1U;
    cases[k] = static_cast<char16_t>(unit - a) < 26 ? unit ^ 0x20U : unit;
  }
  if (others != 0) return false;
  std::ranges::copy(cases, out);
  return true;
}

// Writes the cases of units up to the first that has no table, and gives their number.
std::size_t mapUnits(std::u16string_view text, Letters letters, char16_t* out) {
  std::size_t done = 0;
  while (done < text.size()) {
    if (text.size() >= blockSize) {
      // The last block may overlap.
      const std::size_t at = std::min(done, text.size() - blockSize);
      if (mapSimpleBlock(text.data() + at, letters, out + at)) {
        done = at + blockSize;
        continue;
      }
    }
    for (const std::size_t end = std::min(done + tableSize, text.size()); done < end; ++done) {
      const char16_t unit = text[done];
      out[done] = NSUnitPages<Page>::of(unit).cases[letters][unit & 0xFFU];
      if (out[done] == Page::other) return done;
    }
  }
  return done;
}

void appendByICU(std::u16string_view text, Letters letters, const char* language,
                 NSUnitBuffer& result) {
  const std::size_t start = result.size();
  // Few letters become more.
  std::size_t room = text.size() + 16;
  while (true) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length =
        maps[letters](result.extend(room), static_cast<std::int32_t>(room), NSICUText(text),
                      NSICULength(text), language, &status);
    result.truncate(start + (U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0));
    if (status != U_BUFFER_OVERFLOW_ERROR) return NSCheckICU(status);
    room = static_cast<std::size_t>(length);
  }
}

void appendByTables(std::u16string_view text, Letters letters, NSUnitBuffer& result) {
  while (!text.empty()) {
    const std::size_t done = mapUnits(text, letters, result.extend(text.size()));
    result.truncate(result.size() - (text.size() - done));
    text.remove_prefix(done);
    // Of letters without tables as many as follow each other.
    const auto rest = std::ranges::find_if(text, [&](char16_t unit) {
      return NSUnitPages<Page>::of(unit).cases[letters][unit & 0xFFU] != Page::other;
    });
    const auto others = static_cast<std::size_t>(rest - text.begin());
    if (others != 0) appendByICU(text.substr(0, others), letters, "", result);
    text.remove_prefix(others);
  }
}

// Whether the cases of a letter depend on nothing but the letter, unless it is sigma.
bool isWithoutHabits(const std::string& identifier) {
  if (identifier.empty()) return true;
  constexpr std::array<std::string_view, 6> withHabits = {"az", "el", "hy", "hyw", "lt", "tr"};
  std::array<char, ULOC_LANG_CAPACITY> language{};
  UErrorCode ignored = U_ZERO_ERROR;
  uloc_getLanguage(identifier.c_str(), language.data(), ULOC_LANG_CAPACITY, &ignored);
  return std::ranges::find(withHabits, language.data()) == withHabits.end();
}

NSRef<NSString> mapped(std::u16string_view text, Letters letters, const NSRef<NSLocale>& locale) {
  std::array<char16_t, 512> room;
  NSUnitBuffer result{std::span(room)};
  const std::string identifier = locale ? locale->localeIdentifier()->utf8() : "";
  const bool hasSigma = letters == lower && text.find(u'Σ') != std::u16string_view::npos;
  if (!hasSigma && isWithoutHabits(identifier)) {
    appendByTables(text, letters, result);
  } else {
    appendByICU(text, letters, identifier.c_str(), result);
  }
  return NSMake<NSString>(std::move(result));
}

}  // namespace

NSRef<NSString> NSString::uppercaseString() const { return mapped(view(), upper, nullptr); }

NSRef<NSString> NSString::lowercaseString() const { return mapped(view(), lower, nullptr); }

NSRef<NSString> NSString::uppercaseStringWithLocale(const NSRef<NSLocale>& locale) const {
  return mapped(view(), upper, locale);
}

NSRef<NSString> NSString::lowercaseStringWithLocale(const NSRef<NSLocale>& locale) const {
  return mapped(view(), lower, locale);
}

NSRef<NSString> NSString::localizedUppercaseString() const {
  return uppercaseStringWithLocale(NSLocale::currentLocale());
}

NSRef<NSString> NSString::localizedLowercaseString() const {
  return lowercaseStringWithLocale(NSLocale::currentLocale());
}
