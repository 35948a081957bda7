#include "tests/Support.h"

#include <cinttypes>
#include <clocale>
#include <cstdio>
#include <list>
#include <mutex>
#include <regex>
#include <set>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

constexpr std::array constants = {horizontalEllipsisString,
                                  leftPointingDoubleAngleQuotationMarkString,
                                  rightPointingDoubleAngleQuotationMarkString,
                                  emdashString,
                                  endashString,
                                  commandKeyIndicatorString,
                                  alternateKeyIndicatorString,
                                  shiftKeyIndicatorString};

// Runs in a process of its own under ctest, so these are the first calls.
TEST(NSStringExtensions, ConstantsAreOneObjectForAllThreads) {
  std::mutex mutex;
  std::set<const NSString*> seen;
  onThreads(8, [&] {
    for (const auto constant : constants) {
      const auto* const string = constant().get();
      const std::lock_guard lock(mutex);
      seen.insert(string);
    }
    EXPECT_TRUE(NSCharacterSet::decimalDigitCharacterSet()->characterIsMember(u'0'));
    (void)NSNull::null();
    EXPECT_TRUE(controlAndAttachmentCharacterSet()->characterIsMember(0xFFFC));
    (void)wordBoundariesCharacterSet();
    const NSRange all = {0, 2};
    EXPECT_EQ(trimRange_prefixRange_postfixRange_trimOptions(u" a"_ns, all, nullptr, nullptr, 3),
              (NSRange{1, 1}));
    EXPECT_EQ(titlecaseString(u"to be"_ns), u"To Be");
  });
  EXPECT_EQ(seen.size(), constants.size());
  std::u16string joined;
  for (const auto constant : constants) {
    joined += constant()->view();
    EXPECT_TRUE(constant()->isMemberOfClass(NSClass::of<NSString>()));
  }
  EXPECT_EQ(joined, u"…«»—–⌘⌥⇧");
}

TEST(NSStringExtensions, MakesStrings) {
  EXPECT_EQ(stringWithCharacter(u'A'), u"A");
  const NSRef<NSMutableString> changeable = stringWithCharacter<NSMutableString>(0xD800);
  EXPECT_EQ(changeable->characterAtIndex(0), 0xD800);
  EXPECT_EQ(stringWithStrings({u"a"_ns, u""_ns, u"b"_ns, nullptr, u"c"_ns}), u"ab");
  EXPECT_EQ(stringWithStrings({nullptr}), u"");
  EXPECT_TRUE(stringWithStrings({u"a"_ns})->isMemberOfClass(NSClass::of<NSString>()));

  const auto string = NSMake<NSMutableString>(u"<");
  appendStrings(string, {string, u">"_ns, nullptr, u"x"_ns});
  EXPECT_EQ(string, u"<<>");
  appendStrings(string, {nullptr});
  EXPECT_EQ(string->length(), 3U);

  const std::vector<NSRef<NSString>> list = {u"a"_ns, u"b"_ns, nullptr, u"c"_ns};
  EXPECT_EQ(stringWithStrings(list), u"ab");
  EXPECT_EQ(stringWithStrings(std::list<NSRef<NSMutableString>>{string, string, nullptr}),
            u"<<><<>");
  EXPECT_EQ(stringWithStrings(NSMake<NSArray>({u"a"_ns, string})->each<NSString>()), u"a<<>");
  appendStrings(string, std::span(list).first(1));
  EXPECT_EQ(string, u"<<>a");

  EXPECT_TRUE(isEmptyString(nullptr));
  EXPECT_TRUE(isEmptyString(u""_ns));
  EXPECT_FALSE(isEmptyString(u" "_ns));
}

TEST(NSStringExtensions, PrintsIdentitiesAsPrintf) {
  const auto object = NSMake<NSNumber>(1);
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%p", static_cast<void*>(object.get()));
  EXPECT_EQ(stringForId(object)->utf8(), text.data());
  EXPECT_EQ(stringForId(nullptr), u"(nil)");
}

TEST(NSStringExtensions, MakesFreshUUIDs) {
  const std::regex version4("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  std::set<std::string> seen;
  for (int k = 0; k < 100; ++k) {
    const std::string text = UUIDString()->utf8();
    EXPECT_TRUE(std::regex_match(text, version4)) << text;
    seen.insert(text);
  }
  EXPECT_EQ(seen.size(), 100U);
}

TEST(NSStringExtensions, ReadsHexadecimalText) {
  constexpr std::uint64_t all = 0xFFFF'FFFF'FFFF'FFFF;
  const std::u16string forty = u"0000000000000000000000000000000012345678";
  const Rows<std::u16string, std::uint32_t, std::uint64_t> rows = {
      {u"", 0, 0},
      {u"ff", 255, 255},
      {u"0xff", 255, 255},
      {u"  0x1A", 26, 26},
      {u"0X1A", 0, 26},
      {u"0x", 0, 0},
      {u"0x0x1", 0, 0},
      {u"1 2", 18, 1},
      {u"0x 1", 1, 0},
      {u"12g", 0, 18},
      {u"-1", 0, all},
      {u"\t\n\v\f\r7", 7, 7},
      {u"\u20071", 0, 0},  // The figure space is white in no C locale,
      {u"\u30001", 1, 0},  // the ideographic space is in C.UTF-8.
      {u"12\xD800", 0, 18},
      {u"FFFFFFFFF", 0xFFFF'FFFF, 0xF'FFFF'FFFF},
      {u"100000000", 0, 0x1'0000'0000},
      {u"FFFFFFFFFFFFFFFF", 0xFFFF'FFFF, all},
      {u"FFFFFFFFFFFFFFFFF", 0xFFFF'FFFF, all},
      {forty + u"z", 0x1234'5678, 0x1234'5678},
      {u" " + forty, 0x0123'4567, 0x1234'5678},
      {std::u16string(38, u' ') + u"10x", 0x10, 0x10},
      {std::u16string(39, u' ') + u"0x5", 0, 5},
      {u"0000000000" + forty, 0, 0x1234'5678},
  };
  const std::string former = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  for (const auto& [text, lenient, strict] : rows) {
    const auto string = NSMake<NSString>(text);
    EXPECT_EQ(hexValue(string), lenient) << '"' << string << '"';
    EXPECT_EQ(maxHexValue(string), strict) << '"' << string << '"';
  }
  std::setlocale(LC_CTYPE, former.c_str());
}

TEST(NSStringExtensions, NamesTheReceiverThatIsNil) {
  const NSRef<NSString> none;
  const NSRef<NSArray> noArray;
  for (const auto& [receiver, operation, action] :
       Rows<std::string, const char*, std::function<void()>>{
           {"string", "hexValue", [&] { return hexValue(none); }},
           {"string",
            "stringByRemovingPrefix:", [&] { return stringByRemovingPrefix(none, none); }},
           {"string",
            "stringByRemovingSuffix:", [&] { return stringByRemovingSuffix(none, none); }},
           {"string",
            "stringByRemovingString:", [&] { return stringByRemovingString(none, none); }},
           {"string",
            "hasCaseInsensitivePrefix:", [&] { return hasCaseInsensitivePrefix(none, none); }},
           {"string", "rangeOfWordsIntersectingRange:",
            [&] { return rangeOfWordsIntersectingRange(none, NSRange()); }},
           {"string", "rangeOfWordContainingCharacter:",
            [&] { return rangeOfWordContainingCharacter(none, 0); }},
           {"string", "stringByRemovingCharactersInSet:",
            [&] { return stringByRemovingCharactersInSet(none, nullptr); }},
           {"string", "replaceOccurrencesOfCharactersInSet:withString:",
            [] { replaceOccurrencesOfCharactersInSet_withString(nullptr, nullptr, nullptr); }},
           {"array", "containsPointer:", [] { return containsPointer(nullptr, nullptr); }},
           {"string", "titlecaseString", [&] { return titlecaseString(none); }},
           {"array", "insertObjectsFromArray:atIndex:",
            [] { insertObjectsFromArray_atIndex(nullptr, nullptr, 0); }},
           {"array", "indexOfObjectIdenticalTo:inArraySortedUsingSelector:",
            [&] {
              return indexOfObjectIdenticalTo_inArraySortedUsingSelector(noArray, none,
                                                                         &NSString::compare);
            }},
       }) {
    refusesNil(receiver, operation, action);
  }
}

TEST(NSStringExtensions, KnowsEveryDigitAtEveryPlace) {
  for (std::size_t place = 0; place < 10; ++place) {
    for (char16_t unit = u'!'; unit < 0x180; ++unit) {
      std::u16string text = u"1023456789";
      text[place] = unit;
      const bool isDigit = unit < 0x80 && std::isxdigit(unit) != 0;
      const std::string digits(text.begin(), text.end());
      const auto expected = isDigit ? std::stoull(digits, nullptr, 16) & 0xFFFF'FFFF : 0;
      EXPECT_EQ(hexValue(NSMake<NSString>(text)), expected) << int{unit} << " at " << place;
    }
  }
}

TEST(NSStringExtensions, ReadsTheWidestNumbersAsTheCLibrary) {
  expectProperty("strtoumax of the text", [] {
    const auto prefix = *rc::gen::element<std::u16string>(u"", u" ", u"\t-", u"+", u"-0x", u"0X");
    const auto text = prefix + *textOver(std::u16string(u"00ffF19xgé\0 -", 13));
    const auto string = NSMake<NSString>(text);
    RC_ASSERT(maxHexValue(string) == std::strtoumax(string->utf8().c_str(), nullptr, 16));
  });
}

TEST(NSStringExtensions, RemovesOnePrefixOrSuffix) {
  const auto string = u"aabbcc"_ns;
  EXPECT_EQ(stringByRemovingPrefix(string, u"a"_ns), u"abbcc");
  EXPECT_EQ(stringByRemovingSuffix(string, u"bcc"_ns), u"aab");
  EXPECT_EQ(stringByRemovingPrefix(string, string), u"");
  EXPECT_EQ(stringByRemovingSuffix(string, u"aabbcc"_ns), u"");
  EXPECT_EQ(stringByRemovingPrefix(u"e\u0301"_ns, u"e"_ns), u"\u0301");
  EXPECT_EQ(stringByRemovingPrefix(u"e\u0301"_ns, u"é"_ns), u"e\u0301");
  const auto changeable = NSMake<NSMutableString>(u"x");
  EXPECT_PRED2(areSame, stringByRemovingPrefix(changeable, u"y"_ns), changeable);
  for (const auto& none : {NSRef<NSString>(), u""_ns, u"A"_ns, u"C"_ns, u"aabbccd"_ns}) {
    EXPECT_PRED2(areSame, stringByRemovingPrefix(string, none), string);
    EXPECT_EQ(stringByRemovingSuffix(string, none), string);
  }
  EXPECT_EQ(stringByAppendingEllipsis(string), u"aabbcc…");
}

TEST(NSStringExtensions, ComparesPrefixesWithoutCase) {
  const Rows<const char16_t*, const char16_t*, bool> rows = {
      {u"abcdef", u"ABC", true},
      {u"abc", u"", true},
      {u"abcdef", u"abcdefg", false},
      {u"abcdef", u"abd", false},
      {u"a@[`{", u"A@[`{", true},
      {u"a@", u"a`", false},
      {u"ÄRGER", u"är", true},
      {u"\u00C4x", u"a\u0308", false},   // Two units of the prefix meet "Äx".
      {u"a\u0308x", u"\u00C4x", false},  // Two meet the letter alone.
      {u"A\u0308x", u"a\u0308", true},
      {u"\u212Bngström", u"\u00E5N", true},  // The Angstrom sign folds to å.
      {u"straSSe", u"straß", false},         // As many units of the text: "straS".
      {u"\u1E9E!", u"ß!", true},
      {u"\u2329x", u"\u3008", false},  // Equivalent brackets.
      {u"a\u0301\u0323", u"a\u0323\u0301", false},
  };
  for (const auto& [text, prefix, expected] : rows) {
    EXPECT_EQ(hasCaseInsensitivePrefix(NSMake<NSString>(text), NSMake<NSString>(prefix)), expected)
        << NSMake<NSString>(text) << " and " << NSMake<NSString>(prefix);
  }
  EXPECT_FALSE(hasCaseInsensitivePrefix(u"abc"_ns, nullptr));
}

TEST(NSStringExtensions, RemovesEveryOccurrenceInOnePass) {
  expectProperty("separated and joined", [] {
    const auto string = NSMake<NSString>(*textOver(u"aab"));
    const auto other = NSMake<NSString>(*rc::gen::scale(0.1, textOver(u"aab")));
    const auto result = stringByRemovingString(string, other);
    const auto pieces = string->componentsSeparatedByString(other);
    RC_ASSERT(pieces->componentsJoinedByString(nullptr) == result->view());
    RC_ASSERT((pieces->count() == 1) == result.is(string));
  });
  EXPECT_EQ(stringByRemovingString(u"aabb"_ns, u"ab"_ns), u"ab");
  const auto string = u"abc"_ns;
  EXPECT_EQ(stringByRemovingString(string, nullptr), string);
}

}  // namespace
