#include "tests/TextModels.h"
#include "tests/VectorTargets.h"

#include <memory_resource>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

std::u16string replacedModel(const NSRef<NSCharacterSet>& set, std::u16string_view text,
                             std::u16string_view replacement) {
  std::u16string result;
  for (const char16_t unit : text) {
    result += set->characterIsMember(unit) ? replacement : std::u16string_view(&unit, 1);
  }
  return result;
}

// The components, each with a "|" after it.
std::u16string splitModel(const NSRef<NSCharacterSet>& set, std::u16string_view text, bool trims) {
  const auto isBlank = [&](char16_t unit) {
    return trims && NSCharacterSet::whitespaceCharacterSet()->characterIsMember(unit);
  };
  std::u16string result;
  for (std::size_t start = 0, end = 0; end <= text.size(); ++end) {
    if (end < text.size() && !set->characterIsMember(text[end])) continue;
    std::u16string_view component = text.substr(start, end - start);
    start = end + 1;
    if (component.empty()) continue;
    while (!component.empty() && isBlank(component.front())) component.remove_prefix(1);
    while (!component.empty() && isBlank(component.back())) component.remove_suffix(1);
    result.append(component).append(u"|");
  }
  return result;
}

TEST(NSStringEditing, ReplacesAndRemovesUnitByUnitInPlace) {
  forEachVectorTarget([] {
    expectProperty("the one-loop edit", [] {
      const auto text = *mixedTexts();
      const auto set = *mixedSets();
      const auto replacement = *rc::gen::element<std::u16string>(
          u"", u"x", u", ", u"a,", u"a replacement of more than sixteen units");
      const auto string = NSMake<NSMutableString>(text);
      replaceOccurrencesOfCharactersInSet_withString(string, set, NSMake<NSString>(replacement));
      RC_ASSERT(string->view() == replacedModel(set, text, replacement));
      string->units() = NSUnitBuffer(text);
      removeCharactersInCharacterSet(string, set);
      RC_ASSERT(string->view() == replacedModel(set, text, u""));
    });
  });
}

TEST(NSStringEditing, LeavesStringsWithoutMembersAlone) {
  const auto string = NSMake<NSMutableString>(u"a text of some length");
  const char16_t* const units = string->view().data();
  const auto comma = NSMake<NSCharacterSet>(u","_ns);
  ZKReplaceCharactersInCharacterSet(string, comma, u"; "_ns);
  ZKRemoveCharactersInCharacterSet(string, comma);
  ZKRemoveCharactersInCharacterSet(string, nullptr);
  EXPECT_EQ(string->view().data(), units);
  EXPECT_EQ(string, u"a text of some length");
  EXPECT_PRED2(areSame, stringByReplacingCharactersInSet_withString(string, comma, u"x"_ns),
               string);
  EXPECT_EQ(stringByReplacingCharactersInSet_withString(string, nullptr, u"x"_ns), string);
  EXPECT_EQ(stringByReplacingCharactersInSet_withString(u"a,b"_ns, comma, u"; "_ns), u"a; b");
  EXPECT_EQ(stringByReplacingCharactersInSet_withString(u"a,b"_ns, comma, nullptr), u"ab");

  const auto own = NSMake<NSMutableString>(u"a,b,");
  ZKReplaceCharactersInCharacterSet(own, comma, own);
  EXPECT_EQ(own, u"aa,b,ba,b,");
}

TEST(NSStringEditing, RemovesCharactersIntoNewStrings) {
  forEachVectorTarget([] {
    expectProperty("what searching again and again leaves", [] {
      const auto text = *mixedTexts();
      const auto set = *mixedSets();
      const auto options = *rc::gen::element<NSUInteger>(0, NSBackwardsSearch, NSAnchoredSearch,
                                                         NSAnchoredSearch | NSLiteralSearch);
      std::u16string expected;
      std::size_t start = 0;
      const NSUInteger forwards = options & ~NSUInteger{NSBackwardsSearch};
      for (;;) {
        const NSRange found = memberModel(set, text, forwards, {start, text.size() - start});
        if (found.length == 0) break;
        expected += text.substr(start, found.location - start);
        start = NSMaxRange(found);
      }
      expected += text.substr(start);
      const auto string = NSMake<NSString>(text);
      RC_ASSERT(stringByRemovingCharactersInSet_options(string, set, options)->view() == expected);
    });
  });
  EXPECT_EQ(stringByRemovingCharacter(u"banana"_ns, u'a'), u"bnn");
  EXPECT_EQ(stringByRemovingCharactersInSet(u"ab"_ns, nullptr), u"ab");
  EXPECT_EQ(stringByRemovingWhitespace(u" a\t\u00A0b\n "_ns), u"ab\n");
}

TEST(NSStringEditing, BothTrimmingsKeepLineBreaks) {
  for (const auto operation :
       {stringByRemovingSurroundingWhitespace, stringByRemovingSurroundingWhitespaceAndNewlines}) {
    EXPECT_EQ(operation(u"\t \u3000a b \t"_ns), u"a b");
    EXPECT_EQ(operation(u" \na\n "_ns), u"\na\n");
    EXPECT_EQ(operation(u" \t "_ns), u"");
  }
  const auto set = NSMake<NSCharacterSet>(u"\U0001F600x"_ns);
  EXPECT_EQ(u"x\U0001F600a\U0001F601\U0001F600"_ns->stringByTrimmingCharactersInSet(set),
            u"a\U0001F601");
}

TEST(NSStringEditing, SplitsAndTrims) {
  expectProperty("the one-loop split", [] {
    const auto text = *mixedTexts();
    const auto set = *mixedSets();
    const auto trims = *rc::gen::arbitrary<bool>();
    const auto result =
        componentsSeparatedByCharactersInSet_trimWhitespace(NSMake<NSString>(text), set, trims);
    std::u16string joined;
    for (const auto& piece : *result) joined.append(*piece.as<NSString>()).append(u"|");
    RC_ASSERT(joined == splitModel(set, text, trims));
  });
}

TEST(NSStringEditing, SplitsWithTheCallersMemory) {
  std::array<std::byte, 1024> memory;
  std::pmr::monotonic_buffer_resource resource(memory.data(), memory.size(),
                                               std::pmr::null_memory_resource());
  const auto comma = NSMake<NSCharacterSet>(u","_ns);
  const auto split = [&](std::pmr::memory_resource* allocator) {
    return ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace(allocator, u"a,b"_ns,
                                                                         comma, false);
  };
  EXPECT_EQ(split(&resource)->count(), 2U);
  EXPECT_EQ(split(nullptr)->count(), 2U);
  EXPECT_THROW(split(std::pmr::null_memory_resource()), std::bad_alloc);
}

TEST(NSStringEditing, FindsMembersFromEitherEnd) {
  forEachVectorTarget([] {
    expectProperty("the one-loop search", [] {
      const auto text = *mixedTexts();
      const auto set = *mixedSets();
      const auto options = *rc::gen::inRange<NSUInteger>(0, 16);
      const NSRange range = anyRange(text.size());
      const auto found =
          NSMake<NSString>(text)->rangeOfCharacterFromSet_options_range(set, options, range);
      RC_ASSERT(found == memberModel(set, text, options, range));
    });
  });
}

TEST(NSStringEditing, FindsASoleMemberWhereverItStands) {
  const auto set = NSMake<NSCharacterSet>(u"x\U0001F600"_ns);
  constexpr NSUInteger length = 6000;
  forEachVectorTarget([&] {
    for (const NSUInteger place :
         std::vector<NSUInteger>{0, 7, 8, 63, 64, 1022, 1023, 1024, 4999, 5997, 5998}) {
      for (const std::u16string member : {u"x", u"\U0001F600"}) {
        std::u16string text(length, u'a');
        text.replace(place, member.size(), member);
        const auto string = NSMake<NSString>(text);
        const NSRange expected = {place, member.size()};
        EXPECT_EQ(string->rangeOfCharacterFromSet(set), expected);
        EXPECT_EQ(string->rangeOfCharacterFromSet_options(set, NSBackwardsSearch), expected);
        EXPECT_EQ(stringByRemovingCharactersInSet(string, set)->length(), length - member.size());
      }
    }
  });
}

TEST(NSStringEditing, AsksAboutPairsInOnePlaceAndHalvesInTheOther) {
  const auto emoji = u"\U0001F600"_ns;
  const auto pairs = NSMake<NSCharacterSet>(emoji);
  const auto halves = NSMake<NSCharacterSet>(NSRange{0xDE00, 1});
  // The pair is found, but none of its units is a member.
  const auto copy = stringByReplacingCharactersInSet_withString(emoji, pairs, u"x"_ns);
  EXPECT_PRED2(areDistinct, copy, emoji);
  EXPECT_TRUE(copy->isEqualToString(emoji));
  EXPECT_PRED2(areSame, stringByReplacingCharactersInSet_withString(emoji, halves, u"x"_ns), emoji);

  for (const char* const replacement : {"", "<>", "much longer than a block"}) {
    for (const std::size_t length : {1U, 600U}) {
      std::u16string text;
      std::u16string expected;
      while (text.size() < length) {
        text += u"a\U0001F600\xDE00\U0001F600\U0001F601";
        const auto by = std::u16string(*string(replacement));
        expected.append(u"a").append(by).append(u"\xDE00").append(by).append(u"\U0001F601");
      }
      auto edited = NSMake<NSMutableString>(text);
      replaceWholeCharactersInSet_withString(edited, pairs, string(replacement));
      EXPECT_EQ(edited, expected);
    }
  }
  const auto parts =
      componentsSeparatedByWholeCharactersInSet_trimWhitespace(u"a\U0001F600 b"_ns, pairs, true);
  EXPECT_EQ(parts->description(), u"(a, b)");
}

TEST(NSStringEditing, FindsTheRunAroundAnIndex) {
  expectProperty("between the members on either side", [] {
    const auto text = *mixedTexts();
    const auto set = *mixedSets();
    const auto index = *rc::gen::inRange<NSUInteger>(0, text.size() + 1);
    const NSRange after = memberModel(set, text, 0, {index, text.size() - index});
    const NSRange before = memberModel(set, text, NSBackwardsSearch, {0, index});
    const NSUInteger start = before.length == 0 ? 0 : NSMaxRange(before);
    const NSUInteger end = after.length == 0 ? text.size() : after.location;
    const auto run = rangeWithoutCharactersFromSet_atIndex(NSMake<NSString>(text), set, index);
    RC_ASSERT(run == (NSRange{start, end - start}));
  });
}

TEST(NSCharacterSetExtensions, HoldsWhatItSays) {
  EXPECT_TRUE(attachmentCharacterSet()->isEqual(NSMake<NSCharacterSet>(u"\uFFFC"_ns)));
  const auto both = NSCharacterSet::controlCharacterSet()->mutableCopy();
  both->addCharactersInString(u"\uFFFC"_ns);
  EXPECT_TRUE(controlAndAttachmentCharacterSet()->isEqual(both));
  const auto& words = NSCharacterSet::alphanumericCharacterSet();
  EXPECT_TRUE(wordBoundariesCharacterSet()->isEqual(words->invertedSet()));
  for (const auto set :
       {attachmentCharacterSet, wordBoundariesCharacterSet, controlAndAttachmentCharacterSet}) {
    EXPECT_PRED2(areSame, set(), set());
  }
}

}  // namespace
