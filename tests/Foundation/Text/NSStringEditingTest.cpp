#include "tests/TextModels.h"

#include <algorithm>

#include <unicode/ustring.h>

namespace {

std::u16string mappedByICU(const std::u16string& text, bool isUpper, const char* language) {
  std::u16string result(3 * text.size() + 1, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const auto map = isUpper ? u_strToUpper : u_strToLower;
  result.resize(std::size_t(
      map(result.data(), int(result.size()), text.data(), int(text.size()), language, &status)));
  return result;
}

// What a table of one case for each unit gets wrong: more than one unit, sigma, dots, pairs.
constexpr const char16_t* cased = u"aZ éßΣσς ΐİiIıŉǅﬁ ա և ā̀ᾳ𐐀𐐨\u0307\u0345\u2028\xD801";

}  // namespace

TEST(NSString, MapsCasesAsICUDoes) {
  expectProperty("the same text", [] {
    const auto text =
        *rc::gen::oneOf(textOver(cased), textOver(u"aéж"), textOver(u"abß é"), mixedTexts());
    const auto string = NSMake<NSString>(text);
    RC_ASSERT(string->uppercaseString() == mappedByICU(text, true, ""));
    RC_ASSERT(string->lowercaseString() == mappedByICU(text, false, ""));
    for (const char* const language : {"en", "tr_TR", "lt", "el", "hy", "not a language"}) {
      const auto place = locale(language);
      RC_ASSERT(string->uppercaseStringWithLocale(place) == mappedByICU(text, true, language));
      RC_ASSERT(string->lowercaseStringWithLocale(place) == mappedByICU(text, false, language));
    }
  });
  std::u16string wrong;
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string text(20, char16_t(unit));
    const auto string = NSMake<NSString>(text);
    const bool isRight = string->uppercaseString() == mappedByICU(text, true, "") &&
                         string->lowercaseString() == mappedByICU(text, false, "");
    if (!isRight) wrong += char16_t(unit);
  }
  EXPECT_EQ(wrong, u"") << "in a row of them";
  EXPECT_EQ(u"Straße"_ns->localizedUppercaseString(), u"STRASSE");
  EXPECT_EQ(u"ΤΕΛΟΣ"_ns->localizedLowercaseString(), u"τελος");
}

TEST(NSString, ReplacesWhatSearchesFind) {
  expectProperty("one after the other", [] {
    const std::u16string units = u"aab e\u0301\u00E9";
    auto string = NSMake<NSMutableString>(*rc::gen::scale(2, textOver(units)));
    const auto target = NSMake<NSString>(*rc::gen::scale(0.1, textOver(units)));
    const NSUInteger options = *rc::gen::inRange<NSUInteger>(0, 4);
    const NSRange range = anyRange(string->length());
    std::u16string expected(*string);
    std::vector<NSRange> found;
    for (NSRange rest = range;;) {
      const NSRange match = string->rangeOfString_options_range(target, options, rest);
      if (match.length == 0) break;
      found.push_back(match);
      rest = {NSMaxRange(match), NSMaxRange(range) - NSMaxRange(match)};
    }
    std::ranges::reverse(found);
    for (const NSRange match : found) {
      expected.replace(match.location, match.length, u"<>");
    }
    const auto by = u"<>"_ns;
    RC_ASSERT(string->stringByReplacingOccurrencesOfString_withString_options_range(
                  target, by, options, range) == expected);
    const NSUInteger count =
        string->replaceOccurrencesOfString_withString_options_range(target, by, options, range);
    RC_ASSERT(count == found.size());
    RC_ASSERT(string == expected);
  });
  const auto string = u"ABab"_ns;
  EXPECT_EQ(string->stringByReplacingOccurrencesOfString_withString(u"a"_ns, nullptr), u"ABb");
  EXPECT_EQ(string->stringByReplacingOccurrencesOfString_withString(nullptr, u"x"_ns), u"ABab");
  EXPECT_EQ(string->stringByReplacingOccurrencesOfString_withString_options_range(
                u"ab"_ns, u"x"_ns, NSCaseInsensitiveSearch | NSAnchoredSearch, {0, 4}),
            u"xab");
  EXPECT_EQ(string + u", " + string + NSRef<NSString>(), u"ABab, ABab");
}

TEST(NSString, FindsLinesSentencesAndCharacters) {
  const auto text = u"One. Two e\u0301!\r\nThree\u2028\n\U0001F469\u200D\U0001F680x"_ns;
  using Ask = NSRange (NSString::*)(NSRange) const;
  const Ask lines = &NSString::lineRangeForRange;
  const Ask paragraphs = &NSString::paragraphRangeForRange;
  const Ask sentences = &NSString::sentenceRangeForRange;
  const Ask characters = &NSString::rangeOfComposedCharacterSequencesForRange;
  for (const auto& [ask, range, expected] : Rows<Ask, NSRange, NSRange>{
           {lines, {0, 0}, {0, 14}},
           {lines, {13, 0}, {0, 14}},
           {lines, {12, 1}, {0, 14}},
           {lines, {13, 2}, {0, 20}},
           {lines, {19, 1}, {14, 6}},
           {lines, {20, 0}, {20, 1}},
           {lines, {27, 0}, {21, 6}},
           {paragraphs, {15, 0}, {14, 7}},
           {paragraphs, {0, 27}, {0, 27}},
           {sentences, {0, 0}, {0, 5}},
           {sentences, {4, 2}, {0, 14}},
           {sentences, {27, 0}, {27, 0}},
           {characters, {10, 1}, {9, 2}},
           {characters, {10, 0}, {9, 0}},
           {characters, {13, 0}, {12, 0}},
           {characters, {22, 1}, {21, 5}},
           {characters, {25, 2}, {21, 6}},
           {characters, {27, 0}, {27, 0}},
       }) {
    EXPECT_EQ(((*text).*ask)(range), expected) << range;
  }
  EXPECT_EQ(text->rangeOfComposedCharacterSequenceAtIndex(12), (NSRange{12, 2}));
  EXPECT_EQ(u"a\n"_ns->lineRangeForRange({2, 0}), (NSRange{2, 0}));
}
