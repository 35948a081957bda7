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

/// A thread: one that is given its work, one that derives and overrides `main`, or by
/// `currentThread` any other thread of the program. An exception that leaves its work ends the
/// program. May be used from any thread.
class NS_EXPORT NSThread : public NSObject {
 public:
  /// For classes that override `main`.
  NSThread() = default;
  /// Calls the block when it runs. A nil block raises `NSInvalidArgumentException`.
  template <class F>
  requires std::invocable < std::decay_t<F>
  & > explicit NSThread(F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "initWithBlock:");
    _work.emplace(std::forward<F>(block));
  }
  /// Performs the selector when it runs; target and argument are held until then.
  NSThread(NSRef<NSObject> target, NSSelector selector, NSRef<NSObject> argument);
  ~NSThread() override;

  static NSRef<NSThread> currentThread();
  /// The thread that runs the program's `main`.
  static NSRef<NSThread> mainThread();
  static bool isMainThread() noexcept;
  static void detachNewThreadSelector_toTarget_withObject(NSSelector selector,
                                                          NSRef<NSObject> target,
                                                          NSRef<NSObject> argument);

  /// Begins the thread, which is held until it has ended. A second call, and a thread that the
  /// system does not give, raise `NSGenericException`.
  void start();
  /// What the thread does; here the work that it was made with.
  virtual void main();

  /// Asks the thread to end, which it must look for itself.
  void cancel() noexcept { _isCancelled = true; }
  bool isCancelled() const noexcept { return _isCancelled; }
  bool isExecuting() const noexcept { return _state == State::executing; }
  /// Whether it has ended. Its run loop then takes no more requests.
  bool isFinished() const noexcept { return _state == State::finished; }

  /// Empty at first, nil for an empty one. Debuggers show its first 15 bytes, if it is set before
  /// the start or on a started thread itself.
  NSRef<NSString> name() const;
  void setName(const NSRef<NSString>& name);

  /// "NSThread reader"
  NSRef<NSString> description() const override;

  /// The thread's run loop, made when it is first asked for. On other threads only what says so may
  /// be used.
  NSRef<NSRunLoop> runLoop();

 private:
  enum class State : char { ready, executing, finished };
  struct Adopted;
  struct Current;

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
