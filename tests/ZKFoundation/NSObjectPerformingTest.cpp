#include "tests/Support.h"

#include <functional>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

struct Editor : Counted {
  using Counted::Counted;
  int edits = 0;
};

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
