#include "tests/RunLoops.h"

#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

using namespace std::chrono_literals;

// Runs until all that the queue had before has run.
void finish(const dispatch_queue_t& queue) {
  dispatch_sync(queue, [] {});
}

// Runs as many blocks as do not end before all of them have begun.
void passGate(int count, const dispatch_queue_t& queue) {
  std::latch gate(count);
  std::latch gone(count);
  for (int k = 0; k < count; ++k) {
    dispatch_async(queue, [&] {
      gate.arrive_and_wait();
      gone.count_down();
    });
  }
  gone.wait();
}

dispatch_group_t enteredGroup() {
  auto group = dispatch_group_create();
  dispatch_group_enter(group);
  return group;
}

TEST(DispatchQueue, RunsBlocksOneAfterTheOther) {
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  constexpr int each = 2000;
  OrderedCalls calls;
  calls.make(each, [&](int k, auto block) {
    if (k % 100 == 99) {
      dispatch_sync(queue, block);
    } else {
      dispatch_async(queue, block);
    }
  });
  finish(queue);
  EXPECT_EQ(calls.count, OrderedCalls::threads * each);
}

TEST(DispatchQueue, RunsWaitingBlocksOnTheCallersThread) {
  for (const auto kind : {DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT}) {
    const auto queue = dispatch_queue_create(nullptr, kind);
    std::thread::id thread;
    dispatch_async(queue, [] {});
    dispatch_sync(queue, [&] { thread = std::this_thread::get_id(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
    // From another queue, and from a block of its own without waiting.
    const auto other = dispatch_queue_create("other", DISPATCH_QUEUE_SERIAL);
    std::vector<int> order;
    dispatch_sync(queue, [&] {
      dispatch_sync(other, [&] { order.push_back(1); });
      dispatch_async(other, [&] { order.push_back(2); });
      finish(other);
    });
    EXPECT_EQ(order, (std::vector{1, 2}));
  }
}

TEST(DispatchQueue, GoesOnWhileManyBlocksAreBlocked) {
  // Blocks that look again and again whether the next one has run.
  const auto many = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  std::array<std::atomic<bool>, 20> hasRun{};
  for (std::size_t k = 0; k + 1 < hasRun.size(); ++k) {
    dispatch_async(many, [&, k] {
      while (!hasRun[k + 1]) std::this_thread::sleep_for(100us);
      hasRun[k] = true;
    });
  }
  dispatch_async(many, [&] { hasRun.back() = true; });
  while (!hasRun.front()) std::this_thread::sleep_for(100us);
  // Blocks that wait for one another, then queues each of which waits for the next one.
  passGate(200, many);
  std::vector<dispatch_queue_t> queues(100);
  for (auto& queue : queues) queue = dispatch_queue_create("link", DISPATCH_QUEUE_SERIAL);
  std::latch gate(100);
  std::latch done(100);
  for (std::size_t k = 0; k < queues.size(); ++k) {
    dispatch_async(queues[k], [&, k] {
      gate.arrive_and_wait();
      if (k + 1 < queues.size()) finish(queues[k + 1]);
      done.count_down();
    });
  }
  done.wait();
}

TEST(DispatchQueue, TellsWhichQueueStarves) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const int standardError = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  rlimit limit{};
  getrlimit(RLIMIT_NPROC, &limit);
  const rlimit low{2, limit.rlim_max};
  setrlimit(RLIMIT_NPROC, &low);
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  // The last of those that have waited may go on after the test.
  const auto gate = std::make_shared<std::latch>(1);
  // There may be any number of threads from before.
  for (pollfd end{ends[0], POLLIN, 0}; poll(&end, 1, 100) == 0;) {
    for (int k = 0; k < 100; ++k) dispatch_async(queue, [gate] { gate->wait(); });
  }
  std::array<char, 200> line{};
  EXPECT_GT(read(ends[0], line.data(), line.size() - 1), 0);
  setrlimit(RLIMIT_NPROC, &limit);
  // Now it may grow again.
  passGate(1, queue);
  gate->count_down();
  const std::string_view told = line.data();
  EXPECT_TRUE(told.starts_with("dispatch_queue many ") && told.find("starve") != told.npos) << told;
  dup2(standardError, STDERR_FILENO);
  close(standardError);
  close(ends[1]);
  EXPECT_EQ(read(ends[0], line.data(), 1), 0);
  close(ends[0]);
}

TEST(DispatchQueue, RaisesWhereAWaitWouldNeverEnd) {
  const auto expectEndless = [](const dispatch_queue_t& queue, const std::string& caller) {
    expectRaises(NSInternalInconsistencyException,
                 "waiting for " + queue->description()->utf8() +
                     " would never end, as it waits for the calling thread, " + caller +
                     " (in 'dispatch_sync')",
                 [&] { finish(queue); });
  };
  expectEndless(dispatch_get_main_queue(), "NSThread main");
  const auto one = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto two = dispatch_queue_create("two", DISPATCH_QUEUE_SERIAL);
  dispatch_async(one, [&] { expectEndless(one, "dispatch_queue one"); });
  dispatch_sync(one, [&] {
    dispatch_sync(two, [&] { expectEndless(one, "dispatch_queue two"); });
    expectEndless(one, "dispatch_queue one");
  });
  // Of two that wait for each other, one is told.
  std::latch gate(2);
  std::atomic<int> told = 0;
  for (const auto& [own, other] : {std::pair(one, two), std::pair(two, one)}) {
    dispatch_async(own, [&, other = other] {
      gate.arrive_and_wait();
      try {
        finish(other);
      } catch (const NSException&) {
        ++told;
      }
    });
  }
  finish(one);
  finish(two);
  EXPECT_EQ(told, 1);
}

TEST(DispatchQueue, RunsAllOfAConcurrentQueue) {
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  constexpr std::ptrdiff_t count = 20'000;
  std::atomic<std::int64_t> sum = 0;
  std::latch deaths(count);
  for (std::ptrdiff_t k = 0; k < count; ++k) {
    dispatch_async(queue, [&, k] {
      // Dies with its block, as the thread may live for ever.
      NSAutorelease(NSMake<Farewell>(deaths));
      sum += k;
    });
  }
  deaths.wait();
  EXPECT_EQ(sum, count * (count - 1) / 2);
}

TEST(DispatchQueue, LetsGoOfWhatHasRun) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  dispatch_async(queue, [counted = NSMake<Counted>(alive)] { EXPECT_EQ(counted->alive, 1); });
  // The next block finds the former one gone.
  dispatch_sync(queue, [&] { EXPECT_EQ(alive, 0); });
  // With what it has autoreleased, also when a worker runs them at one go.
  std::latch gate(1);
  dispatch_async(queue, [&] { gate.wait(); });
  dispatch_async(queue, [&] { NSAutorelease(NSMake<Counted>(alive)); });
  dispatch_async(queue, [&] { EXPECT_EQ(alive, 0); });
  gate.count_down();
  finish(queue);
  // A block larger than the queue's room for it, and one that cannot be copied.
  const std::string text(100, 'x');
  std::string seen;
  dispatch_async(queue,
                 [&seen, text, many = std::array<int, 40>{}, only = std::make_unique<int>(7)] {
                   seen = text + std::to_string(*only + many[0]);
                 });
  finish(queue);
  EXPECT_EQ(seen, text + "7");
  EXPECT_EQ(queue->description()->utf8(), "dispatch_queue one");
}

TEST(DispatchQueue, RunsDelayedBlocksByItsClock) {
  const auto clock = NSMake<NSManualClock>();
  const auto start = clock->now();
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  std::string order;
  const auto add = [&](NSDelay delay, char name) {
    dispatch_after(
        delay, queue, [&order, name] { order += name; }, clock);
  };
  add(3s, 'd');
  add(1s, 'b');
  add(1s, 'c');
  add(0, 'a');
  add(4s, 'e');
  for (const auto& [duration, expected] : Rows<std::chrono::milliseconds, std::string>{
           {0ms, "a"}, {999ms, "a"}, {1ms, "abc"}, {2s, "abcd"}}) {
    clock->advance(duration);
    finish(queue);
    EXPECT_EQ(order, expected);
  }
  EXPECT_EQ(clock->now() - start, 3s);
  // By the system's clock, which keeps them apart too.
  std::latch done(2);
  dispatch_after(2ms, queue, [&] { order += 'g', done.count_down(); });
  dispatch_after(0, queue, [&] { order += 'f', done.count_down(); });
  done.wait();
  EXPECT_EQ(order, "abcdfg");
}

TEST(NSManualClock, WakesWhatStandsOnIt) {
  const auto clock = NSMake<NSManualClock>();
  const auto end = clock->now() + 1h;
  // A run loop that waits, a thread that waits, and one that waits for a group.
  std::latch fired(1);
  std::latch scheduled(1);
  std::jthread looping([&] {
    const auto loop = NSRunLoop::currentRunLoop();
    loop->setClock(clock);
    (void)NSTimer::scheduledTimerWithTimeInterval_repeats_block(59min, false, [&] {
      EXPECT_EQ(clock->now(), end);
      loop->stop();
      fired.count_down();
    });
    scheduled.count_down();
    loop->run();
  });
  const std::jthread waiting([&] { clock->waitUntil(end); });
  scheduled.wait();
  clock->advance(1h);
  fired.wait();
  const auto group = enteredGroup();
  std::atomic<bool> isOver = false;
  const std::jthread grouped([&] {
    EXPECT_FALSE(dispatch_group_wait(group, 1s, clock));
    isOver = true;
  });
  // However late it begins to wait.
  while (!isOver) clock->advance(1s);
  dispatch_group_leave(group);
  EXPECT_TRUE(dispatch_group_wait(group, 0));
}

TEST(NSManualClock, StopsAtTheEndOfTime) {
  const auto clock = NSMake<NSManualClock>();
  const auto loop = NSRunLoop::currentRunLoop();
  loop->setClock(clock);
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  std::string calls;
  clock->advance(HUGE_VAL);
  performBlock_afterDelay(
      clock, [&] { calls += 'b'; }, HUGE_VAL);
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval_repeats_block(HUGE_VAL, true, [&] { calls += 't'; });
  dispatch_after(
      HUGE_VAL, queue, [&] { calls += 'q'; }, clock);
  loop->runUntilDate(NSDate::distantPast());
  finish(queue);
  EXPECT_EQ(calls, "");
  for (const auto* const expected : {"qbt", "qbtt"}) {
    clock->advance(HUGE_VAL);
    EXPECT_EQ(clock->now(), NSManualClock::Time::max());
    finish(queue);
    loop->runUntilDate(NSDate::distantFuture());
    EXPECT_EQ(calls, expected);
  }
  EXPECT_FALSE(dispatch_group_wait(enteredGroup(), HUGE_VAL, clock));
  timer->invalidate();
  loop->setClock({});
}

TEST(DispatchGroup, NoticesThatItWasEmpty) {
  const auto clock = NSMake<NSManualClock>();
  const auto group = enteredGroup();
  {
    const std::jthread waiting([&] { EXPECT_TRUE(dispatch_group_wait(group, 1h, clock)); });
    // A wait by a clock holds its group, no longer than it waits.
    while (group->retainCount() == 1) std::this_thread::yield();
    dispatch_group_leave(group);
    dispatch_group_enter(group);
    clock->advance(1h);
  }
  EXPECT_FALSE(dispatch_group_wait(group, 0, clock));
  dispatch_group_leave(group);
  EXPECT_TRUE(dispatch_group_wait(group, 1h, clock));
  EXPECT_EQ(group->retainCount(), 1U);
}

TEST(DispatchGroup, TellsWhenAllHaveLeft) {
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  const auto group = dispatch_group_create();
  constexpr int count = 200;
  int alive = 0;
  std::atomic<int> done = 0;
  std::latch gate(1);
  const auto counted = NSMake<Counted>(alive);
  for (int k = 0; k < count; ++k) {
    dispatch_group_async(group, queue, [&, held = counted] {
      gate.wait();
      ++done;
    });
  }
  std::latch told(1);
  dispatch_group_notify(group, queue, [&] {
    EXPECT_EQ(done, count);
    told.count_down();
  });
  EXPECT_FALSE(dispatch_group_wait(group, 0));
  gate.count_down();
  dispatch_group_wait(group);
  // With all that its blocks held.
  EXPECT_EQ(counted->retainCount(), 1U);
  told.wait();
  dispatch_group_notify(group, dispatch_get_main_queue(), [&] { done = 0; });
  makePass();
  EXPECT_EQ(done, 0);
  expectRaises(NSInternalInconsistencyException,
               "more has left the group than entered it (in 'dispatch_group_leave')",
               [&] { dispatch_group_leave(group); });
}

TEST(DispatchQueue, TellsWhatWaits) {
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  std::latch begun(1);
  std::latch gate(1);
  dispatch_async(queue, [&] {
    begun.count_down();
    gate.wait();
  });
  begun.wait();
  dispatch_async(queue, [] {});
  dispatch_async(queue, [large = std::array<int, 40>{}] { (void)large; });
  const auto pending = queue->pendingWork();
  gate.count_down();
  finish(queue);
  ASSERT_EQ(pending->count(), 2U);
  for (const auto& line : pending) {
    EXPECT_NE(shown(line).find("DispatchQueue_TellsWhatWaits_Test"), std::string::npos)
        << shown(line);
  }
  EXPECT_EQ(queue->pendingWork()->count(), 0U);
}

TEST(DispatchQueue, RefusesNil) {
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  void (*const nothing)() = nullptr;
  refusesNil("block", "dispatch_async", [&] { dispatch_async(queue, nothing); });
  refusesNil("block", "dispatch_sync", [&] { dispatch_sync(queue, std::function<void()>()); });
  EXPECT_THROW(dispatch_async(nullptr, [] {}), NSException);
}

}  // namespace
