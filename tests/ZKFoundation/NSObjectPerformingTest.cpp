#include "tests/Files.h"
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

// A way to have a block run with a receiver, and the thread on which it runs.
struct Way {
  std::string name;
  NSRef<NSThread> thread;
  bool waits;
  std::function<void(const NSRef<Worker>&, const NSRef<NSBlock>&)> perform;
};

std::vector<Way> waysFrom(const NSRef<NSThread>& caller, const NSRef<NSThread>& thread) {
  const auto main = NSThread::mainThread();
  const auto modes = NSMake<NSArray>({NSDefaultRunLoopMode()});
  std::vector<Way> ways{
      {"afterDelay", caller, false,
       [](auto& w, auto& block) { performBlock_afterDelay(w, block, 0); }},
      {"afterDelay:inModes", caller, false,
       [=](auto& w, auto& block) { performBlock_afterDelay_inModes(w, block, 0, modes); }},
      {"inBackground", nullptr, false,
       [](auto& w, auto& block) { performBlockInBackground(w, block); }},
  };
  for (const bool waits : {false, true}) {
    ways.push_back({"onMainThread", main, waits, [=](auto& w, auto& block) {
                      performBlockOnMainThread_waitUntilDone(w, block, waits);
                    }});
    ways.push_back({"onMainThread:modes", main, waits, [=](auto& w, auto& block) {
                      performBlockOnMainThread_waitUntilDone_modes(w, block, waits, modes);
                    }});
    for (const auto& target : {main, thread}) {
      ways.push_back({"onThread", target, waits, [=](auto& w, auto& block) {
                        performBlock_onThread_waitUntilDone(w, block, target, waits);
                      }});
      ways.push_back({"onThread:modes", target, waits, [=](auto& w, auto& block) {
                        performBlock_onThread_waitUntilDone_modes(w, block, target, waits, modes);
                      }});
    }
  }
  return ways;
}

// Has the block run from the caller, whose run loop or the main one runs meanwhile.
void expectToRun(const Way& way, const NSRef<NSThread>& caller, const NSRef<NSThread>& thread) {
  SCOPED_TRACE(way.name + (way.waits ? " and waits" : ""));
  const auto loop = NSRunLoop::mainRunLoop();
  std::latch deaths(2);
  auto worker = NSMake<Worker>(deaths);
  NSRef<NSThread> where;
  auto block = NSMakeBlock<Worker>([&, held = NSMake<Farewell>(deaths)](Worker& target) {
    ++target.edits;
    where = NSThread::currentThread();
    loop->performBlock([&] { loop->stop(); });
  });
  const auto call = [&](Worker& target) {
    way.perform(worker, block);
    // Elsewhere it may have run or not.
    if (way.waits || way.thread == caller) {
      EXPECT_EQ(target.edits, way.waits ? 1 : 0);
    }
  };
  performBlock_onThread_waitUntilDone(worker, call, caller, caller == NSThread::mainThread());
  loop->run();
  // The caller has done its part.
  const auto nothing = [] {};
  performBlock_onThread_waitUntilDone(worker, nothing, caller, true);
  EXPECT_EQ(worker->edits, 1);
  EXPECT_EQ(where == caller, way.thread == caller);
  EXPECT_EQ(where == thread, way.thread == thread);
  EXPECT_EQ(where == NSThread::mainThread(), way.thread == NSThread::mainThread());
  worker = nullptr;
  block = nullptr;
  deaths.wait();
}

TEST(NSObjectPerforming, RunsBlocksOnThreads) {
  const LoopThread thread;
  const LoopThread other;
  for (const auto& caller : {NSThread::mainThread(), thread.get(), other.get()}) {
    for (const Way& way : waysFrom(caller, thread.get())) expectToRun(way, caller, thread.get());
  }
  for (const Way& way : waysFrom(NSThread::mainThread(), thread.get())) {
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
  const auto block = NSMakeBlock<NSString>(call);
  performBlockOnMainThread(editor, call);
  EXPECT_TRUE(std::exchange(isCalled, false));
  std::jthread([&] {
    performBlockOnMainThread(editor, call);
    performBlockOnMainThread(editor, std::function<void()>());
    performBlockOnMainThread(editor, nullptr);
    performBlockOnMainThread(editor, block);
  }).join();
  EXPECT_EQ(cancelDelayedBlock(editor, block), ZKCancellation::unknown);
  EXPECT_FALSE(isCalled);
  makePass();
  EXPECT_TRUE(isCalled);
  EXPECT_EQ(cancelDelayedBlock(editor, block), ZKCancellation::alreadyRan);
}

TEST(NSObjectPerforming, CancelsByTheBlockThatItGave) {
  DrivenClock clock;
  int alive = 0;
  const auto editor = NSMake<Editor>(alive);
  const auto edit = [counted = NSMake<Counted>(alive)](Editor& target) { ++target.edits; };
  const auto first = performBlock_afterDelay(editor, edit, std::chrono::minutes(1));
  const auto second = performBlock_afterDelay(editor, edit, 60.0);
  EXPECT_NE(first, second);
  EXPECT_EQ(first->copy(), first);
  EXPECT_EQ(performBlock_afterDelay_inModes(editor, first, 60, NSMake<NSArray>({u"tracking"_ns})),
            first);
  // Not by a block of the same code, for another target, from another thread or by nothing.
  const auto cancel = [](const auto& target, const NSRef<NSBlock>& block) {
    cancelPreviousPerformRequestsWithTarget_block(target, block);
  };
  cancel(editor, NSMakeBlock<Editor>(edit));
  cancel(NSMake<Editor>(alive), first);
  cancel(NSRef<Editor>(), first);
  cancel(editor, nullptr);
  std::jthread([&] { cancel(editor, second); }).join();
  // In every mode.
  cancel(editor, first);
  for (const auto& [seconds, mode, edits] :
       Rows<int, NSRef<NSString>, int>{{59, NSDefaultRunLoopMode(), 0},
                                       {1, u"tracking"_ns, 0},
                                       {0, NSDefaultRunLoopMode(), 1}}) {
    clock.advance(std::chrono::seconds(seconds));
    makePass(mode);
    EXPECT_EQ(editor->edits, edits);
  }
  EXPECT_EQ(editor->retainCount(), 1U);
  EXPECT_EQ(first->retainCount(), 1U);
  // A block that has begun is not cancelled any more, and one that is due may be.
  NSRef<NSBlock> due;
  const auto cancelling = [&](Editor& target) {
    ++target.edits;
    cancel(editor, due);
  };
  performBlock_afterDelay(editor, cancelling, 0);
  due = performBlock_afterDelay(editor, edit, 0);
  makePass();
  EXPECT_EQ(editor->edits, 2);
}

TEST(NSObjectPerforming, TellsWhatCancellingFound) {
  int alive = 0;
  const auto editor = NSMake<Editor>(alive);
  const auto block = performBlock_afterDelay(
      editor, [](Editor& self) { ++self.edits; }, 60);
  EXPECT_EQ(cancelDelayedBlock(NSMake<Editor>(alive), block), ZKCancellation::unknown);
  EXPECT_EQ(cancelDelayedBlock(editor, block), ZKCancellation::cancelled);
  EXPECT_EQ(cancelDelayedBlock(editor, block), ZKCancellation::unknown);
  EXPECT_EQ(cancelDelayedBlock(editor, nullptr), ZKCancellation::unknown);
  // Within itself, and again once it has run.
  NSRef<NSBlock> running;
  running = performBlock_afterDelay(
      editor,
      [&](const NSRef<Editor>& self) {
        EXPECT_EQ(cancelDelayedBlock(self, running), ZKCancellation::alreadyRan);
        performBlock_afterDelay(self, running, 60);
      },
      0);
  makePass();
  EXPECT_EQ(cancelDelayedBlock(editor, running), ZKCancellation::cancelled);
  EXPECT_EQ(cancelDelayedBlock(editor, running), ZKCancellation::alreadyRan);
  EXPECT_EQ(editor->edits, 0);
}

TEST(NSObjectPerforming, RunsBlocksOnQueues) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto editor = NSMake<Editor>(alive);
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
}

TEST(NSObjectPerforming, HoldsTheReceiverUntilTheBlockHasRun) {
  int alive = 0;
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  // Even when the block drops the caller's reference.
  for (const bool waits : {true, false}) {
    auto editor = NSMake<Editor>(alive);
    const auto drop = [&](Editor& target) {
      editor = nullptr;
      EXPECT_EQ(target.alive, 1);
    };
    performBlock_onQueue_waitUntilDone(editor, drop, queue, waits);
    dispatch_sync(queue, [&] { EXPECT_EQ(alive, 0); });
  }
}

TEST(NSObjectPerforming, DropsRequestsForWeakReceiversThatHaveDied) {
  const LoopThread thread;
  const auto& main = dispatch_get_main_queue();
  const auto queue = dispatch_queue_create("one", DISPATCH_QUEUE_SERIAL);
  const auto modes = NSMake<NSArray>({NSDefaultRunLoopMode()});
  const auto finish = [&] {
    makePass();
    performBlock_onThread_waitUntilDone(
        main, [] {}, thread.get(), true);
    dispatch_sync(queue, [] {});
  };
  std::atomic<int> calls = 0;
  const auto performAll = [&](const NSWeakRef<Editor>& weak, const auto& block) {
    performBlock_afterDelay(weak, block, 0);
    performBlock_afterDelay_inModes(weak, block, 0, modes);
    cancelPreviousPerformRequestsWithTarget_block(weak, performBlock_afterDelay(weak, block, 0));
    EXPECT_EQ(cancelDelayedBlock(weak, performBlock_afterDelay(weak, block, 0)),
              ZKCancellation::cancelled);
    for (const bool waits : {false, true}) {
      performBlockOnMainThread_waitUntilDone(weak, block, waits);
      performBlockOnMainThread_waitUntilDone_modes(weak, block, waits, modes);
      performBlock_onThread_waitUntilDone(weak, block, thread.get(), waits);
      performBlock_onThread_waitUntilDone_modes(weak, block, thread.get(), waits, modes);
      performBlock_onQueue_waitUntilDone(weak, block, queue, waits);
    }
    performBlock_onQueue_waitUntilDone(weak, block, main, false);
  };
  const auto count = [&](Editor& target) { calls += target.alive; };
  int alive = 0;
  auto editor = NSMake<Editor>(alive);
  performAll(editor, count);
  performAll(editor, NSMakeBlock<Editor>(count));
  performAll(editor, std::function<void(Editor&)>());
  finish();
  EXPECT_EQ(calls.exchange(0), 2 * 13);
  // Requests hold nobody: the one that dies meanwhile is not called any more.
  const NSWeakRef weak = editor;
  performBlock_onQueue_waitUntilDone(weak, count, main, false);
  performBlockOnMainThread_waitUntilDone(weak, count, false);
  const auto dropped = performBlock_afterDelay(weak, count, 0);
  editor = nullptr;
  EXPECT_EQ(alive, 0);
  performAll(weak, count);
  finish();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(cancelDelayedBlock(weak, dropped), ZKCancellation::unknown);
  expectRaises(NSInvalidArgumentException,
               "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')",
               [&] { performBlock_onQueue_waitUntilDone(weak, count, nullptr, true); });
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
    const auto block = [&, sender = std::this_thread::get_id()] {
      const auto die = [&, sender](void* /*nothing*/) {
        if (std::this_thread::get_id() == sender) ++strays;
        deaths.count_down();
      };
      return [held = std::shared_ptr<void>(nullptr, die)] {};
    };
    for (std::ptrdiff_t k = 0; k < each; ++k) {
      performBlockOnMainThread(queue, block());
      performBlockOnMainThread(queue, NSMakeBlock<NSObject>(block()));
      performBlockOnMainThread_waitUntilDone(queue, block(), false);
      performBlockOnMainThread_waitUntilDone_modes(queue, block(), false, modes);
      performBlock_onThread_waitUntilDone(queue, block(), thread.get(), false);
      performBlock_onQueue_waitUntilDone(queue, block(), queue, false);
      performBlockInBackground(queue, block());
      enqueueNotificationInMainThread_postingStyle(
          NSNotification::notificationWithName_object(u"Changed"_ns,
                                                      NSMakeBlock<NSObject>(block())),
          NSPostNow);
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
    leave(testing::Test::HasFailure() ? 1 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(NSObjectPerforming, RefusesANullQueue) {
  expectRaises(NSInvalidArgumentException,
               "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')", [] {
                 performBlock_onQueue_waitUntilDone(
                     u"text"_ns, [] { FAIL(); }, nullptr, true);
               });
}

}  // namespace
