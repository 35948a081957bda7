#pragma once

#include <chrono>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRunLoop.h>

/// Calls a block after a time, or again and again, on the run loop that it is added to and that
/// then holds it while it is valid. Used on that run loop's thread alone. One that does not repeat
/// is not valid any more when its block is called.
///
/// A repeating timer keeps to the multiples of its interval, counted from when it was added, and
/// leaves out those that it missed. What the block throws in a run loop ends the program.
class NS_EXPORT NSTimer : public NSObject {
 public:
  /// Makes a timer in no run loop yet. A shorter interval counts as one of 0.1 milliseconds.
  NSTimer(NSDelay interval, bool repeats, NSRef<NSBlock> block);
  ~NSTimer() override;

  /// Makes a timer in no run loop yet. The block takes the timer, or nothing; a nil block raises
  /// `NSInvalidArgumentException`.
  template <class F>
  [[nodiscard]] static NSRef<NSTimer> timerWithTimeInterval_repeats_block(NSDelay interval,
                                                                          bool repeats, F&& block) {
    auto made = NSMakeBlock<NSTimer>(std::forward<F>(block));
    if (!made) NSRaiseNilArgument("block", "timerWithTimeInterval:repeats:block:");
    return NSMake<NSTimer>(interval, repeats, std::move(made));
  }
  /// Makes such a timer and adds it to the calling thread's run loop in the default mode.
  template <class F>
  static NSRef<NSTimer> scheduledTimerWithTimeInterval_repeats_block(NSDelay interval, bool repeats,
                                                                     F&& block) {
    auto timer = timerWithTimeInterval_repeats_block(interval, repeats, std::forward<F>(block));
    NSRunLoop::currentRunLoop()->addTimer_forMode(timer, NSDefaultRunLoopMode());
    return timer;
  }

  /// Calls the block now, for the last time if it does not repeat. An invalid one does nothing.
  void fire();
  /// Takes it out of its run loop for ever and drops the block, as the end of the run loop does.
  void invalidate();
  /// Whether it may still fire.
  [[nodiscard]] bool isValid() const noexcept { return static_cast<bool>(_block); }
  /// Gives the interval; 0 for a timer that does not repeat.
  [[nodiscard]] NSTimeInterval timeInterval() const noexcept;

 private:
  friend class NSRunLoop;
  class Event;

  void addTo(NSRunLoopCore& runLoop, const NSRef<NSString>& mode);

  // First, as there it fits beside the object's count.
  const bool _repeats;
  const std::chrono::nanoseconds _interval;
  NSRef<NSBlock> _block;
  // In the run loop's schedule, or firing.
  Event* _event = nullptr;
};
