#include "tests/RunLoops.h"

#include <sys/resource.h>
#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

struct Editor : Counted {
  using Counted::Counted;
  int edits = 0;
};

struct Worker : Farewell {
  using Farewell::Farewell;
  int edits = 0;
};

enum class Where { caller, mainThread, thread, newThread };

// A way to have a block run with a receiver.
struct Way {
  std::string name;
  Where where;
  bool waits;
  std::function<void(const NSRef<Worker>&, const NSRef<NSBlock>&)> perform;
};

std::vector<Way> waysTo(const NSRef<NSThread>& thread) {
  const auto main = NSThread::mainThread();
  const auto modes = NSMake<NSArray>({NSDefaultRunLoopMode()});
  std::vector<Way> ways{
      {"afterDelay", Where::caller, false,
       [](auto& w, auto& block) { performBlock_afterDelay(w, block, 0); }},
      {"afterDelay:inModes", Where::caller, false,
       [=](auto& w, auto& block) { performBlock_afterDelay_inModes(w, block, 0, modes); }},
      {"inBackground", Where::newThread, false,
       [](auto& w, auto& block) { performBlockInBackground(w, block); }},
  };
  for (const bool waits : {false, true}) {
    const auto add = [&](const std::string& name, Where where, auto perform) {
      ways.push_back({name + (waits ? " and waits" : ""), where, waits, perform});
    };
    add("onMainThread", Where::mainThread,
        [=](auto& w, auto& block) { performBlockOnMainThread_waitUntilDone(w, block, waits); });
    add("onMainThread:modes", Where::mainThread, [=](auto& w, auto& block) {
      performBlockOnMainThread_waitUntilDone_modes(w, block, waits, modes);
    });
    add("onThread, the main one", Where::mainThread,
        [=](auto& w, auto& block) { performBlock_onThread_waitUntilDone(w, block, main, waits); });
    add("onThread", Where::thread, [=](auto& w, auto& block) {
      performBlock_onThread_waitUntilDone(w, block, thread, waits);
    });
    add("onThread:modes", Where::thread, [=](auto& w, auto& block) {
      performBlock_onThread_waitUntilDone_modes(w, block, thread, waits, modes);
    });
  }
  return ways;
}

// Has the block run from one of two threads, one of which is the main thread.
void expectToRun(const Way& way, const NSRef<NSThread>& caller, const NSRef<NSThread>& thread) {
  SCOPED_TRACE(way.name);
  const auto loop = NSRunLoop::mainRunLoop();
  std::latch deaths(2);
  auto worker = NSMake<Worker>(deaths);
  NSRef<NSThread> where;
  auto block = NSMakeBlock<Worker>([&, held = NSMake<Farewell>(deaths)](Worker& target) {
    ++target.edits;
    where = NSThread::currentThread();
    loop->performBlock([&] { loop->stop(); });
  });
  const auto expected = way.where == Where::caller       ? caller
                        : way.where == Where::mainThread ? NSThread::mainThread()
                        : way.where == Where::thread     ? thread
                                                         : nullptr;
  performBlock_onThread_waitUntilDone(
      worker,
      [&, way](Worker& target) {
        way.perform(worker, block);
        if (way.waits) {
          EXPECT_EQ(target.edits, 1);
        } else if (expected == caller) {
          EXPECT_EQ(target.edits, 0);
        }
      },
      caller, caller == NSThread::mainThread());
  loop->run();
  // The caller has done its part.
  performBlock_onThread_waitUntilDone(
      worker, [] {}, caller, true);
  EXPECT_EQ(worker->edits, 1);
  if (expected) {
    EXPECT_EQ(where, expected);
  } else {
    EXPECT_TRUE(where != caller && where != thread);
  }
  worker = nullptr;
  block = nullptr;
  deaths.wait();
}

TEST(NSObjectPerforming, RunsBlocksOnThreads) {
  const LoopThread thread;
  const LoopThread other;
  for (const Way& way : waysTo(thread.get())) {
    expectToRun(way, NSThread::mainThread(), thread.get());
    expectToRun(way, thread.get(), thread.get());
    expectToRun(way, other.get(), thread.get());
    // A nil block takes its turn, a nil receiver none.
    std::latch death(1);
    way.perform(NSMake<Worker>(death), nullptr);
    makePass();
    death.wait();
    EXPECT_THROW(way.perform(nullptr, NSMakeBlock<Worker>([] {})), NSException);
  }
}

TEST(NSObjectPerforming, CallsOnTheMainThread) {
  const auto editor = NSMake<NSString>();
  bool isCalled = false;
  const auto call = [&] { isCalled = true; };
  performBlockOnMainThread(editor, call);
  EXPECT_TRUE(std::exchange(isCalled, false));
  std::jthread([&] {
    performBlockOnMainThread(editor, call);
    performBlockOnMainThread(editor, std::function<void()>());
    performBlockOnMainThread(editor, nullptr);
    performBlockOnMainThread(editor, NSMakeBlock<NSString>(call));
  }).join();
  EXPECT_FALSE(isCalled);
  makePass();
  EXPECT_TRUE(isCalled);
}

TEST(NSObjectPerforming, CancelsByTheBlockThatItGave) {
  DrivenClock clock;
  int alive = 0;
  const auto editor = NSMake<Editor>(alive);
  const auto other = NSMake<Editor>(alive);
  const auto edit = [counted = NSMake<Counted>(alive)](Editor& target) { ++target.edits; };
  const auto first = performBlock_afterDelay(editor, edit, std::chrono::minutes(1));
  const auto second = performBlock_afterDelay(editor, edit, 60.0);
  const auto third =
      performBlock_afterDelay_inModes(editor, first, 60, NSMake<NSArray>({u"tracking"_ns}));
  EXPECT_EQ(third, first);
  EXPECT_NE(first, second);
  // Not by a block of the same code, for another target, from another thread or by nothing.
  cancelPreviousPerformRequestsWithTarget_block(editor, NSMakeBlock<Editor>(edit));
  cancelPreviousPerformRequestsWithTarget_block(other, first);
  cancelPreviousPerformRequestsWithTarget_block(nullptr, first);
  cancelPreviousPerformRequestsWithTarget_block(editor, nullptr);
  std::jthread([&] { cancelPreviousPerformRequestsWithTarget_block(editor, first); }).join();
  // In every mode.
  cancelPreviousPerformRequestsWithTarget_block(editor, first);
  clock.advance(std::chrono::seconds(59));
  makePass();
  EXPECT_EQ(editor->edits, 0);
  clock.advance(std::chrono::seconds(1));
  makePass(u"tracking"_ns);
  EXPECT_EQ(editor->edits, 0);
  makePass();
  EXPECT_EQ(editor->edits, 1);
  EXPECT_EQ(editor->retainCount(), 1U);
  EXPECT_EQ(first->retainCount(), 2U);
  // A block that has begun is not cancelled any more, and one that is due may be.
  NSRef<NSBlock> due;
  const auto cancel = [&](Editor& target) {
    ++target.edits;
    cancelPreviousPerformRequestsWithTarget_block(editor, due);
  };
  const auto cancelling = performBlock_afterDelay(editor, cancel, 0);
  due = performBlock_afterDelay(editor, edit, 0);
  makePass();
  EXPECT_EQ(editor->edits, 2);
}

TEST(NSObjectPerforming, RunsBlocksOnQueues) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  auto editor = NSMake<Editor>(alive);
  for (const bool waits : {true, false}) {
    const auto perform = [&](const auto& block) {
      performBlock_onQueue_waitUntilDone(editor, block, queue, waits);
    };
    // With the receiver by its type, as an object or not at all.
    perform([](Editor& target) { ++target.edits; });
    perform([](const NSRef<Editor>& target) { ++target->edits; });
    perform([&] { ++editor->edits; });
    perform(NSMakeBlock<Editor>([](Editor& target) { ++target.edits; }));
    // Nil blocks take their turn and do nothing.
    perform(std::function<void(Editor&)>());
    perform(NSRef<NSBlock>());
    dispatch_sync(queue, [&] { EXPECT_EQ(editor->edits, waits ? 4 : 8); });
  }

  // The request holds its receiver, and lets go of it when it has run.
  performBlock_onQueue_waitUntilDone(
      editor, [](Editor& target) { EXPECT_EQ(target.alive, 1); }, queue, false);
  editor = nullptr;
  dispatch_sync(queue, [&] { EXPECT_EQ(alive, 0); });
  // One that is waited for, too, even when the block drops the caller's reference.
  editor = NSMake<Editor>(alive);
  const auto drop = [&](Editor& target) {
    editor = nullptr;
    EXPECT_EQ(alive, 1);
    ++target.edits;
  };
  performBlock_onQueue_waitUntilDone(editor, drop, queue, true);
  EXPECT_EQ(alive, 0);
}

TEST(NSObjectPerforming, BorrowsTheBlockOfACallThatWaits) {
  const LoopThread thread;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  struct Block {
    Block() = default;
    Block(const Block&) = delete;
    void operator()() { ++calls; }
    int calls = 0;
  };
  Block block;
  performBlock_onQueue_waitUntilDone(queue, block, queue, true);
  performBlock_onThread_waitUntilDone(queue, block, thread.get(), true);
  performBlockOnMainThread_waitUntilDone(queue, block, true);
  EXPECT_EQ(block.calls, 3);
  expectRaises(NSInvalidArgumentException, "the block cannot be copied",
               [&] { performBlock_onQueue_waitUntilDone(queue, block, queue, false); });
}

TEST(NSObjectPerforming, OpensAPoolForBlocksThatNobodyWaitsFor) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto block = [&] { NSAutorelease(NSMake<Counted>(alive)); };
  // Within a pass there is a larger one.
  performBlock_onQueue_waitUntilDone(queue, block, dispatch_get_main_queue(), false);
  dispatch_async(dispatch_get_main_queue(), [&] { EXPECT_EQ(alive, 0); });
  makePass();
  {
    const NSAutoreleasePool pool;
    performBlock_onQueue_waitUntilDone(queue, block, queue, true);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

// Tells when it dies on the thread that it is not for.
struct Bound : Farewell {
  Bound(std::latch& latch, std::thread::id thread, std::atomic<int>& count)
      : Farewell(latch), sender(thread), strays(count) {}
  Bound(const Bound&) = delete;
  ~Bound() override {
    if (std::this_thread::get_id() == sender) ++strays;
  }
  const std::thread::id sender;
  std::atomic<int>& strays;
};

TEST(NSObjectPerforming, LeavesWhatItIsGivenToTheRequest) {
  constexpr std::ptrdiff_t each = 200;
  constexpr std::ptrdiff_t ways = 8;
  std::latch deaths(each * ways);
  std::atomic<int> strays = 0;
  const LoopThread thread;
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto modes = NSMake<NSArray>({NSDefaultRunLoopMode()});
  std::jthread([&] {
    const auto bound = [&] { return NSMake<Bound>(deaths, std::this_thread::get_id(), strays); };
    const auto block = [&] { return [held = bound()] {}; };
    for (std::ptrdiff_t k = 0; k < each; ++k) {
      performBlockOnMainThread(queue, block());
      performBlockOnMainThread(queue, NSMakeBlock<NSObject>(block()));
      performBlockOnMainThread_waitUntilDone(queue, block(), false);
      performBlockOnMainThread_waitUntilDone_modes(queue, block(), false, modes);
      performBlock_onThread_waitUntilDone(queue, block(), thread.get(), false);
      performBlock_onQueue_waitUntilDone(queue, block(), queue, false);
      performBlockInBackground(queue, block());
      enqueueNotificationInMainThread_postingStyle(
          NSNotification::notificationWithName_object(u"Changed"_ns, bound()), NSPostNow);
    }
    loop->performBlock([&] { loop->stop(); });
  }).detach();
  loop->run();
  deaths.wait();
  EXPECT_EQ(strays, 0);
}

TEST(NSObjectPerformingDeathTest, KeepsNothingOfWhatIsRefused) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto run = [] {
    int alive = 0;
    const auto editor = NSMake<Editor>(alive);
    const auto serial = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
    const auto concurrent = dispatch_queue_create("many", DISPATCH_QUEUE_CONCURRENT);
    const auto edit = [held = NSMake<Counted>(alive)](Editor& target) { ++target.edits; };
    rlimit limit{};
    getrlimit(RLIMIT_NPROC, &limit);
    const rlimit none{0, limit.rlim_max};
    setrlimit(RLIMIT_NPROC, &none);
    // The limit is not for an administrator.
    constexpr uid_t nobody = 65534;
    EXPECT_TRUE(geteuid() != 0 || setuid(nobody) == 0);
    const auto refused = "Resource temporarily unavailable (in '";
    for (const auto& queue : {serial, concurrent}) {
      expectRaises(NSGenericException, refused + std::string("dispatch_async')"),
                   [&] { performBlock_onQueue_waitUntilDone(editor, edit, queue, false); });
    }
    expectRaises(NSGenericException, refused + std::string("start')"),
                 [&] { performBlockInBackground(editor, edit); });
    EXPECT_EQ(alive, 2);
    // Nor does a queue stall.
    setrlimit(RLIMIT_NPROC, &limit);
    for (const auto& queue : {serial, concurrent}) {
      std::latch done(1);
      dispatch_async(queue, [&] { done.count_down(); });
      done.wait();
    }
    EXPECT_EQ(editor->edits, 0);
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(NSObjectPerforming, RefusesANullQueue) {
  int alive = 0;
  const auto editor = NSMake<Editor>(alive);
  for (const bool waits : {true, false}) {
    expectRaises(NSInvalidArgumentException,
                 "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')", [&] {
                   performBlock_onQueue_waitUntilDone(
                       editor, [](Editor& target) { ++target.edits; }, nullptr, waits);
                 });
  }
  EXPECT_EQ(editor->edits, 0);
  const auto block = NSMakeBlock<Editor>([](Editor& target) { ++target.edits; });
  ZK_invokeTargetBlock(editor, block);
  ZK_invokeTargetBlock(editor, nullptr);
  EXPECT_EQ(editor->edits, 1);
  EXPECT_TRUE(block->isEqual(block));
  EXPECT_EQ(block->copy(), block);
  EXPECT_FALSE(block->isEqual(NSMakeBlock<Editor>([](Editor& target) { ++target.edits; })));
}

}  // namespace
