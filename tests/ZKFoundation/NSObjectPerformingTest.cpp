#include "tests/RunLoops.h"

#include <functional>
#include <memory>
#include <thread>

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

// A way to have a block run with a receiver, and who runs it when.
struct Way {
  std::string name;
  std::function<void(const NSRef<Worker>&, const NSRef<NSBlock>&)> perform;
  bool isAtOnce;
  bool isOnMainThread;
};

std::vector<Way> waysTo(const NSRef<NSThread>& thread) {
  const auto main = NSThread::mainThread();
  const auto modes = NSMake<NSArray>({NSDefaultRunLoopMode()});
  std::vector<Way> ways{
      {"afterDelay", [](auto& e, auto& block) { performBlock_afterDelay(e, block, 0); }, false,
       true},
      {"afterDelay:inModes",
       [=](auto& e, auto& block) { performBlock_afterDelay_inModes(e, block, 0, modes); }, false,
       true},
      {"inBackground", [](auto& e, auto& block) { performBlockInBackground(e, block); }, false,
       false},
  };
  for (const bool waits : {false, true}) {
    const std::string suffix = waits ? " and waits" : "";
    ways.push_back(
        {"onMainThread" + suffix,
         [=](auto& e, auto& block) { performBlockOnMainThread_waitUntilDone(e, block, waits); },
         waits, true});
    ways.push_back({"onMainThread:modes" + suffix,
                    [=](auto& e, auto& block) {
                      performBlockOnMainThread_waitUntilDone_modes(e, block, waits, modes);
                    },
                    waits, true});
    ways.push_back(
        {"onThread, its own" + suffix,
         [=](auto& e, auto& block) { performBlock_onThread_waitUntilDone(e, block, main, waits); },
         waits, true});
    ways.push_back({"onThread" + suffix,
                    [=](auto& e, auto& block) {
                      performBlock_onThread_waitUntilDone(e, block, thread, waits);
                    },
                    waits, false});
    ways.push_back({"onThread:modes" + suffix,
                    [=](auto& e, auto& block) {
                      performBlock_onThread_waitUntilDone_modes(e, block, thread, waits, modes);
                    },
                    waits, false});
  }
  return ways;
}

TEST(NSObjectPerforming, RunsBlocksOnThreads) {
  const LoopThread thread;
  const auto loop = NSRunLoop::currentRunLoop();
  for (const Way& way : waysTo(thread.get())) {
    SCOPED_TRACE(way.name);
    std::latch deaths(2);
    auto worker = NSMake<Worker>(deaths);
    bool isOnMainThread = false;
    auto block = NSMakeBlock<Worker>([&, held = NSMake<Farewell>(deaths)](Worker& target) {
      ++target.edits;
      isOnMainThread = NSThread::isMainThread();
      loop->performBlock([&] { loop->stop(); });
    });
    way.perform(worker, block);
    if (way.isOnMainThread || way.isAtOnce) {
      EXPECT_EQ(worker->edits, way.isAtOnce ? 1 : 0);
    }
    loop->run();
    EXPECT_EQ(worker->edits, 1);
    EXPECT_EQ(isOnMainThread, way.isOnMainThread);
    // A nil block takes its turn.
    way.perform(worker, nullptr);
    makePass();
    EXPECT_THROW(way.perform(nullptr, block), NSException);
    worker = nullptr;
    block = nullptr;
    deaths.wait();
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
    // With the receiver by its type, as an object or not at all.
    performBlock_onQueue_waitUntilDone(
        editor, [](Editor& target) { ++target.edits; }, queue, waits);
    performBlock_onQueue_waitUntilDone(
        editor, [](const NSRef<Editor>& target) { ++target->edits; }, queue, waits);
    performBlock_onQueue_waitUntilDone(
        editor, [&] { ++editor->edits; }, queue, waits);
    performBlock_onQueue_waitUntilDone(
        editor, NSMakeBlock<Editor>([](Editor& target) { ++target.edits; }), queue, waits);
    // Nil blocks take their turn and do nothing.
    performBlock_onQueue_waitUntilDone(editor, std::function<void(Editor&)>(), queue, waits);
    performBlock_onQueue_waitUntilDone(editor, NSRef<NSBlock>(), queue, waits);
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
  performBlock_onQueue_waitUntilDone(queue, block, queue, false);
  dispatch_sync(queue, [&] { EXPECT_EQ(alive, 0); });
  {
    const NSAutoreleasePool pool;
    performBlock_onQueue_waitUntilDone(queue, block, queue, true);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
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
