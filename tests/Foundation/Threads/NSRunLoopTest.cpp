#include "tests/Diary.h"

#include <optional>

#include <poll.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

using namespace std::chrono_literals;

// Whether the run loop tells its host to make a pass.
bool isReadable() {
  pollfd descriptor{NSRunLoop::currentRunLoop()->wakeUpDescriptor(), POLLIN, 0};
  return poll(&descriptor, 1, 0) == 1;
}

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

TEST(NSRunLoop, LetsCallersGoBeforeWhatElseItDropsAtItsEnd) {
  const auto diary = NSMake<Diary>();
  // Ends when there are both a request whose contents wait for the caller, and the caller's.
  const auto thread = NSMake<NSThread>([] {
    while (NSRunLoop::currentRunLoop()->pendingWork()->count() < 2) std::this_thread::yield();
  });
  const auto ask = [=](void* /*nothing*/) { diary->noteOn(NSThread::mainThread(), 1, true); };
  thread->runLoop()->performBlock([held = std::shared_ptr<void>(nullptr, ask)] {});
  thread->start();
  diary->noteOn(thread, 2, true);
  NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture());
  EXPECT_EQ(diary->notes, Notes{1});
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

TEST(NSRunLoop, TellsAHostWhatAnotherModeHasLeft) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  const auto passTracking = [&](const auto& block) {
    while (loop->performPass() == 0ns) {
    }
    loop->performInModes_block(listOf(tracking), block);
    // However often.
    for (int k = 0; k < 3; ++k) (void)loop->performPassInMode(tracking);
    return isReadable();
  };
  const auto enqueue = [](NSPostingStyle style) {
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
        NSNotification::notificationWithName_object(u"Left"_ns, nullptr), style);
  };
  {
    const DrivenClock clock;
    diary->noteLater(3, 5s);
    for (const auto& [block, isTold] : Rows<std::function<void()>, bool>{
             {[&] { std::jthread([&] { loop->performBlock(diary->noter(1)); }).join(); }, true},
             {[&] { diary->noteLater(2); }, true},
             {[&] { enqueue(NSPostASAP); }, true},
             {[&] { enqueue(NSPostWhenIdle); }, true},
             // The host comes before that.
             {[&] { diary->noteLater(4, 6s); }, false},
             {[&] { diary->noteLater(0, 4s); }, true},
         }) {
      EXPECT_EQ(passTracking(block), isTold);
    }
    EXPECT_EQ(loop->performPass(), 4s);
    for (const int left : {0, 3, 4}) diary->cancel(left);
  }
  // By such a clock a host cannot tell when to come.
  const auto clock = NSMake<NSManualClock>();
  loop->setClock(clock);
  diary->noteLater(5, 5s);
  EXPECT_TRUE(passTracking([&] { clock->advance(5s); }));
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->notes, (Notes{1, 2, 5}));
  loop->setClock({});
  EXPECT_TRUE(isReadable());
}

TEST(NSRunLoop, TellsWhatWaits) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
  diary->noteLater(5);
  clock.advance(1ms);
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
  EXPECT_EQ(lines.size(), 5U);
  EXPECT_TRUE(tells("note: of Diary with NSNumber", ", due in 0 s, in NSDefaultRunLoopMode"));
  EXPECT_TRUE(tells("note: of Diary with NSNumber", ", due in 1.5 s, in NSDefaultRunLoopMode"));
  EXPECT_TRUE(
      tells("block (anonymous namespace)::NSRunLoop_TellsWhatWaits_Test", ", in tracking, other"));
  EXPECT_TRUE(tells("notification DiaryDidGrow of Diary", ", when idle, in NSDefaultRunLoopMode"));
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
  // Nothing else ends it, not the end of time.
  const auto clock = NSMake<NSManualClock>();
  loop->setClock(clock);
  loop->performBlock([&] {
    for (int k = 0; k < 2; ++k) clock->advance(NSDelay::longest);
    loop->performBlock(diary->noter(7));
    loop->performBlock(stop);
  });
  loop->run();
  EXPECT_EQ(diary->taken(), Notes{7});
  loop->setClock({});
}

TEST(NSRunLoop, TellsAHostWhenToMakeAPass) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto diary = NSMake<Diary>();
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
  // Who asks what waits does not answer for the host.
  EXPECT_EQ(loop->pendingWork()->count(), 1U);
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
  EXPECT_EQ(loop->performPass(), std::nullopt);
  // A host's loop within a block learns what comes while it runs.
  loop->performBlock([&] {
    EXPECT_FALSE(isReadable());
    diary->noteLater(7);
    EXPECT_EQ(passWhenTold(), std::nullopt);
  });
  EXPECT_EQ(loop->performPass(), std::nullopt);
  EXPECT_EQ(diary->notes, (Notes{5, 6, 7}));
  // And what waits already, be it for later: the pass around it has told nothing yet.
  diary->noteLater(8, 1h);
  const auto nest = [&] { EXPECT_EQ(passWhenTold(), 1h); };
  const NSObservation observation(u"Nest"_ns, nullptr, nest);
  const auto queue = NSNotificationQueue::defaultQueue();
  for (const std::function<void()>& ask : {
           std::function<void()>([&] { loop->performBlock(nest); }),
           {[&] { performBlock_afterDelay(diary, nest, 0); }},
           {[&] {
             enqueueNotificationName_object_postingStyle(queue, u"Nest"_ns, nullptr, NSPostASAP);
           }},
       }) {
    ask();
    EXPECT_EQ(passWhenTold(), 1h);
  }
  diary->cancel(8);
}

}  // namespace
