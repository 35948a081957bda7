#include "tests/RunLoops.h"

#include <optional>

#include <poll.h>

namespace {

using namespace std::chrono_literals;

const auto tracking = u"tracking"_ns;

// Notes the numbers that it is told, in a list of its own.
struct Diary : NSObject {
  void note(const NSRef<NSNumber>& number) { notes.push_back(number->intValue()); }
  void note(int number) { notes.push_back(number); }
  std::vector<int> taken() { return std::exchange(notes, {}); }
  std::vector<int> notes;
};
const NSSelector noting =
    NSMakeSelector<"note:", static_cast<void (Diary::*)(const NSRef<NSNumber>&)>(&Diary::note)>();

NSRef<NSObject> box(int number) { return NSMake<NSNumber>(number); }

TEST(NSRunLoop, MakesPassesOfWhatIsThere) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto note = [&](int number) { return [=] { diary->note(number); }; };
  // Requests in their order, behind what is due.
  loop->performBlock(note(3));
  loop->performBlock([&] {
    diary->note(4);
    loop->performBlock(note(6));
    diary->performSelector_withObject_afterDelay(noting, box(5), 0);
    EXPECT_EQ(loop->currentMode(), NSDefaultRunLoopMode());
  });
  diary->performSelector_withObject_afterDelay(noting, box(2), 1us);
  diary->performSelector_withObject_afterDelay(noting, box(1), 0.0);
  diary->performSelector_withObject_afterDelay(noting, box(9), 1h);
  clock.advance(1us);
  EXPECT_EQ(diary->notes.size(), 0U);
  makePass();
  EXPECT_EQ(diary->taken(), (std::vector{1, 2, 3, 4}));
  // What a pass adds waits for the next one.
  makePass();
  EXPECT_EQ(diary->taken(), (std::vector{5, 6}));
  makePass();
  EXPECT_EQ(diary->taken(), std::vector<int>());
  EXPECT_EQ(loop->currentMode(), nullptr);
  NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(diary, noting, box(9));

  // A pass within a pass takes what is left of the outer one, and what has come.
  loop->performBlock([&] {
    loop->performBlock(note(3));
    makePass();
    diary->note(4);
  });
  loop->performBlock(note(1));
  loop->performBlock(note(2));
  makePass();
  EXPECT_EQ(diary->taken(), (std::vector{1, 2, 3, 4}));
}

TEST(NSRunLoop, LeavesOtherModesAlone) {
  DrivenClock clock;
  // Nobody else's, not even another run's, as it stays a common mode.
  static int runs = 0;
  const auto modal = NSString::stringWithFormat(u"modal %d"_ns, ++runs);
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto modesOf = [](const auto&... modes) { return NSMake<NSArray>({modes...}); };
  const auto both = modesOf(modal, NSDefaultRunLoopMode());
  const auto fill = [&] {
    loop->performBlock([=] { diary->note(1); });
    loop->performInModes_block(modesOf(modal), [=] { diary->note(2); });
    loop->performInModes_block(both, [=] { diary->note(3); });
    loop->performInModes_block(modesOf(NSRunLoopCommonModes()), [=] { diary->note(4); });
    diary->performSelector_withObject_afterDelay(noting, box(5), 0);
    diary->performSelector_withObject_afterDelay_inModes(noting, box(6), 0, both);
    diary->performSelector_withObject_afterDelay_inModes(noting, box(7), 0,
                                                         modesOf(NSRunLoopCommonModes()));
    // Never.
    loop->performInModes_block(modesOf(), [=] { diary->note(0); });
    loop->performInModes_block(nullptr, [=] { diary->note(0); });
    diary->performSelector_withObject_afterDelay_inModes(noting, box(0), 0, nullptr);
    diary->performSelectorOnMainThread_withObject_waitUntilDone_modes(noting, box(0), true,
                                                                      modesOf());
  };
  fill();
  makePass(modal);
  EXPECT_EQ(diary->taken(), (std::vector{6, 2, 3}));
  makePass(u"unknown"_ns);
  EXPECT_EQ(diary->taken(), std::vector<int>());
  makePass();
  EXPECT_EQ(diary->taken(), (std::vector{5, 7, 1, 4}));

  // A nested run in another mode; then that mode is a common one.
  fill();
  loop->performInModes_block(modesOf(u"outer"_ns), [&] {
    EXPECT_TRUE(loop->runMode_beforeDate(modal, NSDate::distantPast()));
    EXPECT_EQ(loop->currentMode()->utf8(), "outer");
  });
  makePass(u"outer"_ns);
  EXPECT_EQ(diary->taken(), (std::vector{6, 2, 3}));
  loop->addCommonMode(modal);
  makePass(modal);
  EXPECT_EQ(diary->taken(), (std::vector{7, 1, 4}));
  makePass();
  EXPECT_EQ(diary->taken(), std::vector{5});
  // The common modes are no mode to run in.
  EXPECT_EQ(loop->limitDateForMode(NSRunLoopCommonModes()), nullptr);
  EXPECT_FALSE(loop->runMode_beforeDate(NSRunLoopCommonModes(), NSDate::distantFuture()));
}

TEST(NSRunLoop, DelaysAndCancelsAsAListWould) {
  // A request of the model; its number is its place in the list.
  struct Planned {
    int time;
    int object;
    bool isTracked;
    bool isPending = true;
  };
  expectProperty("delayed requests", [] {
    DrivenClock clock;
    const auto diaries = {NSMake<Diary>(), NSMake<Diary>()};
    const auto target = *diaries.begin();
    std::vector<Planned> plan;
    int now = 0;
    const auto steps = *rc::gen::container<std::vector<std::tuple<int, int>>>(
        rc::gen::tuple(rc::gen::inRange(0, 8), rc::gen::inRange(0, 4)));
    for (const auto& [what, value] : steps) {
      if (what < 4) {
        const bool isTracked = what == 0;
        target->performSelector_withObject_afterDelay_inModes(
            noting, box(value), std::chrono::seconds(what),
            NSMake<NSArray>({isTracked ? tracking : NSDefaultRunLoopMode()}));
        plan.push_back({now + what, value, isTracked});
      } else if (what == 4) {
        // Of another target, which has none, and by an equal argument.
        for (const auto& diary : diaries) {
          NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(diary, noting,
                                                                            box(value));
        }
        for (auto& planned : plan) planned.isPending &= planned.object != value;
      } else if (what == 5) {
        clock.advance(std::chrono::seconds(value));
        now += value;
      } else {
        const bool isTracked = what == 6;
        makePass(isTracked ? tracking : NSDefaultRunLoopMode());
        std::vector<Planned*> due;
        for (auto& planned : plan) {
          if (planned.isPending && planned.time <= now && planned.isTracked == isTracked) {
            due.push_back(&planned);
          }
        }
        std::ranges::stable_sort(due, {}, [](const auto* planned) { return planned->time; });
        std::vector<int> expected;
        for (auto* const planned : due) {
          planned->isPending = false;
          expected.push_back(planned->object);
        }
        RC_ASSERT(target->taken() == expected);
      }
    }
    for (int k = 0; k < 4; ++k) {
      NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(target, noting, box(k));
    }
    RC_ASSERT(target->retainCount() == 2U);
  });
}

TEST(NSRunLoop, KeepsTheOrderOfEveryProducer) {
  constexpr int each = 5000;
  const auto loop = NSRunLoop::mainRunLoop();
  OrderedCalls calls;
  std::jthread producing([&] {
    calls.make(each, [&](int k, auto block) {
      const auto counting = [&, block] {
        block();
        if (calls.count == OrderedCalls::threads * each) loop->stop();
      };
      // By every way onto the main thread.
      if (k % 100 == 99) {
        dispatch_sync(dispatch_get_main_queue(), counting);
      } else if (k % 3 == 0) {
        dispatch_async(dispatch_get_main_queue(), counting);
      } else if (k % 3 == 1) {
        NSOperationQueue::mainQueue()->addOperationWithBlock(counting);
      } else {
        loop->performBlock(counting);
      }
    });
  });
  loop->run();
  EXPECT_EQ(calls.count, OrderedCalls::threads * each);
}

TEST(NSRunLoop, WakesForEveryWaitingCaller) {
  const LoopThread thread;
  const auto diary = NSMake<Diary>();
  constexpr int trips = 100'000;
  for (int k = 0; k < trips; ++k) {
    diary->performSelector_onThread_withObject_waitUntilDone(noting, thread.get(), box(k), true);
    ASSERT_EQ(diary->notes.back(), k);
    if (k % 1000 == 999) diary->notes.clear();
  }
  // On the thread itself at once.
  diary->notes.clear();
  diary->performSelectorOnMainThread_withObject_waitUntilDone(noting, box(1), true);
  EXPECT_EQ(diary->notes, std::vector{1});
}

TEST(NSRunLoop, LetsGoWhenItsThreadEnds) {
  std::latch deaths(5);
  const auto farewell = [&] { return NSMake<Farewell>(deaths); };
  std::optional<LoopThread> thread(std::in_place);
  const auto inner = thread->get();
  const auto loop = inner->runLoop();
  loop->performBlock([&] {
    // For later, for another mode, as a timer, and as a notification for ever.
    const auto object = farewell();
    NSTimer::scheduledTimerWithTimeInterval_repeats_block(1h, true, [held = farewell()] {});
    farewell()->performSelector_withObject_afterDelay(noting, object, 1h);
    loop->performInModes_block(NSMake<NSArray>({tracking}), [held = farewell()] {});
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle_coalesceMask_forModes(
        NSNotification::notificationWithName_object(u"Late"_ns, farewell()), NSPostASAP,
        NSNotificationNoCoalescing, NSMake<NSArray>({tracking}));
  });
  // Its last request ends it; who waits for one behind it is let go, as is who comes too late.
  loop->performBlock([&] { loop->stop(); });
  const auto diary = NSMake<Diary>();
  diary->performSelector_onThread_withObject_waitUntilDone_modes(noting, inner, box(1), true,
                                                                 NSMake<NSArray>({tracking}));
  thread.reset();
  deaths.wait();
  diary->performSelector_onThread_withObject_waitUntilDone(noting, inner, box(1), true);
  diary->performSelector_onThread_withObject_waitUntilDone(noting, inner, box(1), false);
  EXPECT_TRUE(inner->isFinished());
  EXPECT_EQ(diary->notes, std::vector<int>());
  EXPECT_EQ(diary->retainCount(), 1U);
}

TEST(NSRunLoop, WaitsUntilADateOrARequest) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  // A request for another mode does not end the wait, one for this mode does.
  std::jthread other([&] {
    loop->performInModes_block(NSMake<NSArray>({tracking}), [&] { diary->note(2); });
    loop->performBlock([&] { diary->note(1); });
  });
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(diary->taken(), std::vector{1});
  makePass(tracking);
  EXPECT_EQ(diary->taken(), std::vector{2});
  // Timers fire while it waits, and the date ends it; the clock goes on whenever it is looked at.
  loop->setClock([now = std::chrono::steady_clock::now()]() mutable { return now += 100us; });
  diary->performSelector_withObject_afterDelay(noting, box(3), 1ms);
  diary->performSelector_withObject_afterDelay(noting, box(4), 1h);
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(),
                                       NSDate::dateWithTimeIntervalSinceNow(0.005)));
  EXPECT_EQ(diary->taken(), std::vector{3});
  loop->setClock({});
  // The inner run ends, the outer goes on; a stop without a run ends none, nor does one for the
  // outer run end an inner one.
  loop->stop();
  loop->performBlock([&] { loop->stop(); });
  (void)loop->performPass();
  loop->performBlock([&] {
    loop->stop();
    loop->performBlock([&] { diary->note(0); });
    EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  });
  loop->run();
  EXPECT_EQ(diary->taken(), std::vector{0});
  loop->performBlock([&] {
    loop->performBlock([&] { loop->stop(); });
    loop->run();
    diary->note(5);
    loop->performBlock([&] {
      diary->note(6);
      loop->stop();
    });
  });
  loop->run();
  EXPECT_EQ(diary->taken(), (std::vector{5, 6}));
  NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(diary, noting, box(4));
  EXPECT_EQ(loop->limitDateForMode(NSDefaultRunLoopMode()), NSDate::distantFuture());
}

TEST(NSRunLoop, TellsAHostWhenToMakeAPass) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto isReadable = [&] {
    pollfd descriptor{loop->wakeUpDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
  };
  loop->performBlock([] {});
  EXPECT_TRUE(isReadable());
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_FALSE(isReadable());
  // From another thread, and from this one between the passes.
  std::jthread([&] {
    diary->performSelectorOnMainThread_withObject_waitUntilDone(noting, box(1), false);
  }).join();
  EXPECT_TRUE(isReadable());
  EXPECT_EQ(loop->performPass(), std::nullopt);
  diary->performSelector_withObject_afterDelay(noting, box(2), 5ms);
  EXPECT_TRUE(isReadable());
  EXPECT_EQ(loop->performPass(), 5ms);
  EXPECT_FALSE(isReadable());
  clock.advance(3ms);
  EXPECT_EQ(loop->performPass(), 2ms);
  clock.advance(2ms);
  // What comes within a pass is told by its result.
  loop->performBlock([&] {
    diary->performSelector_withObject_afterDelay(noting, box(4), 1ms);
    diary->performSelectorOnMainThread_withObject_waitUntilDone(noting, box(3), false);
  });
  EXPECT_EQ(loop->performPass(), 0ms);
  EXPECT_EQ(loop->performPass(), 1ms);
  clock.advance(1h);
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->taken(), (std::vector{1, 2, 3, 4}));
  // What another pass has found and left is told by the descriptor.
  loop->performBlock([&] { diary->note(5); });
  makePass(tracking);
  EXPECT_TRUE(isReadable());
  EXPECT_EQ(loop->performPass(), std::nullopt);
  loop->performBlock([&] { diary->performSelector_withObject_afterDelay(noting, box(6), 1ms); });
  makePass();
  EXPECT_TRUE(isReadable());
  EXPECT_EQ(loop->performPass(), 1ms);
  clock.advance(1ms);
  // A host's loop within a block learns what comes while it runs.
  loop->performBlock([&] {
    EXPECT_FALSE(isReadable());
    diary->performSelector_withObject_afterDelay(noting, box(7), 0);
    EXPECT_TRUE(isReadable());
    EXPECT_EQ(loop->performPass(), std::nullopt);
  });
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->notes, (std::vector{5, 6, 7}));
}

TEST(NSRunLoop, FindsWhatItCancelsByIdentityAndContents) {
  DrivenClock clock;
  struct Keeper : NSObject {
    void keep(const NSRef<NSArray>& /*array*/) { ++count; }
    int count = 0;
  };
  const auto keeper = NSMake<Keeper>();
  const auto keeping = NSMakeSelector<"keep:", &Keeper::keep>();
  const auto array = NSMake<NSMutableArray>();
  const auto cancel = [&](const NSRef<NSObject>& argument) {
    NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(keeper, keeping, argument);
  };
  for (const bool isChanged : {false, true}) {
    keeper->performSelector_withObject_afterDelay(keeping, array, 0);
    if (isChanged) array->addObject(keeper);
    cancel(isChanged ? array : NSMake<NSArray>());
    // Let go of at once.
    EXPECT_EQ(array->retainCount(), 1U);
  }
  array->removeAllObjects();
  keeper->performSelector_withObject_afterDelay(keeping, array, 0);
  cancel(nullptr);
  makePass();
  EXPECT_EQ(keeper->count, 1);
  EXPECT_EQ(array->retainCount(), 1U);
  // Comparing arguments may run anything.
  struct Meddler : NSArray {
    bool isEqual(const NSRef<NSObject>& other) const override {
      std::exchange(meddle, [] {})();
      return NSArray::isEqual(other);
    }
    mutable std::function<void()> meddle;
  };
  auto meddler = NSMake<Meddler>();
  meddler->meddle = [&, argument = meddler.get()] { cancel(NSRef<NSObject>::share(argument)); };
  keeper->performSelector_withObject_afterDelay(keeping, std::exchange(meddler, nullptr), 0);
  cancel(NSMake<NSArray>());
  makePass();
  EXPECT_EQ(keeper->count, 1);
}

TEST(NSRunLoop, RefusesWhatItCannotDo) {
  const LoopThread thread;
  const auto other = thread.get()->runLoop();
  const auto diary = NSMake<Diary>();
  expectRaises(NSInternalInconsistencyException, "the run loop is another thread's (in 'run')",
               [&] { other->run(); });
  expectRaises(NSInternalInconsistencyException,
               "the run loop is another thread's (in 'runUntilDate:')",
               [&] { other->runUntilDate(NSDate::distantPast()); });
  expectRaises(NSInvalidArgumentException, "mode is nil (in 'limitDateForMode:')",
               [&] { makePass(nullptr); });
  expectRaises(NSInvalidArgumentException,
               "thread is nil (in 'performSelector:onThread:withObject:waitUntilDone:')", [&] {
                 diary->performSelector_onThread_withObject_waitUntilDone(noting, nullptr, nullptr,
                                                                          true);
               });
  // A selector knows whom it is for; what it throws on the spot comes back.
  const auto perform = [](const NSRef<NSObject>& target, const NSRef<NSObject>& argument) {
    target->performSelectorOnMainThread_withObject_waitUntilDone(noting, argument, true);
  };
  expectRaises(NSInvalidArgumentException, "NSString does not respond to 'note:'",
               [&] { perform(u"text"_ns, box(1)); });
  expectRaises(NSInvalidArgumentException, "'note:' does not take a NSString",
               [&] { perform(diary, u"text"_ns); });
  // A thread that waits for the calling one, here over a queue's block.
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto refuse = [&] {
    expectRaises(NSInternalInconsistencyException,
                 "waiting for NSThread main would never end, as it waits for the calling thread "
                 "(in 'performSelector:onThread:withObject:waitUntilDone:')",
                 [&] { perform(diary, box(1)); });
    EXPECT_THROW(dispatch_sync(queue, [] {}), NSException);
    EXPECT_THROW(dispatch_sync(dispatch_get_main_queue(), [] {}), NSException);
  };
  dispatch_sync(queue, [&] { EXPECT_TRUE(other->postAndWait(NSOnceClosure(refuse), nullptr)); });
  EXPECT_FALSE(NSRunLoop::mainRunLoop()->postAndWait(NSOnceClosure([] {}), nullptr));
  EXPECT_EQ(diary->notes, std::vector<int>());
  // A mode that changes the list of modes when it is copied.
  struct Mode : NSString {
    explicit Mode(const NSRef<NSMutableArray>& list) : modes(list.get()) {}
    NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override {
      for (int k = 0; k < 100; ++k) modes->addObject(tracking);
      return self();
    }
    NSMutableArray* modes;
  };
  const auto modes = NSMake<NSMutableArray>();
  modes->addObject(NSMake<Mode>(modes));
  expectRaises(NSGenericException, "NSMutableArray was mutated while being enumerated",
               [&] { other->performInModes_block(modes, [] {}); });
}

TEST(NSRunLoopDeathTest, AnExceptionEndsTheProgram) {
  for (const bool waits : {false, true}) {
    expectToEndTheProgram("NSInvalidArgumentException: NSString does not respond to 'note:'", [&] {
      const LoopThread thread;
      u"text"_ns->performSelector_onThread_withObject_waitUntilDone(noting, thread.get(), nullptr,
                                                                    waits);
      thread.get()->runLoop()->postAndWait(NSOnceClosure([] {}), nullptr);
    });
  }
  const auto raise = [] { NSException::raise(NSRangeException, "beyond"); };
  const auto loop = NSRunLoop::currentRunLoop();
  const std::vector<std::function<void()>> ways{
      [=] { NSTimer::scheduledTimerWithTimeInterval_repeats_block(0, false, raise); },
      [=] { loop->performBlock(raise); },
      [=] { NSMake<NSThread>(raise)->start(); },
      [=] {
        NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
            nullptr, nullptr, nullptr, raise);
        NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
            NSNotification::notificationWithName_object(tracking, nullptr), NSPostWhenIdle);
      },
  };
  for (const auto& way : ways) {
    expectToEndTheProgram("NSRangeException: beyond", [&] {
      way();
      loop->run();
    });
  }
}

}  // namespace
