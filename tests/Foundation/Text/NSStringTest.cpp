#include "tests/Support.h"
#include "tests/VectorTargets.h"

#include <unicode/normalizer2.h>

#include <Foundation/Text/StringSearch.h>
#include <Foundation/Text/UnitSearch.h>

namespace {

TEST(NSString, ConvertsFromAndToStandardStrings) {
  EXPECT_EQ(NSConstantString<u"a\0b">()->length(), 3U);
  const auto string = NSMake<NSString>(std::string("Grüße 😀"));
  EXPECT_EQ(string, u"Grüße 😀");
  EXPECT_EQ(string->length(), 8U);
  EXPECT_EQ(std::u16string(*string), u"Grüße 😀");
  EXPECT_EQ(std::string(*string), "Grüße 😀");
  EXPECT_TRUE("Grüße 😀"_ns->isEqual(string));
  EXPECT_TRUE(string == "Grüße 😀" && string == u8"Grüße 😀" && string == U"Grüße 😀" &&
              string == L"Grüße 😀" && string == std::string("Grüße 😀"));
  EXPECT_FALSE(string == "Grüße 😁" || string == "Grüße" || string == U"Grüße" ||
               string == U"Grüße 😀!" || NSRef<NSString>() == "" || NSRef<NSString>() == U"");
  EXPECT_EQ("Grüße 😀"_ns->hash(), string->hash());
  EXPECT_FALSE(string->isEqual(nullptr));
  EXPECT_FALSE(string->isEqual(NSMake<NSNumber>(1)));
  EXPECT_FALSE(NSRef<NSString>() == u"");
}

TEST(NSString, RaisesPastItsEndAndChangesNothing) {
  const auto string = NSMake<NSMutableString>(u"abc");
  const Rows<const char*, std::function<void()>> rows = {
      {"index 3 beyond bounds [0, 3) (in 'characterAtIndex:')",
       [&] { (void)string->characterAtIndex(3); }},
      {"index 4 beyond bounds [0, 3) (in 'substringFromIndex:')",
       [&] { (void)string->substringFromIndex(4); }},
      {"index 4 beyond bounds [0, 3) (in 'substringToIndex:')",
       [&] { (void)string->substringToIndex(4); }},
      {"range {2, 2} beyond bounds [0, 3) (in 'substringWithRange:')",
       [&] { (void)string->substringWithRange(NSMakeRange(2, 2)); }},
      {"range {1, 18446744073709551615} beyond bounds [0, 3) (in 'deleteCharactersInRange:')",
       [&] { string->deleteCharactersInRange(NSMakeRange(1, NSUIntegerMax)); }},
      {"range {4, 0} beyond bounds [0, 3) (in 'replaceCharactersInRange:withString:')",
       [&] { string->replaceCharactersInRange_withString(NSMakeRange(4, 0), nullptr); }},
      {"index 4 beyond bounds [0, 3) (in 'insertString:atIndex:')",
       [&] { string->insertString_atIndex(u"x"_ns, 4); }},
  };
  for (const auto& [reason, action] : rows) expectRaises(NSRangeException, reason, action);
  EXPECT_EQ(string, u"abc");
  EXPECT_EQ(string->substringFromIndex(3), u"");
}

TEST(NSString, FindsWhatAOneLoopSearchFinds) {
  const auto lower = [](std::u16string units) {
    for (char16_t& unit : units) unit = unit == u'A' || unit == u'B' ? unit + 32 : unit;
    return units;
  };
  forEachVectorTarget([&] {
    expectProperty("the same places", [&] {
      const auto units = *rc::gen::element<std::u16string>(u"aab", u"aAbB@`[{");
      const auto text = *rc::gen::scale(4, textOver(units));
      const auto needle = *rc::gen::scale(0.2, textOver(units));
      const auto from = *rc::gen::inRange<std::size_t>(0, text.size() + 2);
      constexpr auto none = std::u16string_view::npos;
      const auto next = [&](std::size_t at) {
        return needle.empty() ? none : text.find(needle, at);
      };
      RC_ASSERT(NSFindUnits(text, needle, from) == next(from));
      const auto folded = needle.empty() ? none : lower(text).find(lower(needle));
      const auto options = NSCaseInsensitiveSearch | NSLiteralSearch;
      const NSRange match =
          NSMake<NSString>(text)->rangeOfString_options(NSMake<NSString>(needle), options);
      RC_ASSERT(match.location == (folded == none ? NSNotFound : folded));
      std::vector<std::size_t> expected;
      for (auto at = next(0); at != none; at = next(at + needle.size())) expected.push_back(at);
      std::vector<std::size_t> found;
      NSForEachOccurrence(text, needle, [&](NSRange range) { found.push_back(range.location); });
      RC_ASSERT(found == expected);
    });
  });
}

TEST(NSString, FindsInTextsThatAlmostMatchEverywhere) {
  // Where each place were compared with the whole needle, this would take hours. Cases alternate.
  std::u16string text;
  for (int k = 0; k < 1'000'000; ++k) text += u"aA";
  std::u16string needle = text.substr(0, 200'000);
  needle[199'998] = u'b';
  const NSUInteger literal = NSLiteralSearch;
  const NSUInteger folded = NSLiteralSearch | NSCaseInsensitiveSearch;
  const NSUInteger backwards = NSBackwardsSearch;
  for (const NSUInteger options :
       {literal, folded, literal | backwards, folded | backwards, backwards}) {
    const auto wanted = NSMake<NSString>(needle);
    EXPECT_EQ(NSMake<NSString>(text)->rangeOfString_options(wanted, options), NSNotFoundRange);
    std::u16string around = text;
    around.append(needle).append(text);
    if ((options & folded) == folded) around[2'000'001] = u'a';
    const auto string = NSMake<NSString>(around);
    EXPECT_EQ(string->rangeOfString_options(wanted, options), (NSRange{2'000'000, 200'000}));
    const NSRange rest = {2'000'001, around.size() - 2'000'001};
    EXPECT_EQ(string->rangeOfString_options_range(wanted, options, rest), NSNotFoundRange);
  }
  // In the second no unit is rarer than the others.
  std::u16string turned = text.substr(0, 200'000);
  std::swap(turned[99'998], turned[99'999]);
  for (const std::u16string& wanted : {needle, turned}) {
    std::vector<std::size_t> places(5);
    std::u16string all = text;
    all.append(wanted).append(wanted).append(u"a").append(wanted);
    EXPECT_EQ(NSFindUnits(all, wanted, 0, places), 3U);
    EXPECT_EQ(places, (std::vector<std::size_t>{2'000'000, 2'200'000, 2'400'001, 0, 0}));
  }
}

TEST(NSString, ComparesByTheOptions) {
  const NSUInteger folds = NSCaseInsensitiveSearch;
  const Rows<const char16_t*, const char16_t*, NSUInteger, NSComparisonResult> rows = {
      {u"a", u"b", 0, NSOrderedAscending},
      {u"a", u"B", 0, NSOrderedDescending},
      {u"a", u"B", folds, NSOrderedAscending},
      {u"ab", u"A", folds, NSOrderedDescending},
      {u"a", u"aB", folds, NSOrderedAscending},
      {u"aB", u"Ab", folds, NSOrderedSame},
      {u"", u"\u00E9", 0, NSOrderedAscending},
      {u"e\u0301", u"\u00E9", 0, NSOrderedSame},
      {u"e\u0301", u"\u00C9", folds, NSOrderedSame},
      {u"e\u0301", u"\u00C9", 0, NSOrderedDescending},
      {u"e\u0301", u"\u00E9", NSLiteralSearch, NSOrderedAscending},
      {u"e\u0301", u"\u00E9", folds | NSLiteralSearch, NSOrderedAscending},
      {u"\u00DF", u"SS", folds | NSLiteralSearch, NSOrderedSame},
      // Halves of pairs, the first of one that decomposes and of one with a small letter.
      {u"\U0002F84D", u"\u8000", 0, NSOrderedAscending},
      {u"\u8000", u"\xD87E", 0, NSOrderedAscending},
      {u"\U0002F84D", u"\xD87E", 0, NSOrderedAscending},
      {u"\U0002F84D", u"\xD87E", folds, NSOrderedAscending},
      {u"e\u0301\U0002F84D", u"\u00E9\xD87E", 0, NSOrderedAscending},
      {u"\U00010400", u"\xD801", folds | NSLiteralSearch, NSOrderedDescending},
      {u"\U00010400", u"\xD801\u0301", folds | NSLiteralSearch, NSOrderedDescending},
  };
  for (const auto& [a, b, options, expected] : rows) {
    EXPECT_EQ(NSCompareUnits(a, b, options), expected)
        << NSMake<NSString>(a) << " and " << NSMake<NSString>(b) << ' ' << options;
    EXPECT_EQ(NSCompareUnits(b, a, options), -expected);
  }
  EXPECT_EQ(u"b"_ns->compare(u"a"_ns), NSOrderedDescending);
  EXPECT_EQ(u"B"_ns->caseInsensitiveCompare(u"b"_ns), NSOrderedSame);
  EXPECT_EQ(u"a"_ns->compare_options(u"B"_ns, NSCaseInsensitiveSearch), NSOrderedAscending);
  EXPECT_EQ(NSCompareUnits({}, u"\u00E9", 0), NSOrderedAscending);
}

TEST(NSString, ComparesTheUnitsOfCanonicalDecompositions) {
  expectProperty("the units of both decompositions", [] {
    const auto units = u"ab\u00E9\u00FC\u0301\u0323\u4E2D\uAC00\uFB1D" +
                       std::u16string{0xD83D, 0xDE00, 0xD87E, 0xDC4D, 0};
    const auto beginning = *textOver(units);
    const auto a = beginning + *rc::gen::scale(0.2, textOver(units));
    const auto b = beginning + *rc::gen::scale(0.2, textOver(units));
    const auto decomposed = [](const std::u16string& text) {
      UErrorCode status = U_ZERO_ERROR;
      const auto form = icu::Normalizer2::getNFDInstance(status)->normalize(
          icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())), status);
      return std::u16string(form.getBuffer(), static_cast<std::size_t>(form.length()));
    };
    const int order = decomposed(a).compare(decomposed(b));
    RC_ASSERT(NSCompareUnits(a, b, 0) == (order > 0) - (order < 0));
  });
}

TEST(NSString, JoinsWhatItSeparated) {
  expectProperty("separating and joining is the identity", [] {
    const auto text = *textOver(u"ab,,");
    const auto separator =
        NSMake<NSString>(*rc::gen::element<std::u16string>(u",", u",,", u"ab", u""));
    const auto pieces = NSMake<NSString>(text)->componentsSeparatedByString(separator);
    RC_ASSERT(pieces->componentsJoinedByString(separator) == text);
    for (const auto& piece : *pieces) {
      RC_ASSERT(piece.as<NSString>()->rangeOfString(separator) == NSNotFoundRange);
    }
  });
  EXPECT_EQ(u",a,"_ns->componentsSeparatedByString(u","_ns)->description(), u"(, a, )");
  EXPECT_EQ(u"a"_ns->componentsSeparatedByString(nullptr)->count(), 1U);
}

TEST(NSMutableString, EditsAsAStandardStringDoes) {
  expectProperty("the same text after every edit", [] {
    std::u16string model;
    const auto string = NSMake<NSMutableString>();
    const auto edits = *rc::gen::inRange(0, 40);
    for (int k = 0; k < edits; ++k) {
      const int kind = *rc::gen::inRange(0, 3);
      const auto at =
          *rc::gen::inRange<std::size_t>(kind == 0 ? model.size() : 0, model.size() + 1);
      const auto count = kind < 2 ? 0 : *rc::gen::inRange<std::size_t>(0, model.size() - at + 1);
      // Now and then the string's own text: what is inserted may lie in what moves.
      const auto isOwn = *rc::gen::arbitrary<bool>();
      const auto text = isOwn ? model : *rc::gen::scale(0.1, textOver(u"abc"));
      const auto piece = isOwn ? NSRef<NSString>(string) : NSMake<NSString>(text);
      model.replace(at, count, text);
      if (kind == 0) string->appendString(piece);
      if (kind == 1) string->insertString_atIndex(piece, at);
      if (kind == 2) string->replaceCharactersInRange_withString({at, count}, piece);
      if (model.size() > 1000) {
        model.erase(10);
        string->deleteCharactersInRange({10, string->length() - 10});
      }
      RC_ASSERT(string->view() == model);
    }
  });
}

TEST(NSMutableString, GrowsOutOfAnyRoom) {
  for (const NSUInteger capacity : {0U, 1U, 24U, 512U, 513U}) {
    const auto string = NSMutableString::stringWithCapacity(capacity);
    std::u16string model;
    for (int k = 0; k < 300; ++k) {
      string->insertString_atIndex(u"abc"_ns, static_cast<NSUInteger>(k));
      model.insert(static_cast<std::size_t>(k), u"abc");
    }
    EXPECT_EQ(string->view(), model);
    EXPECT_EQ(string->copy()->view(), model);
  }
  const auto string = NSMake<NSMutableString>(u"abcdefghijklmnopqrstuvwx");
  string->appendUnits(string->view().substr(18, 6));
  EXPECT_EQ(string->view(), u"abcdefghijklmnopqrstuvwxstuvwx");
  string->setString(nullptr);
  EXPECT_EQ(string->length(), 0U);
}

TEST(NSMutableString, SubclassesHaveStorageOfTheirOwn) {
  struct Tagged : NSMutableString {
    using NSMutableString::NSMutableString;
    int tag = 7;
  };
  const auto tagged = NSMake<Tagged>(u"text");
  tagged->appendString(u" and more"_ns);
  EXPECT_EQ(tagged, u"text and more");
  EXPECT_EQ(tagged->tag, 7);
}

TEST(NSMutableString, CopiesAreIndependent) {
  const auto string = NSMake<NSMutableString>(u"short");
  const auto copy = string->copy();
  const auto mutableCopy = copy->mutableCopy();
  string->appendString(u" and now longer"_ns);
  mutableCopy->deleteCharactersInRange({0, 1});
  EXPECT_EQ(copy, u"short");
  EXPECT_EQ(mutableCopy, u"hort");
  EXPECT_PRED2(areSame, copy->copy(), copy);
  EXPECT_TRUE(copy->isMemberOfClass(NSClass::of<NSString>()));
}

TEST(NSUnitBuffer, MovesTextsInItsOwnAndInLentMemory) {
  std::array<char16_t, 25> room;
  std::array<char16_t, 25> otherRoom;
  for (const std::size_t length : {0U, 24U, 25U, 26U, 1000U}) {
    const std::u16string text(length, u'x');
    for (const bool lends : {false, true}) {
      NSUnitBuffer buffer = lends ? NSUnitBuffer(std::span(room)) : NSUnitBuffer();
      buffer.append(text);
      NSUnitBuffer moved(std::move(buffer));
      EXPECT_EQ(moved.view(), text);
      EXPECT_EQ(buffer.size(), 0U);  // NOLINT: a moved buffer is empty.
      buffer.append(u"again");
      EXPECT_EQ(buffer.view(), u"again");
      buffer = moved;
      NSUnitBuffer lent{std::span(otherRoom)};
      lent = std::move(moved);
      EXPECT_EQ(lent.view(), text);
      EXPECT_EQ(buffer.view(), text);
      buffer = std::move(lent);
      buffer.append(u"y");
      EXPECT_EQ(buffer.view(), text + u"y");
    }
  }
}

TEST(NSUnitBuffer, RefusesWhatNoMemoryHolds) {
  NSUnitBuffer buffer(u"kept");
  EXPECT_THROW(buffer.reserve(SIZE_MAX / 4), std::bad_alloc);
  EXPECT_THROW(buffer.extend(SIZE_MAX - 1), std::bad_alloc);
  EXPECT_EQ(buffer.view(), u"kept");
}

}  // namespace
