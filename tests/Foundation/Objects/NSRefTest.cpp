#include "tests/Support.h"

#include <unordered_set>

namespace {

struct Node : Counted {
  using Counted::Counted;
  NSRef<Node> next;
};

TEST(NSRef, DestroysTheObjectWithItsLastReference) {
  int alive = 0;
  auto first = NSMake<Counted>(alive);
  auto second = first;
  NSRef<NSObject> base = second;
  EXPECT_EQ(first->retainCount(), 3U);
  first = nullptr;
  auto moved = std::move(second);
  base = {};
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(moved->retainCount(), 1U);
  moved = nullptr;
  EXPECT_EQ(alive, 0);
}

TEST(NSRef, SurvivesAssignmentOfItselfAndOfItsOwnMember) {
  int alive = 0;
  auto node = NSMake<Node>(alive);
  node->next = NSMake<Node>(alive);
  const auto& same = node;
  node = same;
  EXPECT_EQ(alive, 2);
  node = node->next;
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(node->next, nullptr);
}

TEST(NSRef, AdoptsAndLeaksWithoutCounting) {
  int alive = 0;
  Counted* const raw = NSMake<Counted>(alive).leak();
  EXPECT_EQ(raw->retainCount(), 1U);
  {
    const auto shared = NSRef<Counted>::share(raw);
    EXPECT_EQ(raw->retainCount(), 2U);
  }
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(NSRef<Counted>::adopt(raw)->retainCount(), 1U);
  EXPECT_EQ(alive, 0);
}

TEST(NSRef, CopiesOfAnObjectStartWithTheirOwnCount) {
  int alive = 0;
  const auto original = NSMake<Counted>(alive);
  const std::array references = {original, original};
  EXPECT_EQ(NSMake<Counted>(*original)->retainCount(), 1U);
  EXPECT_EQ(references[0]->retainCount(), 3U);
}

TEST(NSRef, ComparesByContentsAndCastsByClass) {
  const auto a = u"same"_ns;
  const NSRef<NSObject> b = NSMake<NSMutableString>(u"same");
  const NSRef<NSString> none;
  EXPECT_PRED2(areDistinct, a, b);
  EXPECT_PRED2(areDistinct, a, none);
  EXPECT_PRED2(areSame, NSRef<NSNumber>(), none);
  EXPECT_TRUE(a == b && b == a && a != none && none != b && none == NSRef<NSNumber>());
  EXPECT_EQ(number(3), NSMake<NSNumber>(3.0));
  int alive = 0;
  EXPECT_NE(NSMake<Counted>(alive), NSMake<Counted>(alive));
  EXPECT_EQ((std::unordered_set<NSRef<NSObject>>{a, b, number(3), none, none}).size(), 3U);
  EXPECT_PRED2(areSame, NSRef<NSObject>(a).as<NSString>(), a);
  EXPECT_EQ(a.as<NSMutableString>(), nullptr);

  EXPECT_TRUE(none < a && u"B"_ns < u"a"_ns && number(-1) < NSMake<NSNumber>(0.5) && a >= none);
  EXPECT_TRUE(NSDate::distantPast() < NSMake<NSDate>());
  EXPECT_TRUE(std::is_eq(u"\u00E9"_ns <=> u"e\u0301"_ns) && u"\u00E9"_ns != u"e\u0301"_ns);
}

TEST(NSRef, CountsFromManyThreads) {
  int alive = 0;
  auto object = NSMake<Counted>(alive);
  onThreads(8, [object] {
    std::vector<NSRef<Counted>> copies;
    for (int k = 0; k < 10'000; ++k) copies.assign(1, object);
  });
  EXPECT_EQ(object->retainCount(), 1U);
  object = nullptr;
  EXPECT_EQ(alive, 0);
}

TEST(NSAutoreleasePool, KeepsObjectsUntilItsScopeEnds) {
  int alive = 0;
  const NSAutoreleasePool outer;
  Counted* const kept = NSAutorelease(NSMake<Counted>(alive));
  {
    const NSAutoreleasePool inner;
    NSAutorelease(NSMake<Counted>(alive));
    NSAutorelease(NSRef<Counted>());
    EXPECT_EQ(alive, 2);
  }
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(kept->retainCount(), 1U);
}

TEST(NSAutoreleasePool, EndsWithTheThreadWhereThereIsNone) {
  int alive = 0;
  onThreads(1, [&] { NSAutorelease(NSMake<Counted>(alive)); });
  EXPECT_EQ(alive, 0);
}

}  // namespace
