#pragma once

#include <atomic>
#include <concepts>
#include <mutex>
#include <optional>
#include <utility>

#include <sys/types.h>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSSelector.h>
#include <Foundation/detail/OnceClosure.h>

class NSRunLoop;
class NSRunLoopCore;

/// A thread: one that is given its work, one that derives and overrides `main`, or by
/// `currentThread` any other thread of the program. An exception that leaves its work ends the
/// program. May be used from any thread.
///
/// A thread whose work calls `pthread_exit` is finished, too. But what is on its stack stays as it
/// is: who waits for the very block that makes the call waits for ever. The blocks of queues must
/// not call it, nor the main thread while others may wait for it. What a thread first asks for in a
/// destructor of `pthread_key_create` stays for ever.
///
/// After `fork`, a child that does not `exec` has a copy of the calling thread and of no other, and
/// shares the run loop's wake-up descriptor with its parent. It must not use run loops, timers,
/// delayed requests, requests to threads, queues, groups, notification queues and observers with a
/// queue. It may use all else if its parent had no other thread. Otherwise these may have held any
/// lock: then it may call nothing of this library, and of the system only what POSIX allows there.
class NS_EXPORT NSThread : public NSObject {
 public:
  /// Makes a thread without work, for classes that override `main`.
  NSThread() = default;
  /// Makes a thread that calls the block when it runs. A nil block raises
  /// `NSInvalidArgumentException`.
  template <class F>
  requires std::invocable < std::decay_t<F>
  & > explicit NSThread(F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "initWithBlock:");
    _work.emplace(std::forward<F>(block));
  }
  /// Makes a thread that performs the selector when it runs. Target and argument are held until
  /// then.
  NSThread(NSRef<NSObject> target, NSSelector selector, NSRef<NSObject> argument);
  ~NSThread() override;

  /// Gives the calling thread's object.
  [[nodiscard]] static NSRef<NSThread> currentThread();
  /// Gives the thread that runs the program's `main`.
  [[nodiscard]] static NSRef<NSThread> mainThread();
  /// Whether the calling thread is that one.
  [[nodiscard]] static bool isMainThread() noexcept;
  /// Starts a new thread that performs the selector.
  static void detachNewThreadSelector_toTarget_withObject(NSSelector selector,
                                                          NSRef<NSObject> target,
                                                          NSRef<NSObject> argument);

  /// Begins the thread, which is held until it has ended. A second call, and a thread that the
  /// system does not give, raise `NSGenericException`.
  void start();
  /// Does the thread's work; here what it was made with, once.
  virtual void main();

  /// Sets `isCancelled`; the work must poll it.
  void cancel() noexcept { _isCancelled = true; }
  [[nodiscard]] bool isCancelled() const noexcept { return _isCancelled; }
  /// Whether it has started and not ended.
  [[nodiscard]] bool isExecuting() const noexcept { return _state == State::executing; }
  /// Whether it has ended. Its run loop then takes no more requests.
  [[nodiscard]] bool isFinished() const noexcept { return _state == State::finished; }

  /// Gives the thread's name, at first the empty string.
  [[nodiscard]] NSRef<NSString> name() const;
  /// Sets the name; nil is the empty one. Debuggers show its first 15 bytes, if it is set before
  /// the start or on the started thread itself.
  void setName(const NSRef<NSString>& name);

  /// "NSThread reader"
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives the thread's run loop, which is made when it is first asked for. Other threads may use
  /// only what says so.
  [[nodiscard]] NSRef<NSRunLoop> runLoop();

 private:
  friend class NSRunLoopCore;

  enum class State : char { ready, executing, finished };
  struct Current;
  class End;

  void run() noexcept;
  void begin();
  void finish();
  void showName() const;

  std::optional<NSOnceClosure> _work;
  std::atomic<State> _state = State::ready;
  std::atomic<bool> _isCancelled = false;
  std::atomic<NSRunLoop*> _runLoop = nullptr;
  mutable std::mutex _mutex;
  // The system's, once it has begun.
  pid_t _number = 0;
  NSRef<NSString> _name;
};
