#include "tests/Support.h"

#include <latch>
#include <unordered_set>

namespace {

// Looks at a weak reference to itself while it is destroyed.
struct Mortal : Counted {
  using Counted::Counted;
  Mortal(const Mortal&) = delete;
  ~Mortal() override { wasNil = !weak.lock(); }
  NSWeakRef<Mortal> weak;
  static inline bool wasNil = false;
};

struct Left : NSObject {};
struct Aside {
  virtual ~Aside() = default;
  int number = 7;
};
struct Both : Left, Aside {};

TEST(NSWeakRef, GivesNilWhenTheObjectHasDied) {
  int alive = 0;
  auto object = NSMake<Mortal>(alive);
  object->weak = object;
  const NSWeakRef<const NSObject> base = object->weak;
  const NSWeakRef weak = object;
  EXPECT_EQ(object->retainCount(), 1U);
  EXPECT_FALSE(object->isUniquelyReferenced());
  auto held = weak.lock();
  EXPECT_PRED2(areSame, held, object);
  object = nullptr;
  EXPECT_PRED2(areSame, base.lock(), held);
  held = nullptr;
  EXPECT_EQ(alive, 0);
  EXPECT_TRUE(Mortal::wasNil);
  EXPECT_FALSE(weak.lock());
  EXPECT_FALSE(base.lock());
  EXPECT_FALSE(NSWeakRef<Both>().lock());
  const auto both = NSMake<Both>();
  EXPECT_EQ(NSWeakRef(both).lock()->number, 7);
  static_assert(sizeof(NSObject) == 2 * sizeof(void*));
}

// Like a table of strong references by number: what a step does to both must agree.
TEST(NSWeakRef, LivesAsLongAsStrongReferences) {
  expectProperty("any of making, copying and dropping", [] {
    constexpr std::size_t places = 4;
    int alive = 0;
    std::array<NSRef<Counted>, places> strong;
    std::array<NSWeakRef<Counted>, places> weak;
    std::array<int, places> strongNames{};
    std::array<int, places> weakNames{};
    int made = 0;
    const auto place = rc::gen::inRange<std::size_t>(0, places);
    const auto steps = *rc::gen::container<std::vector<std::array<std::size_t, 3>>>(
        rc::gen::container<std::array<std::size_t, 3>>(place));
    for (const auto& [step, from, to] : steps) {
      if (step == 0) {
        strong[to] = NSMake<Counted>(alive);
        strongNames[to] = ++made;
      } else if (step == 1) {
        weak[to] = strong[from];
        weakNames[to] = strongNames[from];
      } else if (step == 2) {
        weak[to] = NSWeakRef(weak[from]);
        weakNames[to] = weakNames[from];
      } else {
        strong[to] = nullptr;
        strongNames[to] = 0;
      }
      for (std::size_t k = 0; k < places; ++k) {
        NSRef<Counted> expected;
        for (std::size_t j = 0; j < places; ++j) {
          if (strongNames[j] == weakNames[k]) expected = strong[j];
        }
        RC_ASSERT(weak[k].lock().is(expected));
        RC_ASSERT((weak[k] == weak[0]) == (weakNames[k] == weakNames[0]));
      }
    }
    RC_ASSERT(std::unordered_set(weak.begin(), weak.end()).size() ==
              std::unordered_set(weakNames.begin(), weakNames.end()).size());
  });
}

TEST(NSWeakRef, RacesWithTheLastRelease) {
  for (int round = 0; round < 500; ++round) {
    int alive = 0;
    auto object = NSMake<Counted>(alive);
    std::vector<NSRef<Counted>> strong(4, std::exchange(object, nullptr));
    const NSWeakRef weak = strong[0];
    std::latch start(8);
    std::atomic<std::size_t> next = 0;
    onThreads(8, [&] {
      const std::size_t self = next++;
      start.arrive_and_wait();
      if (self < strong.size()) {
        strong[self] = nullptr;
        return;
      }
      while (const auto held = NSWeakRef(weak).lock()) EXPECT_EQ(held->alive, 1);
    });
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(weak.isNil());
  }
}

struct Noted : NSObject {};
struct Fragile : NSObject {
  explicit Fragile(bool fails) {
    if (fails) NSException::raise(NSGenericException, "not made");
  }
};

TEST(NSLiveObjects, AreCountedByClassOnDemand) {
  const auto countOf = [](const char* name) {
    const auto count = NSObject::liveObjectCounts()->objectForKey(string(name)).as<NSNumber>();
    return count ? count->intValue() : 0;
  };
  const std::string prefix = NSClass::of<Noted>().name()->utf8();
  const auto before = NSMake<Noted>();
  NSObject::setCountsLiveObjects(true);
  auto weak = NSWeakRef(NSMake<Noted>());
  EXPECT_EQ(countOf(prefix.c_str()), 0);
  std::vector<NSRef<Noted>> kept(3);
  std::ranges::generate(kept, NSMake<Noted>);
  const auto text = NSMake<NSMutableString>("of its own class");
  EXPECT_THROW((void)NSMake<Fragile>(true), NSException);
  NSObject::setCountsLiveObjects(false);
  const auto after = NSMake<Noted>();
  EXPECT_EQ(countOf(prefix.c_str()), 3);
  EXPECT_EQ(countOf("NSMutableString"), 1);
  EXPECT_EQ(countOf(NSClass::of<Fragile>().name()->utf8().c_str()), 0);
  onThreads(3, [&kept, next = std::make_shared<std::atomic<std::size_t>>(0)] {
    kept[(*next)++] = nullptr;
  });
  EXPECT_EQ(countOf(prefix.c_str()), 0);
}

#ifndef NDEBUG
struct Clinging : NSObject {
  explicit Clinging(NSRef<Clinging>& aPlace) : place(aPlace) {}
  Clinging(const Clinging&) = delete;
  ~Clinging() override { place = share(this); }
  NSRef<Clinging>& place;
};
struct Twice : NSObject {
  Twice() = default;
  Twice(const Twice&) = delete;
  ~Twice() override { release(); }
};

TEST(NSLifetimesDeathTest, StopWithTheNameOfTheClass) {
  NSRef<Clinging> place;
  EXPECT_DEATH(NSMake<Clinging>(place), "Clinging 0x.* was retained after its last release");
  EXPECT_DEATH(NSMake<Twice>(), "Twice 0x.* was released after its last release");
  Noted local;
  EXPECT_DEATH((void)local.self(), "Noted 0x.* was retained although it stands on the stack");
  EXPECT_DEATH((void)NSRef<Noted>::adopt(&local), "Noted 0x.* was released although it stands");
}
#endif

}  // namespace
