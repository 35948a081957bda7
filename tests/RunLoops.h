#pragma once

#include "tests/Support.h"

#include <chrono>
#include <latch>

/// Drives the time of the calling thread's run loop while it lives.
class DrivenClock {
 public:
  DrivenClock() {
    NSRunLoop::currentRunLoop()->setClock([this] { return _now; });
  }
  DrivenClock(const DrivenClock&) = delete;
  ~DrivenClock() { NSRunLoop::currentRunLoop()->setClock({}); }

  void advance(std::chrono::nanoseconds duration) { _now += duration; }

 private:
  NSRunLoop::Time _now = std::chrono::steady_clock::now();
};

/// One pass of the calling thread's run loop.
inline void makePass(const NSRef<NSString>& mode = NSDefaultRunLoopMode()) {
  (void)NSRunLoop::currentRunLoop()->limitDateForMode(mode);
}

/// A thread that runs its run loop until the end of the scope.
class LoopThread {
 public:
  LoopThread() { _thread->start(); }
  LoopThread(const LoopThread&) = delete;
  ~LoopThread() {
    _thread->runLoop()->performBlock([] { NSRunLoop::currentRunLoop()->stop(); });
    _ended.wait();
  }

  const NSRef<NSThread>& get() const { return _thread; }

 private:
  std::latch _ended{1};
  NSRef<NSThread> _thread = NSMake<NSThread>([this] {
    NSRunLoop::currentRunLoop()->run();
    _ended.count_down();
  });
};

/// Tells when it dies.
struct Farewell : NSObject {
  explicit Farewell(std::latch& latch) : death(latch) {}
  Farewell(const Farewell&) = delete;
  ~Farewell() override { death.count_down(); }
  std::latch& death;
};
