#include "benchmarks/Support.h"

#include <array>
#include <bitset>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/edits.h>
#include <unicode/uniset.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QStringMatcher>
#endif

using namespace ZKFoundationExtensions;

namespace {

constexpr std::size_t lineLength = 60;
constexpr std::size_t longLength = std::size_t{1} << 20U;
constexpr std::u16string_view latinLetters = u"etaoinshrdlucmfwypvbgkqjxz";

// Words of 2 to 9 letters, from a fixed seed; `member` stands in place of every n-th unit, of none
// when n is 0.
std::u16string makeText(std::size_t length, std::size_t every, char16_t member,
                        std::u16string_view letters = latinLetters) {
  std::u16string text;
  std::uint32_t seed = 1;
  while (text.size() < length) {
    seed = seed * 1664525U + 1013904223U;
    const std::size_t word = 2 + (seed >> 16U) % 8;
    for (std::size_t k = 0; k < word; ++k) {
      seed = seed * 1664525U + 1013904223U;
      text += letters[(seed >> 16U) % letters.size()];
    }
    text += member == u' ' ? u'_' : u' ';
  }
  text.resize(length);
  for (std::size_t k = every; every != 0 && k < length; k += every) text[k] = member;
  return text;
}

// What an expert would write: one bit a unit.
class Bitmap {
 public:
  explicit Bitmap(const NSRef<NSCharacterSet>& set) {
    for (std::size_t k = 0; k < 0x10000; ++k) {
      _bits[k] = set->characterIsMember(static_cast<char16_t>(k));
    }
  }
  bool operator[](char16_t unit) const { return _bits[unit]; }

 private:
  std::bitset<0x10000> _bits;
};

struct Case {
  std::string name;
  std::u16string text;
  NSRef<NSCharacterSet> set;
  std::shared_ptr<const Bitmap> bitmap;
  std::shared_ptr<const icu::UnicodeSet> icuSet;
};

// One set of every kind with the text it is used on; edited at three densities.
std::vector<Case> editingCases() {
  struct Kind {
    const char* name;
    NSRef<NSCharacterSet> set;
    const char16_t* pattern;
    char16_t member;
  };
  const std::vector<Kind> kinds = {
      {"ascii", NSMake<NSCharacterSet>(u",;:"_ns), u"[,;:]", u','},
      {"white", NSCharacterSet::whitespaceCharacterSet(), u"[[:Zs:]\\t]", u' '},
      {"control", controlAndAttachmentCharacterSet(), u"[[:Cc:][:Cf:]\\uFFFC]", u'\uFFFC'},
  };
  struct Density {
    const char* name;
    std::size_t every;
  };
  std::vector<Case> cases;
  for (const Kind& kind : kinds) {
    UErrorCode status = U_ZERO_ERROR;
    auto icuSet = std::make_shared<icu::UnicodeSet>(icu::UnicodeString(kind.pattern), status);
    icuSet->freeze();
    for (const Density& density : {Density{"none", 0}, {"sparse", 200}, {"dense", 3}}) {
      for (const std::size_t length : {lineLength, longLength}) {
        cases.push_back({std::string(kind.name) + '_' + density.name +
                             (length == lineLength ? "_line" : "_1Mi"),
                         makeText(length, density.every, kind.member), kind.set,
                         std::make_shared<Bitmap>(kind.set), icuSet});
      }
    }
  }
  return cases;
}

std::u16string replacedByBitmap(const Bitmap& bitmap, std::u16string_view text,
                                std::u16string_view replacement) {
  std::u16string result;
  result.reserve(text.size());
  for (const char16_t unit : text) {
    if (bitmap[unit]) {
      result += replacement;
    } else {
      result += unit;
    }
  }
  return result;
}

std::u16string replacedByICU(const icu::UnicodeSet& set, const std::u16string& text,
                             std::u16string_view replacement) {
  std::u16string result;
  result.reserve(text.size());
  const auto length = static_cast<std::int32_t>(text.size());
  for (std::int32_t at = 0; at < length;) {
    const std::int32_t end = at + set.span(text.data() + at, length - at, USET_SPAN_NOT_CONTAINED);
    result.append(text.data() + at, static_cast<std::size_t>(end - at));
    if (end == length) break;
    result += replacement;
    at = end + 1;
  }
  return result;
}

// Every row edits a fresh copy, as an application edits a text that it keeps.
void addEditing(const Case& example) {
  for (const std::u16string replacement : {u"", u"; "}) {
    const std::string row =
        (replacement.empty() ? "Remove/" : "ReplaceByTwo/") + example.name + '/';
    const auto& [name, text, set, bitmap, icuSet] = example;
    const std::u16string expected = replacedByBitmap(*bitmap, text, replacement);
    const auto isRight = [=](const std::u16string& result) { return result == expected; };
    const auto substitute = NSMake<NSString>(replacement);
    addRow(
        row + "ZK",
        [string = NSMake<NSString>(text), set = set, substitute] {
          auto copy = string->mutableCopy();
          ZKReplaceCharactersInCharacterSet(copy, set, substitute);
          return copy;
        },
        [=](const auto& result) { return result == expected; });
    addRow(
        row + "bitmap",
        [text = text, bitmap = bitmap, replacement] {
          return replacedByBitmap(*bitmap, text, replacement);
        },
        isRight);
    addRow(
        row + "ICU",
        [text = text, icuSet = icuSet, replacement] {
          return replacedByICU(*icuSet, text, replacement);
        },
        isRight);
#ifdef ZK_HAS_QT
    if (replacement.empty()) {
      addRow(
          row + "Qt",
          [text = QString::fromStdU16String(text), bitmap = bitmap] {
            QString copy = text;
            copy.removeIf([&](QChar unit) { return (*bitmap)[unit.unicode()]; });
            return copy;
          },
          [=](const QString& result) { return result.toStdU16String() == expected; });
    }
#endif
  }
}

std::u16string_view trimmedByBitmap(const Bitmap& blanks, std::u16string_view text) {
  while (!text.empty() && blanks[text.front()]) text.remove_prefix(1);
  while (!text.empty() && blanks[text.back()]) text.remove_suffix(1);
  return text;
}

std::vector<std::u16string> splitByBitmap(const Bitmap& commas, const Bitmap* blanks,
                                          std::u16string_view text) {
  std::vector<std::u16string> result;
  std::size_t start = 0;
  for (std::size_t k = 0; k <= text.size(); ++k) {
    if (k < text.size() && !commas[text[k]]) continue;
    std::u16string_view piece = text.substr(start, k - start);
    start = k + 1;
    if (piece.empty()) continue;
    if (blanks != nullptr) piece = trimmedByBitmap(*blanks, piece);
    result.emplace_back(piece);
  }
  return result;
}

void addSplitting(const std::string& name, const std::u16string& text, bool trims) {
  const std::string row = "Split/" + name + (trims ? "_trimmed/" : "/");
  const auto comma = NSMake<NSCharacterSet>(u","_ns);
  const auto count = static_cast<std::size_t>(
      componentsSeparatedByCharactersInSet_trimWhitespace(NSMake<NSString>(text), comma, trims)
          ->count());
  addRow(
      row + "ZK",
      [=, string = NSMake<NSString>(text)] {
        return componentsSeparatedByCharactersInSet_trimWhitespace(string, comma, trims);
      },
      [=](const auto& result) { return result->count() == count; });
  const Bitmap commaBits(comma);
  const Bitmap blankBits(NSCharacterSet::whitespaceCharacterSet());
  const auto byBitmap = [=, commas = std::make_shared<Bitmap>(commaBits),
                         blanks = std::make_shared<Bitmap>(blankBits)] {
    return splitByBitmap(*commas, trims ? blanks.get() : nullptr, text);
  };
  addRow(row + "bitmap", byBitmap, [=](const auto& result) { return result.size() == count; });
#ifdef ZK_HAS_QT
  addRow(
      row + "Qt",
      [=, string = QString::fromStdU16String(text)] {
        QStringList pieces = string.split(u',', Qt::SkipEmptyParts);
        if (trims) {
          for (QString& piece : pieces) piece = piece.trimmed();
        }
        return pieces;
      },
      [=](const QStringList& result) { return static_cast<std::size_t>(result.size()) == count; });
#endif
}

// Lines as people write them; every operation goes over many, so that none is known by heart.
struct Alphabet {
  const char* name;
  const char16_t* letters;
};
constexpr std::array alphabets = {
    Alphabet{"ascii", u"etaoinshrdlucmfwypvbgkqjxz"},
    Alphabet{"latin",
             u"etaoinshrdlucmfwypvbgkqjxzétaoinshrdlucmfwypvbgkqjxzetaoinshrdlucmfwypvbgk"},
    Alphabet{"cyrillic", u"оеаинтсрвлкмдпуяыьгзбчйхжш"},
};

std::vector<std::u16string> makeLines(std::u16string_view letters) {
  std::vector<std::u16string> lines(64);
  std::mt19937 random(7);
  for (std::u16string& line : lines) {
    line = u"  ";
    while (line.size() < lineLength - 2) {
      for (std::size_t k = 2 + random() % 8; k > 0; --k) line += letters[random() % letters.size()];
      line += random() % 3 == 0 ? u", " : u" ";
    }
    line.resize(lineLength - 1);
    line += u' ';
  }
  return lines;
}

template <class Line, class Work>
void addLineRow(const std::string& name, const std::vector<Line>& lines, std::size_t expected,
                Work work) {
  addRow(
      name,
      [=] {
        std::size_t units = 0;
        for (const Line& line : lines) units += work(line);
        return units;
      },
      [=](std::size_t units) { return units == expected; },
      {.calls = benchmark::IterationCount(lines.size())});
}

std::u16string removedByFinding(std::u16string_view text, std::u16string_view needle) {
  std::u16string result;
  result.reserve(text.size());
  std::size_t start = 0;
  for (auto place = text.find(needle); place != std::u16string_view::npos;
       place = text.find(needle, start)) {
    result.append(text, start, place - start);
    start = place + needle.size();
  }
  return result.append(text, start);
}

void addLines(const Alphabet& alphabet) {
  const auto plain = makeLines(alphabet.letters);
  std::vector<NSRef<NSString>> ours;
  ours.reserve(plain.size());
  for (const auto& line : plain) ours.push_back(NSMake<NSString>(line));
  const std::u16string needle = {alphabet.letters[0], alphabet.letters[1]};
  const auto wanted = NSMake<NSString>(needle);
  const auto comma = NSMake<NSCharacterSet>(u","_ns);
  const auto& white = NSCharacterSet::whitespaceCharacterSet();
  const auto commas = std::make_shared<Bitmap>(comma);
  const auto blanks = std::make_shared<Bitmap>(white);
#ifdef ZK_HAS_QT
  std::vector<QString> qt;
  qt.reserve(plain.size());
  for (const auto& line : plain) qt.push_back(QString::fromStdU16String(line));
  const QString qtNeedle = QString::fromStdU16String(needle);
#endif
  const auto addAll = [&](const std::string& subject, auto byUs, auto byHand,
                          [[maybe_unused]] auto byQt) {
    const std::string row = subject + "/lines_" + alphabet.name + '/';
    std::size_t expected = 0;
    for (const auto& line : plain) expected += byHand(line);
    addLineRow(row + "ZK", ours, expected, byUs);
    addLineRow(row + "u16string", plain, expected, byHand);
#ifdef ZK_HAS_QT
    addLineRow(row + "Qt", qt, expected, byQt);
#endif
  };
  addAll(
      "RemoveString",
      [=](const auto& line) { return stringByRemovingString(line, wanted)->length(); },
      [=](const auto& line) { return removedByFinding(line, needle).size(); },
      [=](auto line) { return static_cast<std::size_t>(line.remove(qtNeedle).size()); });
  addAll(
      "RemoveSet",
      [=](const auto& line) { return stringByRemovingCharactersInSet(line, white)->length(); },
      [=](const auto& line) { return replacedByBitmap(*blanks, line, u"").size(); },
      [=](auto line) {
        line.removeIf([&](QChar unit) { return (*blanks)[unit.unicode()]; });
        return static_cast<std::size_t>(line.size());
      });
  addAll(
      "Trim",
      [=](const auto& line) { return stringByRemovingSurroundingWhitespace(line)->length(); },
      [=](const auto& line) { return std::u16string(trimmedByBitmap(*blanks, line)).size(); },
      [=](const auto& line) { return static_cast<std::size_t>(line.trimmed().size()); });
  for (const bool trims : {false, true}) {
    addAll(
        trims ? "SplitTrimmed" : "Split",
        [=](const auto& line) {
          return componentsSeparatedByCharactersInSet_trimWhitespace(line, comma, trims)->count();
        },
        [=](const auto& line) {
          return splitByBitmap(*commas, trims ? blanks.get() : nullptr, line).size();
        },
        [=](const auto& line) {
          auto pieces = line.split(u',', Qt::SkipEmptyParts);
          for (auto& piece : pieces) {
            if (trims) piece = piece.trimmed();
          }
          return static_cast<std::size_t>(pieces.size());
        });
  }
}

void addTrimming(const std::string& name, std::size_t length) {
  const std::u16string text = u" \t  " + makeText(length - 8, 0, 0) + u" \t  ";
  const std::string row = "Trim/" + name + '/';
  addRow(
      row + "ZK",
      [string = NSMake<NSString>(text)] { return stringByRemovingSurroundingWhitespace(string); },
      [=](const auto& result) { return result->length() == length - 8; });
  const auto blanks = std::make_shared<Bitmap>(NSCharacterSet::whitespaceCharacterSet());
  addRow(
      row + "bitmap", [=] { return std::u16string(trimmedByBitmap(*blanks, text)); },
      [=](const auto& result) { return result.size() == length - 8; });
#ifdef ZK_HAS_QT
  addRow(
      row + "Qt", [string = QString::fromStdU16String(text)] { return string.trimmed(); },
      [=](const QString& result) { return result.size() == std::ptrdiff_t(length) - 8; });
#endif
}

struct Language {
  const char* name;
  std::u16string_view letters;
  // Stands in place of every 90th unit.
  char16_t rare;
  std::u16string_view needle;
  // As it stands in the text.
  std::u16string_view word;
};

constexpr std::array<Language, 7> languages = {{
    {"ASCII", latinLetters, u'e', u"NEEDLE", u"Needle"},
    {"English", latinLetters, u'’', u"NEEDLE", u"Needle"},
    {"German", u"enisratdhulcgmobwfkzpvjyxäöü", u'ß', u"NÄHNADEL", u"Nähnadel"},
    {"Greek", u"αοιετσνηυρπκμλωγδχθφβξζψάέήίόύώ", u'–', u"ΒΕΛΌΝΑ", u"βελόνα"},
    {"Russian", u"оеаинтсрвлкмдпуяыьгзбчйхжшюцщэф", u'–', u"ИГОЛКА", u"иголка"},
    {"Hindi", u"कखगचजटतदनपबमयरलवशसहािीुेो्ं", u'–', u"सुई", u"सुई"},
    {"Japanese", u"のにはをたがでてとしれさいるな日本人大年出中一国", u'。', u"針仕事", u"針仕事"},
}};

void addSearching(const Language& language, const std::string& size, std::size_t length) {
  std::u16string text = makeText(length, 90, language.rare, language.letters);
  const std::size_t place = length - 20;
  text.replace(place, language.word.size() + 2,
               std::u16string(u" ").append(language.word).append(u" "));
  const auto string = NSMake<NSString>(text);
  const auto needle = NSMake<NSString>(std::u16string(language.needle));
  const auto isRight = [=](auto found) { return static_cast<std::size_t>(found) == place + 1; };
  const std::string name = std::string(language.name).append("_").append(size);
  const auto add = [&](const std::string& row, NSUInteger options) {
    addRow(
        row, [=] { return string->rangeOfString_options(needle, options).location; }, isRight);
  };
  add("FindIgnoringCase/" + name + "/ZK", NSCaseInsensitiveSearch | NSLiteralSearch);
  add("FindEquivalent/" + name + "/ZK", NSCaseInsensitiveSearch);
  addRow(
      "FindWholeWord/" + name + "/ZK",
      [=] {
        return findString_searchRange_options_wordCompareOption(
                   string, needle, {0, string->length()}, NSCaseInsensitiveSearch,
                   ZKWordCompareWhole)
            .location;
      },
      isRight);
#ifdef ZK_HAS_QT
  const QString qtText = QString::fromStdU16String(text);
  const QString qtNeedle =
      QString::fromUtf16(language.needle.data(), qsizetype(language.needle.size()));
  const auto byMatcher = [=] {
    return QStringMatcher(qtNeedle, Qt::CaseInsensitive).indexIn(qtText);
  };
  addRow("FindIgnoringCase/" + name + "/Qt", byMatcher, isRight);
  addRow("FindEquivalent/" + name + "/Qt", byMatcher, isRight);
  const QRegularExpression word(
      QStringLiteral("\\b") + qtNeedle + QStringLiteral("\\b"),
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
  addRow(
      "FindWholeWord/" + name + "/Qt", [=] { return qtText.indexOf(word); }, isRight);
#endif
}

// Needles that hardly differ from a text at most of its places.
void addLiteralSearching(const std::string& name, std::u16string_view period,
                         const std::u16string& needle) {
  std::u16string text;
  while (text.size() < longLength) text += period;
  const std::size_t place = text.size() / 16 * 15;
  text.replace(place, needle.size(), needle);
  const auto string = NSMake<NSString>(text);
  const auto wanted = NSMake<NSString>(needle);
  const std::size_t expected = text.find(needle);
  const auto isRight = [=](auto found) { return static_cast<std::size_t>(found) == expected; };
  const std::string row = "FindLiteral/" + name + "/";
  addRow(
      row + "ZK", [=] { return string->rangeOfString_options(wanted, NSLiteralSearch).location; },
      isRight);
  addRow(
      row + "boyer_moore",
      [=] {
        const std::boyer_moore_searcher searcher(needle.begin(), needle.end());
        return std::search(text.begin(), text.end(), searcher) - text.begin();
      },
      isRight);
#ifdef ZK_HAS_QT
  addRow(
      row + "Qt",
      [qtText = QString::fromStdU16String(text), qtNeedle = QString::fromStdU16String(needle)] {
        return qtText.indexOf(qtNeedle);
      },
      isRight);
#endif
}

// Every other word begins with the needle, and none but the last is it.
void addRejectedWords(const std::string& name, std::u16string_view word, std::u16string_view rare) {
  std::u16string text;
  while (text.size() < 20'000) text.append(word).append(u"x ").append(rare).append(u" ");
  const std::size_t place = text.size();
  text += word;
  const auto string = NSMake<NSString>(text);
  const auto wanted = NSMake<NSString>(std::u16string(word));
  const auto isRight = [=](auto found) { return static_cast<std::size_t>(found) == place; };
  const std::string row = "FindWholeWord/" + name + "/";
  addRow(
      row + "ZK",
      [=] {
        return findString_searchRange_options_wordCompareOption(
                   string, wanted, {0, string->length()}, NSCaseInsensitiveSearch,
                   ZKWordCompareWhole)
            .location;
      },
      isRight);
#ifdef ZK_HAS_QT
  const QString pattern =
      QStringLiteral("\\b%1\\b").arg(QString::fromStdU16String(std::u16string(word)));
  const QRegularExpression expression(pattern, QRegularExpression::CaseInsensitiveOption |
                                                   QRegularExpression::UseUnicodePropertiesOption);
  addRow(
      row + "Qt",
      [qtText = QString::fromStdU16String(text), expression] { return qtText.indexOf(expression); },
      isRight);
#endif
}

void addWords() {
  const std::u16string text = makeText(lineLength, 0, 0);
  const auto string = NSMake<NSString>(text);
  const NSRange expected = rangeOfWordsIntersectingRange(string, {20, 15});
  addRow(
      "WordRange/line/ZK",
      [=] {
        return rangeOfWordsIntersectingRange(string, {20, 15});
      },
      [=](NSRange range) { return range == expected; });
  const auto boundaries = std::make_shared<Bitmap>(wordBoundariesCharacterSet());
  addRow(
      "WordRange/line/bitmap",
      [=] {
        std::size_t start = 20;
        std::size_t end = 34;
        const bool first = (*boundaries)[text[start]];
        const bool last = (*boundaries)[text[end]];
        while (start > 0 && (*boundaries)[text[start - 1]] == first) --start;
        while (end < text.size() && (*boundaries)[text[end]] == last) ++end;
        return NSRange{start, end - start};
      },
      [=](NSRange range) { return range == expected; });
}

void addTitles(const Language& language, const std::string& size, std::size_t length) {
  const std::u16string text = makeText(length, 90, language.rare, language.letters);
  const std::string name = std::string(language.name).append("_").append(size);
  const auto string = NSMake<NSString>(text);
  const NSUInteger expected = titlecaseString(string)->length();
  addRow(
      "TitleCase/" + name + "/ZK", [=] { return titlecaseString(string); },
      [=](const auto& result) { return result->length() == expected; });
  UErrorCode status = U_ZERO_ERROR;
  const std::shared_ptr<icu::BreakIterator> words(
      icu::BreakIterator::createWordInstance(icu::Locale::getDefault(), status));
  addRow(
      "TitleCase/" + name + "/ICU",
      [=] {
        UErrorCode error = U_ZERO_ERROR;
        std::u16string result(text.size() + 16, u'\0');
        icu::UnicodeString source(false, text.data(), static_cast<std::int32_t>(text.size()));
        words->setText(source);
        const auto count = icu::CaseMap::toTitle(
            "", 0, words.get(), text.data(), static_cast<std::int32_t>(text.size()), result.data(),
            static_cast<std::int32_t>(result.size()), nullptr, error);
        result.resize(static_cast<std::size_t>(count));
        return result;
      },
      [=](const auto& result) { return result.size() >= expected; });
}

void addNormalizing(const std::string& name, std::size_t length) {
  const std::u16string text = makeText(length, 50, u'\uFFFC');
  const auto string = NSMake<NSString>(text);
  const auto& set = controlAndAttachmentCharacterSet();
  const auto bitmap = std::make_shared<Bitmap>(set);
  const std::u16string expected = replacedByBitmap(*bitmap, text, u"");
  addRow(
      "Normalized/" + name + "/ZK",
      [=] {
        NSRange selection = {string->length() / 2, 10};
        return normalizedSubStringWithRange_selectedRange(string, {0, string->length()},
                                                          &selection);
      },
      [=](const auto& result) { return result == expected; });
  addRow(
      "Normalized/" + name + "/bitmap",
      [=] {
        std::u16string result;
        result.reserve(text.size());
        std::size_t start = text.size() / 2;
        for (std::size_t k = 0; k < text.size(); ++k) {
          if ((*bitmap)[text[k]]) {
            start -= k < text.size() / 2 ? 1U : 0U;
          } else {
            result += text[k];
          }
        }
        benchmark::DoNotOptimize(start);
        return result;
      },
      [=](const auto& result) { return result == expected; });
}

void addNumbers() {
  struct Style {
    const char* name;
    NSUInteger type;
    const char16_t* expected;
  };
  for (const Style& style :
       {Style{"decimal", 0, u"1888"}, {"letters", 1, u"BTP"}, {"roman", 3, u"MDCCCDXXXVIII"}}) {
    addRow(
        std::string("NumberToText/") + style.name + "/ZK",
        [type = style.type] { return ZKBinToStr(1888, type); },
        [=](const auto& result) { return result == style.expected; });
  }
#ifdef ZK_HAS_QT
  addRow(
      "NumberToText/decimal/Qt", [] { return QString::number(1888); },
      [](const QString& result) { return result == QStringLiteral("1888"); });
#endif
  const auto byLoop = [] {
    std::u16string text;
    std::uint64_t number = 1888;
    benchmark::DoNotOptimize(number);
    for (std::uint64_t value = number; value != 0; value = (value - 1) / 26) {
      text.insert(text.begin(), static_cast<char16_t>(u'A' + (value - 1) % 26));
    }
    return text;
  };
  addRow("NumberToText/letters/loop", byLoop, [](const auto& result) { return result == u"BTP"; });
  const auto romanByLoop = [] {
    constexpr std::array<std::pair<int, const char16_t*>, 13> signs = {{{1000, u"M"},
                                                                        {900, u"CM"},
                                                                        {500, u"D"},
                                                                        {400, u"CD"},
                                                                        {100, u"C"},
                                                                        {90, u"XC"},
                                                                        {50, u"D"},
                                                                        {40, u"XD"},
                                                                        {10, u"X"},
                                                                        {9, u"IX"},
                                                                        {5, u"V"},
                                                                        {4, u"IV"},
                                                                        {1, u"I"}}};
    int rest = 1888;
    benchmark::DoNotOptimize(rest);
    std::u16string text;
    for (const auto& [value, sign] : signs) {
      for (; rest >= value; rest -= value) text += sign;
    }
    return text;
  };
  addRow("NumberToText/roman/loop", romanByLoop,
         [](const auto& result) { return result.starts_with(u"MDCCC"); });
}

const bool registered = [] {
  for (const Case& example : editingCases()) addEditing(example);
  for (const bool trims : {false, true}) {
    addSplitting("line", makeText(lineLength, 12, u','), trims);
    addSplitting("1Mi_sparse", makeText(longLength, 200, u','), trims);
    addSplitting("100000_fields", makeText(600'000, 6, u','), trims);
  }
  for (const Alphabet& alphabet : alphabets) addLines(alphabet);
  addTrimming("line", lineLength);
  addTrimming("1Mi", longLength);
  addRejectedWords("rejected_ASCII", u"th", u"don't");
  addRejectedWords("rejected_English", u"th", u"don’t");
  addRejectedWords("rejected_Russian", u"и", u"дом");
  const std::u16string run(32, u'a');
  addLiteralSearching("run_with_one_other", u"a", run + u"b" + run.substr(1));
  std::u16string alternating;
  while (alternating.size() < 1'000) alternating += u"ab";
  addLiteralSearching("alternating", u"ab", alternating + u"c");
  addLiteralSearching("alternating_in_the_middle", u"ab", alternating + u"b" + alternating);
  for (const Language& language : languages) {
    addSearching(language, "line", lineLength);
    addSearching(language, "1Mi", longLength);
  }
  addWords();
  for (const Language& language : languages) {
    addTitles(language, "line", lineLength);
    addTitles(language, "100Ki", std::size_t{100} * 1024);
  }
  addNormalizing("line", lineLength);
  addNormalizing("1Mi", longLength);
  addNumbers();
  return true;
}();

}  // namespace
