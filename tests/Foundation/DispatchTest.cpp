#include "tests/Support.h"

#include <atomic>
#include <latch>
#include <memory>
#include <vector>

namespace {

// Runs until all that the queue had before has run.
void finish(const dispatch_queue_t& queue) {
  dispatch_sync(queue, [] {});
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
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  constexpr int blocked = 64;
  std::latch release(1);
  std::latch gone(blocked);
  for (int k = 0; k < blocked; ++k) {
    dispatch_async(queue, [&] {
      release.wait();
      gone.count_down();
    });
  }
  std::latch done(1);
  dispatch_async(queue, [&] { done.count_down(); });
  done.wait();
  release.count_down();
  gone.wait();
}

TEST(DispatchQueue, RunsAllOfAConcurrentQueue) {
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
  constexpr std::ptrdiff_t count = 20'000;
  std::atomic<std::int64_t> sum = 0;
  std::latch done(count);
  for (std::ptrdiff_t k = 0; k < count; ++k) {
    dispatch_async(queue, [&, k] {
      sum += k;
      done.count_down();
    });
  }
  done.wait();
  EXPECT_EQ(sum, count * (count - 1) / 2);
}

TEST(DispatchQueue, LetsGoOfWhatHasRun) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  dispatch_async(queue, [counted = NSMake<Counted>(alive)] { EXPECT_EQ(counted->alive, 1); });
  // The next block finds the former one gone.
  dispatch_sync(queue, [&] { EXPECT_EQ(alive, 0); });
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

TEST(DispatchQueue, RefusesNil) {
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  void (*const nothing)() = nullptr;
  expectRaises(NSInvalidArgumentException, "block is nil (in 'dispatch_async')",
               [&] { dispatch_async(queue, nothing); });
  expectRaises(NSInvalidArgumentException, "block is nil (in 'dispatch_sync')",
               [&] { dispatch_sync(queue, std::function<void()>()); });
  EXPECT_THROW(dispatch_async(nullptr, [] {}), NSException);
}

TEST(DispatchQueueDeathTest, AnExceptionEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto raise = [] { NSException::raise(NSRangeException, "beyond"); };
  for (const bool waits : {false, true}) {
    const auto run = [&] {
      const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
      try {
        if (waits) dispatch_sync(queue, raise);
        dispatch_async(queue, raise);
        finish(queue);
      } catch (const NSException&) {
        std::_Exit(0);
      }
    };
    EXPECT_DEATH(run(), "NSRangeException: beyond");
  }
}

}  // namespace
