#include "tests/Support.h"

#include <unicode/uchar.h>

namespace {

using Set = NSRef<NSCharacterSet>;

TEST(NSCharacterSet, FollowsTheGeneralCategories) {
  for (char32_t c = 0; c < 0x110000; ++c) {
    const auto mask = U_GET_GC_MASK(static_cast<UChar32>(c));
    const auto in = [&](const Set& set) { return set->longCharacterIsMember(c); };
    const bool isBreak = (c >= 9 && c <= 13) || c == 0x85;
    ASSERT_EQ(in(NSCharacterSet::whitespaceCharacterSet()), (mask & U_GC_ZS_MASK) != 0 || c == 9);
    ASSERT_EQ(in(NSCharacterSet::whitespaceAndNewlineCharacterSet()),
              (mask & U_GC_Z_MASK) != 0 || isBreak);
    ASSERT_EQ(in(NSCharacterSet::controlCharacterSet()),
              (mask & (U_GC_CC_MASK | U_GC_CF_MASK)) != 0);
    ASSERT_EQ(in(NSCharacterSet::alphanumericCharacterSet()),
              (mask & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0);
    ASSERT_EQ(in(NSCharacterSet::decimalDigitCharacterSet()), (mask & U_GC_ND_MASK) != 0);
  }
}

TEST(NSCharacterSet, CombinesMembers) {
  const auto set = NSMake<NSMutableCharacterSet>(NSRange{u'a', 3});
  set->addCharactersInString(u"x\U0001F600"_ns);
  set->addCharactersInRange({0x1F600, 2});
  set->removeCharactersInRange({u'b', 1});
  set->removeCharactersInString(u"x"_ns);
  set->addCharactersInRange({0, 0});
  EXPECT_TRUE(set->isEqual(NSMake<NSCharacterSet>(u"\U0001F601ca\U0001F600"_ns)));
  // The halves of the pair are no members.
  EXPECT_FALSE(set->characterIsMember(0xD83D));

  const auto inverse = set->invertedSet();
  EXPECT_FALSE(inverse->longCharacterIsMember(0x1F601));
  EXPECT_TRUE(inverse->longCharacterIsMember(0x10FFFF));
  EXPECT_FALSE(inverse->longCharacterIsMember(0x110000));
  EXPECT_TRUE(inverse->characterIsMember(0xD83D));
  EXPECT_TRUE(inverse->invertedSet()->isEqual(set));
  EXPECT_EQ(inverse->invertedSet()->hash(), set->hash());

  const auto copy = set->copy();
  EXPECT_TRUE(copy->isMemberOfClass(NSClass::of<NSCharacterSet>()));
  set->formUnionWithCharacterSet(inverse);
  EXPECT_TRUE(set->isEqual(NSMake<NSCharacterSet>()->invertedSet()));
  set->invert();
  EXPECT_TRUE(set->isEqual(NSMake<NSCharacterSet>()));
  EXPECT_TRUE(copy->characterIsMember(u'a'));
  const auto common = copy->mutableCopy();
  common->formIntersectionWithCharacterSet(NSCharacterSet::characterSetWithRange({0, 256}));
  EXPECT_TRUE(common->isEqual(NSCharacterSet::characterSetWithCharactersInString(u"ac"_ns)));
}

TEST(NSCharacterSet, RaisesPastTheLastCharacter) {
  const auto set = NSMake<NSMutableCharacterSet>(NSRange{0x10FFFF, 1});
  expectRaises(NSRangeException,
               "range {1114111, 2} beyond bounds [0, 1114112) (in 'addCharactersInRange:')",
               [&] { set->addCharactersInRange(NSMakeRange(0x10FFFF, 2)); });
  EXPECT_TRUE(set->isEqual(NSMake<NSCharacterSet>(u"\U0010FFFF"_ns)));
}

}  // namespace
