#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <memory>

#include <unicode/brkiter.h>
#include <unicode/casemap.h>

#ifdef ZK_HAS_QT
#include <QString>
#endif

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

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

void addUpperCase(const Language& language, const std::string& size, std::size_t length) {
  const std::u16string text = makeText(length, 90, language.rare, language.letters);
  const std::string name = "UpperCase/" + std::string(language.name).append("_").append(size);
  const auto string = NSMake<NSString>(text);
  const auto expected = string->uppercaseString();
  addRow(
      name + "/ZK", [=] { return string->uppercaseString(); },
      [=](const auto& result) { return result == expected; });
  addRow(
      name + "/ICU",
      [=] {
        UErrorCode error = U_ZERO_ERROR;
        std::u16string result(text.size() + text.size() / 4 + 16, u'\0');
        const auto count = icu::CaseMap::toUpper(
            "", 0, text.data(), static_cast<std::int32_t>(text.size()), result.data(),
            static_cast<std::int32_t>(result.size()), nullptr, error);
        result.resize(static_cast<std::size_t>(count));
        return result;
      },
      [=](const auto& result) { return expected == result; });
#ifdef ZK_HAS_QT
  addRow(
      name + "/Qt", [text = QString::fromStdU16String(text)] { return text.toUpper(); },
      [=](const QString& result) { return expected == result.toStdU16String(); });
#endif
}

const bool registered = [] {
  addWords();
  for (const Language& language : languages) {
    addTitles(language, "line", lineLength);
    addTitles(language, "100Ki", std::size_t{100} * 1024);
    addUpperCase(language, "line", lineLength);
    addUpperCase(language, "100Ki", std::size_t{100} * 1024);
  }
  return true;
}();

}  // namespace
