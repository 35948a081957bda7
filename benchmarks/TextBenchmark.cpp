#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <array>
#include <memory>
#include <random>
#include <vector>

#include <unicode/edits.h>
#include <unicode/uniset.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QString>
#include <QStringList>
#endif

using namespace ZKFoundationExtensions;

namespace {

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
  addNormalizing("line", lineLength);
  addNormalizing("1Mi", longLength);
  return true;
}();

}  // namespace
