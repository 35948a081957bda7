#include "tests/Diary.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

using namespace std::chrono_literals;

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
