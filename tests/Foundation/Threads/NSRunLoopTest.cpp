#include "tests/RunLoops.h"

#include <optional>

#include <poll.h>
#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

using namespace std::chrono_literals;
using Notes = std::vector<int>;

const auto tracking = u"tracking"_ns;

template <class... Modes>
NSRef<NSArray> listOf(const Modes&... modes) {
  return NSMake<NSArray>({modes...});
}

NSRef<NSObject> box(int number) { return NSMake<NSNumber>(number); }

// Notes the numbers that it is told, in a list of its own.
struct Diary : NSObject {
  void note(int number) { notes.push_back(number); }
  void noteNumber(const NSRef<NSNumber>& number) { note(number->intValue()); }
  static NSSelector noting() { return NSMakeSelector<"note:", &Diary::noteNumber>(); }
  std::function<void()> noter(int number) {
    return [self = self().as<Diary>(), number] { self->note(number); };
  }
  void noteLater(int number, NSDelay delay = 0) {
    performSelector_withObject_afterDelay(noting(), box(number), delay);
  }
  void noteOn(const NSRef<NSThread>& thread, int number, bool wait) {
    performSelector_onThread_withObject_waitUntilDone(noting(), thread, box(number), wait);
  }
  void cancel(int number) {
    cancelPreviousPerformRequestsWithTarget_selector_object(self(), noting(), box(number));
  }
  Notes taken() { return std::exchange(notes, {}); }
  Notes notes;
};

TEST(NSRunLoop, MakesPassesOfWhatIsThere) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  // Requests in their order, after what is due.
  loop->performBlock(diary->noter(3));
  loop->performBlock([&] {
    diary->note(4);
    loop->performBlock(diary->noter(6));
    diary->noteLater(5);
    EXPECT_EQ(loop->currentMode(), NSDefaultRunLoopMode());
  });
  diary->noteLater(2, 1us);
  diary->noteLater(1);
  diary->noteLater(9, 1h);
  clock.advance(1us);
  EXPECT_EQ(diary->notes, Notes());
  // What a pass adds waits for the next one.
  for (const Notes& expected : {Notes{1, 2, 3, 4}, Notes{5, 6}, Notes{}}) {
    makePass();
    EXPECT_EQ(diary->taken(), expected);
  }
  EXPECT_EQ(loop->currentMode(), nullptr);
  diary->cancel(9);
}

TEST(NSRunLoop, TakesWhatIsLeftInAPassWithinAPass) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  loop->performBlock([&] {
    loop->performBlock(diary->noter(3));
    makePass();
    diary->note(4);
  });
  loop->performBlock(diary->noter(1));
  loop->performBlock(diary->noter(2));
  makePass();
  EXPECT_EQ(diary->taken(), (Notes{1, 2, 3, 4}));
}

TEST(NSRunLoop, LeavesOtherModesAlone) {
  DrivenClock clock;
  // Nobody else's, not even another run's, as it stays a common mode.
  static int runs = 0;
  const auto modal = NSString::stringWithFormat(u"modal %d"_ns, ++runs);
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto fill = [&] {
    const auto both = listOf(modal, NSDefaultRunLoopMode());
    const auto common = listOf(NSRunLoopCommonModes());
    int number = 0;
    loop->performBlock(diary->noter(++number));
    for (const auto& modes : {listOf(modal), both, common}) {
      loop->performInModes_block(modes, diary->noter(++number));
    }
    diary->noteLater(++number);
    for (const auto& modes : {both, common}) {
      diary->performSelector_withObject_afterDelay_inModes(Diary::noting(), box(++number), 0,
                                                           modes);
    }
    // Never.
    for (const auto& none : {NSMake<NSArray>(), NSRef<NSArray>()}) {
      loop->performInModes_block(none, diary->noter(0));
      diary->performSelector_withObject_afterDelay_inModes(Diary::noting(), box(0), 0, none);
      diary->performSelectorOnMainThread_withObject_waitUntilDone_modes(Diary::noting(), box(0),
                                                                        true, none);
    }
  };
  fill();
  // A nested run in another mode.
  loop->performInModes_block(listOf(u"outer"_ns), [&] {
    EXPECT_TRUE(loop->runMode_beforeDate(modal, NSDate::distantPast()));
    EXPECT_EQ(loop->currentMode()->utf8(), "outer");
  });
  makePass(u"outer"_ns);
  EXPECT_EQ(diary->taken(), (Notes{6, 2, 3}));
  makePass();
  EXPECT_EQ(diary->taken(), (Notes{5, 7, 1, 4}));
  fill();
  loop->addCommonMode(modal);
  makePass(modal);
  EXPECT_EQ(diary->taken(), (Notes{6, 7, 1, 2, 3, 4}));
  makePass();
  EXPECT_EQ(diary->taken(), Notes{5});
  // The common modes are no mode to run in.
  EXPECT_EQ(loop->limitDateForMode(NSRunLoopCommonModes()), nullptr);
  EXPECT_FALSE(loop->runMode_beforeDate(NSRunLoopCommonModes(), NSDate::distantFuture()));
}

TEST(NSRunLoop, DelaysAndCancelsAsAListWould) {
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
    diary->noteOn(thread.get(), k, true);
    ASSERT_EQ(diary->notes.back(), k);
    if (k % 1000 == 999) diary->notes.clear();
  }
  // On the thread itself at once.
  diary->notes.clear();
  diary->noteOn(NSThread::mainThread(), 1, true);
  EXPECT_EQ(diary->notes, Notes{1});
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
    farewell()->performSelector_withObject_afterDelay(Diary::noting(), object, 1h);
    loop->performInModes_block(listOf(tracking), [held = farewell()] {});
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle_coalesceMask_forModes(
        NSNotification::notificationWithName_object(u"Late"_ns, farewell()), NSPostASAP,
        NSNotificationNoCoalescing, listOf(tracking));
  });
  // Its last request ends it; who waits for a later one goes on, as does who comes too late.
  loop->performBlock([&] { loop->stop(); });
  const auto diary = NSMake<Diary>();
  diary->performSelector_onThread_withObject_waitUntilDone_modes(Diary::noting(), inner, box(1),
                                                                 true, listOf(tracking));
  thread.reset();
  deaths.wait();
  for (const bool wait : {true, false}) diary->noteOn(inner, 1, wait);
  EXPECT_TRUE(inner->isFinished());
  EXPECT_EQ(diary->notes, Notes());
  EXPECT_EQ(diary->retainCount(), 1U);
}

TEST(NSRunLoop, WaitsUntilADateOrARequest) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  // A request for another mode does not end the wait, one for this mode does.
  std::jthread other([&] {
    loop->performInModes_block(listOf(tracking), diary->noter(2));
    loop->performBlock(diary->noter(1));
  });
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(diary->taken(), Notes{1});
  makePass(tracking);
  EXPECT_EQ(diary->taken(), Notes{2});
  // Timers fire while it waits, and the date ends it; the clock goes on whenever it is looked at.
  loop->setClock([now = std::chrono::steady_clock::now()]() mutable { return now += 100us; });
  diary->noteLater(3, 1ms);
  diary->noteLater(4, 1h);
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(),
                                       NSDate::dateWithTimeIntervalSinceNow(0.005)));
  EXPECT_EQ(diary->taken(), Notes{3});
  loop->setClock({});
  diary->cancel(4);
  EXPECT_EQ(loop->limitDateForMode(NSDefaultRunLoopMode()), NSDate::distantFuture());
}

TEST(NSRunLoop, MakesHostedPassesInAnyMode) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  diary->noteLater(1);
  diary->performSelector_withObject_afterDelay_inModes(Diary::noting(), box(2), 0,
                                                       listOf(tracking));
  diary->performSelector_withObject_afterDelay_inModes(Diary::noting(), box(3), 5s,
                                                       listOf(tracking));
  EXPECT_EQ(loop->performPassInMode(tracking), 5s);
  EXPECT_EQ(diary->taken(), Notes{2});
  EXPECT_EQ(loop->performPassInMode(NSRunLoopCommonModes()), std::nullopt);
  refusesNil("mode", "performPassInMode:", [&] { loop->performPassInMode(nullptr); });
  diary->cancel(3);
  makePass();
  EXPECT_EQ(diary->taken(), Notes{1});
}

TEST(NSRunLoop, WatchesDescriptors) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const auto loop = NSRunLoop::currentRunLoop();
  std::string seen;
  const auto source = NSDescriptorSource::sourceWithDescriptor_events_block(
      ends[0], NSDescriptorReadable, [&](NSDescriptorSource& self) {
        EXPECT_EQ(self.readyEvents(), NSDescriptorReadable);
        char unit = 0;
        if (read(self.descriptor(), &unit, 1) == 0) return self.invalidate();
        seen += unit;
      });
  loop->addSource_forMode(source, NSDefaultRunLoopMode());
  loop->addSource_forMode(source, NSRunLoopCommonModes());
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantPast()));
  ASSERT_EQ(write(ends[1], "ab", 2), 2);
  makePass(tracking);
  EXPECT_EQ(seen, "");
  EXPECT_EQ(loop->performPass(), 0ns);
  EXPECT_EQ(seen, "a");
  // While it waits, and beside what other threads post.
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(seen, "ab");
  std::jthread([&] { loop->performBlock([&] { seen += '+'; }); }).join();
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  const std::jthread writing([&] { EXPECT_EQ(write(ends[1], "c", 1), 1); });
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(seen, "ab+c");
  // What can be written to is ready at once; the token ends it, and a closed end ends the reader.
  const auto writable = NSDescriptorSource::sourceWithDescriptor_events_block(
      ends[1], NSDescriptorWritable, [&] { seen += 'w'; });
  loop->addSource_forMode(writable, tracking);
  makePass(tracking);
  writable->invalidate();
  makePass(tracking);
  EXPECT_EQ(seen, "ab+cw");
  close(ends[1]);
  makePass();
  EXPECT_FALSE(source->isValid());
  EXPECT_EQ(source->retainCount(), 1U);
  close(ends[0]);
  EXPECT_THROW((void)NSDescriptorSource::sourceWithDescriptor_events_block(-1, 1, [] {}),
               NSException);
}

TEST(NSRunLoop, TellsWhatWaits) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  diary->noteLater(4, 1500ms);
  loop->performInModes_block(listOf(tracking, u"other"_ns), [] {});
  const auto queue = NSNotificationQueue::defaultQueue();
  queue->enqueueNotification_postingStyle(
      NSNotification::notificationWithName_object(u"DiaryDidGrow"_ns, diary), NSPostWhenIdle);
  const auto timer = NSTimer::scheduledTimerWithTimeInterval_repeats_block(2s, true, [] {});
  std::vector<std::string> lines;
  for (const auto& line : loop->pendingWork()) lines.push_back(shown(line));
  const auto tells = [&](const std::string& begin, const std::string& end) {
    return std::ranges::any_of(
        lines, [&](const auto& line) { return line.starts_with(begin) && line.ends_with(end); });
  };
  EXPECT_EQ(lines.size(), 4U);
  EXPECT_TRUE(tells("note: of (anonymous namespace)::Diary with NSNumber",
                    ", due in 1.5 s, in NSDefaultRunLoopMode"));
  EXPECT_TRUE(
      tells("block (anonymous namespace)::NSRunLoop_TellsWhatWaits_Test", ", in tracking, other"));
  EXPECT_TRUE(tells("notification DiaryDidGrow of (anonymous namespace)::Diary",
                    ", when idle, in NSDefaultRunLoopMode"));
  EXPECT_TRUE(tells("timer of ", ", every 2 s, due in 2 s, in NSDefaultRunLoopMode"));
  if (testing::Test::HasFailure()) {
    for (const auto& line : lines) std::cerr << line << '\n';
  }
  timer->invalidate();
  diary->cancel(4);
  (void)loop->performPassInMode(tracking);
  (void)loop->performPass();
  EXPECT_EQ(loop->pendingWork()->count(), 0U);
}

TEST(NSRunLoop, StopsTheInnermostRun) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto stop = [&] { loop->stop(); };
  // Without a run it ends none, nor does one for the outer run end an inner one.
  stop();
  loop->performBlock(stop);
  (void)loop->performPass();
  loop->performBlock([&] {
    loop->stop();
    loop->performBlock(diary->noter(0));
    EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  });
  loop->run();
  EXPECT_EQ(diary->taken(), Notes{0});
  // The inner run ends, the outer goes on.
  loop->performBlock([&] {
    loop->performBlock(stop);
    loop->run();
    diary->note(5);
    loop->performBlock(diary->noter(6));
    loop->performBlock(stop);
  });
  loop->run();
  EXPECT_EQ(diary->taken(), (Notes{5, 6}));
}

TEST(NSRunLoop, TellsAHostWhenToMakeAPass) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto isReadable = [&] {
    pollfd descriptor{loop->wakeUpDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
  };
  const auto passWhenTold = [&] {
    EXPECT_TRUE(isReadable());
    const auto due = loop->performPass();
    EXPECT_FALSE(isReadable());
    return due;
  };
  loop->performBlock([] {});
  EXPECT_EQ(passWhenTold(), std::nullopt);
  // From another thread, and from this one between the passes.
  std::jthread([&] { diary->noteOn(NSThread::mainThread(), 1, false); }).join();
  EXPECT_EQ(passWhenTold(), std::nullopt);
  diary->noteLater(2, 5ms);
  EXPECT_EQ(passWhenTold(), 5ms);
  clock.advance(3ms);
  EXPECT_EQ(loop->performPass(), 2ms);
  clock.advance(2ms);
  // What comes within a pass is told by its result.
  loop->performBlock([&] {
    diary->noteLater(4, 1ms);
    diary->noteOn(NSThread::mainThread(), 3, false);
  });
  EXPECT_EQ(loop->performPass(), 0ms);
  EXPECT_EQ(loop->performPass(), 1ms);
  clock.advance(1h);
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->taken(), (Notes{1, 2, 3, 4}));
  // What another pass has found and left is told by the descriptor.
  loop->performBlock(diary->noter(5));
  makePass(tracking);
  EXPECT_EQ(passWhenTold(), std::nullopt);
  loop->performBlock([&] { diary->noteLater(6, 1ms); });
  makePass();
  EXPECT_EQ(passWhenTold(), 1ms);
  clock.advance(1ms);
  // A host's loop within a block learns what comes while it runs.
  loop->performBlock([&] {
    EXPECT_FALSE(isReadable());
    diary->noteLater(7);
    EXPECT_EQ(passWhenTold(), std::nullopt);
  });
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->notes, (Notes{5, 6, 7}));
}

TEST(NSRunLoop, FindsWhatItCancelsByIdentityAndContents) {
  DrivenClock clock;
  struct Keeper : NSObject {
    void keep(const NSRef<NSArray>& /*array*/) { ++count; }
    int count = 0;
  };
  const auto keeper = NSMake<Keeper>();
  const auto array = NSMake<NSMutableArray>();
  const auto keep = [&](const NSRef<NSObject>& argument) {
    keeper->performSelector_withObject_afterDelay(NSMakeSelector<"keep:", &Keeper::keep>(),
                                                  argument, 0);
  };
  const auto cancel = [&](const NSRef<NSObject>& argument) {
    NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
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
  keep(std::exchange(meddler, nullptr));
  cancel(NSMake<NSArray>());
  makePass();
  EXPECT_EQ(keeper->count, 1);
}

TEST(NSRunLoop, RefusesWhatItCannotDo) {
  const LoopThread thread;
  const auto other = thread.get()->runLoop();
  const auto diary = NSMake<Diary>();
  const auto perform = [](const NSRef<NSObject>& target, const NSRef<NSObject>& argument) {
    target->performSelectorOnMainThread_withObject_waitUntilDone(Diary::noting(), argument, true);
  };
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
  for (const auto& [name, reason, action] :
       Rows<std::u16string_view, const char*, std::function<void()>>{
           {NSInternalInconsistencyException, "the run loop is another thread's (in 'run')",
            [&] { other->run(); }},
           {NSInternalInconsistencyException,
            "the run loop is another thread's (in 'runUntilDate:')",
            [&] { other->runUntilDate(NSDate::distantPast()); }},
           {NSInvalidArgumentException, "mode is nil (in 'limitDateForMode:')",
            [] { makePass(nullptr); }},
           {NSInvalidArgumentException,
            "thread is nil (in 'performSelector:onThread:withObject:waitUntilDone:')",
            [&] { diary->noteOn(nullptr, 1, true); }},
           // A selector knows whom it is for; what it throws on the spot comes back.
           {NSInvalidArgumentException, "NSString does not respond to 'note:'",
            [&] { perform(u"text"_ns, box(1)); }},
           {NSInvalidArgumentException, "'note:' does not take a NSString",
            [&] { perform(diary, u"text"_ns); }},
           {NSGenericException, "NSMutableArray was mutated while being enumerated",
            [&] { other->performInModes_block(modes, [] {}); }},
       }) {
    expectRaises(name, reason, action);
  }
  EXPECT_EQ(diary->notes, Notes());
}

TEST(NSRunLoop, RefusesToWaitForAThreadThatWaitsForIt) {
  const LoopThread thread;
  const auto diary = NSMake<Diary>();
  // Over a queue's block.
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto refuse = [&] {
    expectRaises(
        NSInternalInconsistencyException,
        "waiting for NSThread main would never end, as it waits for the calling thread, "
        "NSThread without a name (in 'performSelector:onThread:withObject:waitUntilDone:')",
        [&] { diary->noteOn(NSThread::mainThread(), 1, true); });
    EXPECT_THROW(dispatch_sync(queue, [] {}), NSException);
    EXPECT_THROW(dispatch_sync(dispatch_get_main_queue(), [] {}), NSException);
    diary->note(2);
  };
  dispatch_sync(queue,
                [&] { performBlock_onThread_waitUntilDone(diary, refuse, thread.get(), true); });
  EXPECT_EQ(diary->notes, Notes{2});
}

// Runs the action and expects an exception to end the program: none comes back to who waits.
void expectToEndTheProgram(const std::function<void()>& action) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto run = [&] {
    try {
      action();
      NSRunLoop::currentRunLoop()->run();
    } catch (const NSException&) {
      std::_Exit(0);
    }
  };
  EXPECT_DEATH(run(), "NSRangeException: beyond");
}

TEST(NSRunLoopDeathTest, AnExceptionEndsTheProgram) {
  const auto raise = [] {
    // Where it was thrown: nothing has been unwound.
    struct Local {
      ~Local() { std::_Exit(0); }
    };
    const Local local;
    NSException::raise(NSRangeException, "beyond");
  };
  expectToEndTheProgram([=] { performBlock_afterDelay(tracking, raise, 0); });
  expectToEndTheProgram(
      [=] { NSTimer::scheduledTimerWithTimeInterval_repeats_block(0, false, raise); });
  expectToEndTheProgram([=] { NSRunLoop::currentRunLoop()->performBlock(raise); });
  expectToEndTheProgram([=] { NSMake<NSThread>(raise)->start(); });
  expectToEndTheProgram([=] {
    NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
        nullptr, nullptr, nullptr, raise);
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
        NSNotification::notificationWithName_object(tracking, nullptr), NSPostWhenIdle);
  });
  for (const bool waits : {false, true}) {
    expectToEndTheProgram([=] {
      const LoopThread thread;
      performBlock_onThread_waitUntilDone(tracking, raise, thread.get(), waits);
    });
    expectToEndTheProgram([=] {
      const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
      performBlock_onQueue_waitUntilDone(tracking, raise, queue, waits);
    });
  }
}

}  // namespace
