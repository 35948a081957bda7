#include "tests/RunLoops.h"

namespace {

using namespace std::chrono_literals;

TEST(NSTimer, KeepsToItsMultiples) {
  DrivenClock clock;
  int count = 0;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval_repeats_block(1s, true, [&] { ++count; });
  // At 0.9, 1.0, 1.9, 5.5 (several missed, one firing), 5.9, 6.0 and again 6.0 seconds.
  for (const auto& [advance, expected] : Rows<std::chrono::milliseconds, int>{
           {900ms, 0}, {100ms, 1}, {900ms, 1}, {3600ms, 2}, {400ms, 2}, {100ms, 3}, {0ms, 3}}) {
    clock.advance(advance);
    makePass();
    EXPECT_EQ(count, expected);
  }
  timer->fire();
  EXPECT_EQ(count, 4);
  timer->invalidate();
  timer->fire();
  clock.advance(1h);
  makePass();
  EXPECT_EQ(count, 4);
  EXPECT_EQ(timer->retainCount(), 1U);
}

TEST(NSTimer, FiresInEveryModeThatItIsAddedTo) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto tracking = u"tracking"_ns;
  int count = 0;
  const auto timer = NSTimer::timerWithTimeInterval_repeats_block(1s, true, [&](NSTimer& self) {
    if (++count == 1) {
      loop->addTimer_forMode(self.self().as<NSTimer>(), u"third"_ns);
      // It does not fire while it fires.
      makePass(u"third"_ns);
      EXPECT_EQ(count, 1);
    }
    if (count == 4) self.invalidate();
  });
  loop->addTimer_forMode(timer, NSDefaultRunLoopMode());
  loop->addTimer_forMode(timer, tracking);
  for (const auto& mode :
       {tracking, NSDefaultRunLoopMode(), u"third"_ns, u"fourth"_ns, tracking, tracking}) {
    clock.advance(1s);
    makePass(mode);
    makePass(mode);
  }
  EXPECT_EQ(count, 4);
  EXPECT_FALSE(timer->isValid());
  loop->addTimer_forMode(timer, tracking);
  EXPECT_EQ(timer->retainCount(), 1U);

  // Nobody but the run loop holds it, until it lets itself go.
  (void)NSTimer::scheduledTimerWithTimeInterval_repeats_block(
      1s, true, [](NSTimer& self) { self.invalidate(); });
  clock.advance(1s);
  makePass();

  // One that does not repeat is valid until it fires.
  int alive = 0;
  const auto once = NSTimer::scheduledTimerWithTimeInterval_repeats_block(
      -1, false, [&, held = NSMake<Counted>(alive)](const NSRef<NSTimer>& self) {
        EXPECT_FALSE(self->isValid());
      });
  makePass();
  EXPECT_TRUE(once->isValid());
  clock.advance(100us);
  makePass();
  EXPECT_FALSE(once->isValid());
  EXPECT_EQ(alive, 0);
}

TEST(NSTimer, KeepsTheOthersInTheirPass) {
  DrivenClock clock;
  const auto loop = NSRunLoop::currentRunLoop();
  std::string fired;
  NSRef<NSTimer> second;
  const auto add = [&](char name, auto block) {
    return NSTimer::scheduledTimerWithTimeInterval_repeats_block(1s, false, [&, name, block] {
      fired += name;
      block();
    });
  };
  // The first makes the second, which is due, known in another mode.
  add('1', [&] { loop->addTimer_forMode(second, u"tracking"_ns); });
  second = add('2', [] {});
  add('3', [] {});
  clock.advance(2s);
  makePass();
  EXPECT_EQ(fired, "13");
  makePass();
  EXPECT_EQ(fired, "132");
}

TEST(NSTimer, FiresOnceIfItDoesNotRepeat) {
  DrivenClock clock;
  for (const bool throws : {false, true}) {
    int count = 0;
    const auto timer = NSTimer::scheduledTimerWithTimeInterval_repeats_block(1s, false, [&] {
      ++count;
      if (throws) NSException::raise(NSGenericException, "thrown");
      clock.advance(2s);
      makePass();
    });
    try {
      timer->fire();
    } catch (const NSException&) {
      clock.advance(2s);
    }
    EXPECT_FALSE(timer->isValid());
    makePass();
    EXPECT_EQ(count, 1);
  }
}

TEST(NSTimer, RefusesWhatItCannotDo) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval_repeats_block(1h, false, [] {});
  std::jthread([&] {
    expectRaises(
        NSInvalidArgumentException, "the timer is in another run loop (in 'addTimer:forMode:')",
        [&] { NSRunLoop::currentRunLoop()->addTimer_forMode(timer, NSDefaultRunLoopMode()); });
  }).join();
  timer->invalidate();
  refusesNil("block", "timerWithTimeInterval:repeats:block:", [] {
    (void)NSTimer::timerWithTimeInterval_repeats_block(1, false, std::function<void()>());
  });
}

TEST(NSDelay, TakesSecondsAndDurations) {
  for (const NSDelay none : {NSDelay(0), NSDelay(-1), NSDelay(-0.0), NSDelay(std::nan("")),
                             NSDelay(-HUGE_VAL), NSDelay(-5s)}) {
    EXPECT_EQ(none.duration(), 0ns);
  }
  for (const NSDelay endless : {NSDelay(HUGE_VAL), NSDelay(1e300), NSDelay(24h * 365 * 1000),
                                NSDelay(std::chrono::nanoseconds::max())}) {
    EXPECT_EQ(endless.duration(), NSDelay::longest);
  }
  // In units that do not divide nanoseconds.
  using Samples = std::chrono::duration<long long, std::ratio<1, 44100>>;
  EXPECT_EQ(NSDelay(Samples(44100LL * 86400 * 250)).duration(), 250 * 24h);
  EXPECT_EQ(NSDelay(Samples(44100LL * 86400 * 250 + 1)).duration(), 250 * 24h + 22676ns);
  EXPECT_EQ(NSDelay(1.5).duration(), 1500ms);
  EXPECT_EQ(NSDelay(1e-10).duration(), 1ns);
  EXPECT_EQ(NSDelay(250ms).duration(), 250ms);
  EXPECT_EQ(NSDelay(123'456'789'012'345'678ns).duration(), 123'456'789'012'345'678ns);
  EXPECT_EQ(NSDelay(std::chrono::duration<double, std::milli>(0.25)).duration(), 250us);
}

TEST(NSDate, IsAPointInTime) {
  const auto epoch = NSMake<NSDate>(std::chrono::system_clock::time_point());
  EXPECT_EQ(epoch->timeIntervalSinceReferenceDate(), -978'307'200);
  EXPECT_EQ(epoch->description()->utf8(), "1970-01-01 00:00:00 +0000");
  EXPECT_EQ(NSDate::distantPast()->description()->utf8(), "0001-01-01 00:00:00 +0000");
  EXPECT_EQ(NSDate::distantFuture()->description()->utf8(), "4001-01-01 00:00:00 +0000");
  EXPECT_EQ(epoch->compare(NSMake<NSDate>()), NSOrderedAscending);
  EXPECT_EQ(NSDate::distantFuture()->compare(epoch), NSOrderedDescending);
}

}  // namespace
