#include "tests/RunLoops.h"

#include <pthread.h>

namespace {

TEST(NSThread, RunsItsWork) {
  struct Worker : NSThread {
    explicit Worker(std::latch& latch) : done(latch) {}
    void main() override {
      isItself = NSThread::currentThread().get() == this && isExecuting() && !isMainThread();
      done.count_down();
    }
    std::latch& done;
    bool isItself = false;
  };
  std::latch done(2);
  const auto worker = NSMake<Worker>(done);
  worker->start();
  expectRaises(NSGenericException, "the thread has been started (in 'start')",
               [&] { worker->start(); });
  NSMake<NSThread>([&] { done.count_down(); })->start();
  done.wait();
  EXPECT_TRUE(worker->isItself);
  refusesNil("block", "initWithBlock:", [] { (void)NSMake<NSThread>(std::function<void()>()); });
}

TEST(NSThread, KnowsItself) {
  EXPECT_TRUE(NSThread::isMainThread());
  EXPECT_EQ(NSThread::currentThread(), NSThread::mainThread());
  EXPECT_EQ(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
  // One that something else began is adopted, and finished when it ends.
  NSRef<NSThread> adopted;
  std::latch death(1);
  std::jthread([&] {
    adopted = NSThread::currentThread();
    EXPECT_EQ(NSThread::currentThread(), adopted);
    EXPECT_TRUE(adopted->isExecuting());
    EXPECT_FALSE(NSThread::isMainThread());
    NSRunLoop::currentRunLoop()->performBlock([held = NSMake<Farewell>(death)] {});
    struct Idle : NSObject {
      void idle() const {}
    };
    // What dies last may still ask.
    struct Asking : NSObject {
      Asking() = default;
      Asking(const Asking&) = delete;
      ~Asking() override {
        EXPECT_NE(NSThread::currentThread(), nullptr);
        // To no effect, and without harm.
        const auto queue = NSNotificationQueue::defaultQueue();
        queue->enqueueNotification_postingStyle(
            NSNotification::notificationWithName_object(u"Late"_ns, nullptr), NSPostASAP);
        NSTimer::scheduledTimerWithTimeInterval_repeats_block(1, true, [] {});
        NSMake<Idle>()->performSelector_withObject_afterDelay(NSMakeSelector<"idle", &Idle::idle>(),
                                                              nullptr, 0);
        NSRunLoop::currentRunLoop()->performBlock([] {});
        makePass();
        NSAutorelease(NSMake<NSString>());
      }
    };
    NSAutorelease(NSMake<Asking>());
  }).join();
  // One that asks for the first time when it ends.
  struct Late : NSObject {
    Late() = default;
    Late(const Late&) = delete;
    ~Late() override { EXPECT_FALSE(NSThread::currentThread()->isCancelled()); }
  };
  std::jthread([] { NSAutorelease(NSMake<Late>()); }).join();
  EXPECT_TRUE(death.try_wait());
  EXPECT_TRUE(adopted->isFinished());
  EXPECT_EQ(adopted->retainCount(), 1U);
}

TEST(NSThread, ShowsItsName) {
  for (const auto& [name, expected] :
       Rows<NSRef<NSString>, std::string>{{u"reader"_ns, "reader"},
                                          {u"a thread of many words"_ns, "a thread of man"},
                                          {u"12345678901234ä"_ns, "12345678901234"}}) {
    std::array<char, 16> shown{};
    std::latch done(1);
    const auto thread = NSMake<NSThread>([&] {
      pthread_getname_np(pthread_self(), shown.data(), shown.size());
      done.count_down();
    });
    thread->setName(name);
    thread->start();
    done.wait();
    EXPECT_EQ(shown.data(), expected);
  }
}

TEST(NSThread, KeepsRequestsFromBeforeItsStart) {
  std::latch death(1);
  std::latch done(1);
  auto thread = NSMake<NSThread>([] { NSRunLoop::currentRunLoop()->run(); });
  thread->runLoop()->performBlock([&] {
    done.count_down();
    NSRunLoop::currentRunLoop()->stop();
  });
  thread->start();
  done.wait();
  // One that is never started lets them go.
  thread = NSMake<NSThread>([] {});
  thread->runLoop()->performBlock([held = NSMake<Farewell>(death)] {});
  thread = nullptr;
  EXPECT_TRUE(death.try_wait());
}

TEST(NSThread, DoesItsWorkOnce) {
  std::latch death(1);
  int count = 0;
  const auto thread = NSMake<NSThread>([&, held = NSMake<Farewell>(death)] { ++count; });
  for (int k = 0; k < 2; ++k) thread->main();
  EXPECT_TRUE(death.try_wait());
  thread->start();
  while (!thread->isFinished()) std::this_thread::yield();
  EXPECT_EQ(count, 1);
}

TEST(NSThreadDeathTest, EndsByTheSystemsCallToo) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // In a process of its own, as what stands on the thread's stack is lost.
  EXPECT_EXIT(
      {
        const auto thread = NSMake<NSThread>([] { pthread_exit(nullptr); });
        thread->start();
        while (!thread->isFinished()) std::this_thread::yield();
        std::_Exit(thread->isExecuting() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
