#include "tests/Support.h"

#include <chrono>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// Notes how it is copied and maps what it is asked for.
struct Probe : NSObject, ZKDeepObjectCopyingProtocol {
  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec copySpec,
      ZKCopySpec subCopySpec) const override {
    EXPECT_EQ(refTable->count(), 0U);
    tables.push_back(refTable);
    zones.push_back(zone);
    calls.emplace_back(copySpec, subCopySpec);
    return answer;
  }
  ZKCopySpec copySpec(ZKCopySpec requested) const override {
    asked.push_back(requested);
    return mapped;
  }
  ZKCopySpec mapped = 0;
  NSRef<NSObject> answer;
  mutable std::vector<NSRef<NSMapTable>> tables;
  mutable std::vector<NSZone*> zones;
  mutable std::vector<std::pair<ZKCopySpec, ZKCopySpec>> calls;
  mutable std::vector<ZKCopySpec> asked;
};

TEST(DeepCopy, AsksForTheSpecificationAndSplitsIt) {
  const Rows<ZKCopySpec, ZKCopySpec, bool, ZKCopySpec, ZKCopySpec> rows = {
      {4, 7, true, 0, 3},     {3, 8, true, 0, 4},
      {5, 6, true, 3, 1},     {5, 3, true, 3, 5},
      {2, 7, false, 2, 2},    {6, 99, false, 3, 1},
      {-4, 7, false, -4, -4}, {4, NSIntegerMax, true, NSIntegerMax, 4}};
  for (const auto& [requested, mapped, isAsked, own, sub] : rows) {
    SCOPED_TRACE(requested);
    const auto probe = NSMake<Probe>();
    probe->mapped = mapped;
    probe->answer = u"copy"_ns;
    EXPECT_PRED2(areSame, copyWithCopySpec(probe, requested), probe->answer);
    EXPECT_EQ(probe->asked, std::vector<ZKCopySpec>(isAsked ? 1 : 0, requested));
    EXPECT_EQ(probe->calls, (std::vector<std::pair<ZKCopySpec, ZKCopySpec>>{{own, sub}}));
  }
  // Its zone and a table of its own go through.
  const auto probe = NSMake<Probe>();
  int zone = 0;
  EXPECT_EQ(copyWithZone_copySpec(probe, reinterpret_cast<NSZone*>(&zone), 1), nullptr);
  EXPECT_EQ(copyWithCopySpec(probe, 1), nullptr);
  EXPECT_EQ(probe->zones, (std::vector<NSZone*>{reinterpret_cast<NSZone*>(&zone), nullptr}));
  EXPECT_PRED2(areDistinct, probe->tables[0], probe->tables[1]);
}

TEST(DeepCopy, SplitsThreeSpecifications) {
  for (const auto& [given, own, sub] : Rows<ZKCopySpec, ZKCopySpec, ZKCopySpec>{
           {6, 3, 1}, {7, 0, 3}, {8, 0, 4}, {9, 9, 77}, {3, 3, 77}, {-6, -6, 77}}) {
    ZKCopySpec written = 77;
    EXPECT_EQ(copySpecForCopySpec_subCopySpec(u"any"_ns, given, &written), own);
    EXPECT_EQ(written, sub);
    EXPECT_EQ(copySpecForCopySpec_subCopySpec(nullptr, given, nullptr), own);
  }
}

TEST(DeepCopy, RaisesForWhatCannotBeCopied) {
  const char* const reason = "object does not support ZKDeepObjectCopyingProtocol";
  expectRaises(u"Cannot copy object using copyWithZone:copySpec:", reason,
               [] { return copyWithZone_copySpec(u"text"_ns, nullptr, 3); });
  expectRaises(u"Cannot copy object using copyWithCopySpec", reason,
               [] { return copyWithCopySpec(u"text"_ns, 3); });
  expectRaises(u"Cannot copy object using copyWithCopySpec", reason,
               [] { return copyObjectsWithCopySpec(NSMake<NSArray>({u"text"_ns}), 3); });
  refusesNil("object", "copyWithCopySpec:", [] { return copyWithCopySpec(nullptr, 3); });
}

// A node of a graph, which may have cycles and be reached on many ways.
struct Node : Counted, ZKDeepObjectCopyingProtocol {
  Node(int& aliveCount, int aName) : Counted(aliveCount), name(aName) {}

  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
      ZKCopySpec subCopySpec) const override {
    auto copy = NSMake<Node>(alive, name);
    refTable->setObject_forKey(copy, self());
    for (const auto& neighbour : neighbours) {
      auto other = refTable->objectForKey(neighbour);
      if (!other) {
        other = neighbour->copyWithZone_refTable_copySpec_subCopySpec(zone, refTable, subCopySpec,
                                                                      subCopySpec);
      }
      copy->neighbours.push_back(other.as<Node>());
    }
    return copy;
  }
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }

  void visit(ZKObjectVisitor& visitor, bool& stop) {
    if (stop || !visitor.shouldVisitObject(self())) return;
    visitor.visitObject_stop(self(), stop);
    for (const auto& neighbour : neighbours) neighbour->visit(visitor, stop);
  }

  int name;
  std::vector<NSRef<Node>> neighbours;
};

// Cuts the cycles, which hold each other alive.
void dissolve(const std::vector<NSRef<Node>>& nodes) {
  for (const auto& node : nodes) node->neighbours.clear();
}

std::vector<NSRef<Node>> reachableFrom(const NSRef<Node>& root) {
  const auto visitor = NSMake<ZKGenericVisitor>();
  bool stop = false;
  root->visit(*visitor, stop);
  EXPECT_FALSE(stop);
  std::vector<NSRef<Node>> nodes;
  for (const auto& object : visitor->visitedObjects()) nodes.push_back(object.as<Node>());
  return nodes;
}

TEST(DeepCopy, KeepsTheShapeOfAnyGraph) {
  int alive = 0;
  expectProperty("the same names along the same edges", [&] {
    const auto edges = *rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(0, 6), rc::gen::inRange(0, 6)));
    std::vector<NSRef<Node>> nodes(6);
    for (int k = 0; k < 6; ++k) nodes[std::size_t(k)] = NSMake<Node>(alive, k);
    for (const auto& [from, to] : edges) {
      nodes[std::size_t(from)]->neighbours.push_back(nodes[std::size_t(to)]);
    }
    const auto originals = reachableFrom(nodes[0]);
    const auto copies = reachableFrom(copyWithCopySpec(nodes[0], 1).as<Node>());
    RC_ASSERT(copies.size() == originals.size());
    for (const auto& copy : copies) {
      const auto& original = nodes[std::size_t(copy->name)];
      RC_ASSERT(!copy.is(original));
      RC_ASSERT(copy->neighbours.size() == original->neighbours.size());
      for (std::size_t k = 0; k < copy->neighbours.size(); ++k) {
        RC_ASSERT(copy->neighbours[k]->name == original->neighbours[k]->name);
      }
    }
    // As elements of an array: what one of them refers to is the copy of the other.
    const auto all = NSMake<NSArray>({nodes[1], nodes[0], nodes[1]});
    const auto copied = copyObjectsWithCopySpec(all, 1);
    const auto found = reachableFrom(copied[1].as<Node>());
    RC_ASSERT(found.size() == originals.size() && copied[0].is(copied[2]));
    for (const auto& copy : found) RC_ASSERT(copy->name != 1 || copy.is(copied[0]));
    dissolve(reachableFrom(copied[0].as<Node>()));
    dissolve(found);
    dissolve(copies);
    dissolve(nodes);
  });
  EXPECT_EQ(alive, 0);
}

TEST(ZKGenericVisitor, VisitsEqualObjectsOnce) {
  const auto visitor = NSMake<ZKGenericVisitor>();
  EXPECT_TRUE(visitor->shouldVisitObject(u"a"_ns));
  for (bool stop : {false, true}) {
    const bool asked = stop;
    visitor->visitObject_stop(u"a"_ns, stop);
    EXPECT_EQ(stop, asked);
  }
  EXPECT_FALSE(visitor->shouldVisitObject(NSMake<NSMutableString>(u"a")));
  const auto former = visitor->visitedObjects();
  bool stop = false;
  visitor->visitObject_stop(u"b"_ns, stop);
  EXPECT_EQ(former->description(), u"{(a)}");
  EXPECT_EQ(visitor->valueForKey(u"visitedObjects"_ns).as<NSSet>()->count(), 2U);
  refusesNil("anObject", "addObject:", [&] { visitor->visitObject_stop(nullptr, stop); });
}

TEST(ZKGenericVisitor, ServesManyThreads) {
  // Its objects ask the visitor while it holds its lock for them.
  struct Curious : NSObject {
    explicit Curious(ZKGenericVisitor& aVisitor, int aName) : visitor(aVisitor), name(aName) {}
    bool isEqual(const NSRef<NSObject>& other) const override {
      (void)visitor.visitedObjects();
      return other.as<Curious>()->name == name;
    }
    NSUInteger hash() const override { return 0; }
    ZKGenericVisitor& visitor;
    int name;
  };
  const auto visitor = NSMake<ZKGenericVisitor>();
  std::atomic<int> visits = 0;
  onThreads(8, [&, stop = false]() mutable {
    for (int k = 0; k < 50; ++k) {
      const auto object = NSMake<Curious>(*visitor, k);
      if (!visitor->shouldVisitObject(object)) continue;
      visitor->visitObject_stop(object, stop);
      ++visits;
      EXPECT_LE(visitor->visitedObjects()->count(), 50U);
    }
  });
  EXPECT_EQ(visitor->visitedObjects()->count(), 50U);
  EXPECT_GE(visits, 50);
}

TEST(ZKGenericVisitor, WaitsForTheVisitThatIsGoingOn) {
  // Takes its time to hash.
  struct Slow : NSObject {
    Slow(std::atomic<NSUInteger>& aBegun, NSUInteger aNumber) : begun(aBegun), number(aNumber) {}
    NSUInteger hash() const override {
      begun = number;
      begun.notify_one();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      return 0;
    }
    std::atomic<NSUInteger>& begun;
    NSUInteger number;
  };
  constexpr NSUInteger last = 30;
  const auto record = NSMake<ZKGenericVisitor>();
  std::atomic<NSUInteger> begun = 0;
  const std::jthread visiting([&, stop = false]() mutable {
    for (NSUInteger k = 1; k <= last; ++k) record->visitObject_stop(NSMake<Slow>(begun, k), stop);
  });
  for (NSUInteger count = 0; count < last;) {
    begun.wait(count);
    count = begun;
    EXPECT_GE(record->visitedObjects()->count(), count);
  }
}

}  // namespace
