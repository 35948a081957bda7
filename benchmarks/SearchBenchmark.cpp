#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <algorithm>
#include <functional>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QRegularExpression>
#include <QString>
#include <QStringMatcher>
#endif

using namespace ZKFoundationExtensions;

namespace {

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

const bool registered = [] {
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
  return true;
}();

}  // namespace
