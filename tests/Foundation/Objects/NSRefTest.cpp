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
  const auto moved = std::move(second);
  base = {};
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(moved->retainCount(), 1U);
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

TEST(NSRef, ComparesAndHashesByIdentityAndCastsByClass) {
  const auto a = u"same"_ns;
  const auto b = u"same"_ns;
  EXPECT_NE(a, b);
  EXPECT_EQ((std::unordered_set<NSRef<NSString>>{a, b, a}).size(), 2U);
  EXPECT_EQ((std::unordered_set<NSRef<NSObject>, NSHashObject, NSEqualObjects>{a, b}).size(), 1U);
  const NSRef<NSObject> object = a;
  EXPECT_EQ(object.as<NSString>(), a);
  EXPECT_EQ(object.as<NSMutableString>(), nullptr);
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
