#include "tests/Diary.h"

namespace {

using namespace std::chrono_literals;

TEST(NSDelayedPerform, DelaysAndCancelsAsAListWould) {
  struct Planned {
    int time;
    int number;
    bool isTracked;
  };
  expectProperty("delayed requests", [] {
    DrivenClock clock;
    const auto other = NSMake<Diary>();
    const auto diary = NSMake<Diary>();
    std::vector<Planned> plan;
    int now = 0;
    const auto steps = *rc::gen::container<std::vector<std::tuple<int, int>>>(
        rc::gen::tuple(rc::gen::inRange(0, 8), rc::gen::inRange(0, 4)));
    for (const auto& [what, value] : steps) {
      const bool isTracked = what == 0 || what == 6;
      const auto mode = isTracked ? tracking : NSDefaultRunLoopMode();
      if (what < 4) {
        diary->performSelector_withObject_afterDelay_inModes(
            Diary::noting(), box(value), std::chrono::seconds(what), listOf(mode));
        plan.push_back({now + what, value, isTracked});
      } else if (what == 4) {
        // Of another target, which has none, and by an equal argument.
        other->cancel(value);
        diary->cancel(value);
        std::erase_if(plan, [&, value = value](const auto& it) { return it.number == value; });
      } else if (what == 5) {
        clock.advance(std::chrono::seconds(value));
        now += value;
      } else {
        makePass(mode);
        std::ranges::stable_sort(plan, {}, &Planned::time);
        Notes expected;
        std::erase_if(plan, [&](const Planned& planned) {
          if (planned.time > now || planned.isTracked != isTracked) return false;
          expected.push_back(planned.number);
          return true;
        });
        RC_ASSERT(diary->taken() == expected);
      }
    }
    for (int k = 0; k < 4; ++k) diary->cancel(k);
    RC_ASSERT(diary->retainCount() == 1U);
  });
}

TEST(NSDelayedPerform, FindsWhatItCancelsByIdentityAndContents) {
  DrivenClock clock;
  struct Keeper : NSObject {
    void keep(const NSRef<NSArray>& /*array*/) const { ++count; }
    mutable int count = 0;
  };
  const auto keeper = NSMake<Keeper>();
  const auto array = NSMake<NSMutableArray>();
  const auto keep = [&](const NSRef<NSObject>& argument) {
    keeper->performSelector_withObject_afterDelay(NSMakeSelector<"keep:", &Keeper::keep>(),
                                                  argument, 0);
  };
  const auto cancel = [&](const NSRef<NSObject>& argument) {
    return NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
        keeper, NSMakeSelector<"keep:", &Keeper::keep>(), argument);
  };
  for (const bool isChanged : {false, true}) {
    keep(array);
    if (isChanged) array->addObject(keeper);
    cancel(isChanged ? array : NSMake<NSArray>());
    // Let go of at once.
    EXPECT_EQ(array->retainCount(), 1U);
  }
  array->removeAllObjects();
  keep(array);
  cancel(nullptr);
  makePass();
  EXPECT_EQ(keeper->count, 1);
  EXPECT_EQ(array->retainCount(), 1U);
  // Comparing arguments may run anything: what that cancels or performs is not counted.
  struct Meddler : NSArray {
    bool isEqual(const NSRef<NSObject>& other) const override {
      std::exchange(meddle, [] {})();
      return NSArray::isEqual(other);
    }
    mutable std::function<void()> meddle;
  };
  for (const bool performs : {false, true}) {
    auto meddler = NSMake<Meddler>();
    meddler->meddle = [&, argument = meddler.get()] {
      if (performs) return makePass();
      EXPECT_EQ(cancel(NSRef<NSObject>::share(argument)), 1U);
    };
    keep(std::exchange(meddler, nullptr));
    EXPECT_EQ(cancel(NSMake<NSArray>()), 0U);
    makePass();
    EXPECT_EQ(keeper->count, performs ? 2 : 1);
  }
}

}  // namespace
