#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include <sys/types.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSSelector.h>
#include <Foundation/detail/OnceClosure.h>

class NSDate;
class NSDelay;
class NSNotificationQueue;
class NSScheduledEvent;
class NSTimer;

/// The mode in which a run loop runs when nothing else is said.
NS_EXPORT const NSRef<NSString>& NSDefaultRunLoopMode();
/// As a mode of a request or a timer, all modes of the run loop's common set. It cannot be run in.
NS_EXPORT const NSRef<NSString>& NSRunLoopCommonModes();

/// What a thread does while it has nothing else to do: it performs the requests that come from it
/// and from other threads, fires timers and posts the thread's queued notifications. Every thread
/// has one, `currentRunLoop`, as soon as it asks.
///
/// It runs in passes, each in one mode. A pass fires the timers and delayed requests that are due,
/// then performs the other requests in the order in which they came; of both, those that were there
/// when it began. Then it posts the notifications that wait for the end of a pass. What was asked
/// for in another mode stays for later. Each pass has an autorelease pool. A request may run the
/// run loop again, in the same mode or another.
///
/// Where nothing else is said, a run loop is used by its own thread only, and running another's
/// raises `NSInternalInconsistencyException`. When its thread ends, what has not run is dropped.
class NS_EXPORT NSRunLoop : public NSObject {
 public:
  /// The time by which timers and delays go, steady.
  using Time = std::chrono::steady_clock::time_point;

  /// `NSThread` makes one for each thread.
  NSRunLoop();
  ~NSRunLoop() override;

  static NSRef<NSRunLoop> currentRunLoop();
  /// From any thread.
  static NSRef<NSRunLoop> mainRunLoop();

  /// Runs the block in a pass in one of the common modes, or in one of those modes; with nil or no
  /// modes never. From any thread. A nil block raises `NSInvalidArgumentException`.
  template <class F>
  void performBlock(F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "performBlock:");
    post(NSOnceClosure(std::forward<F>(block)), nullptr);
  }
  template <class F>
  void performInModes_block(const NSRef<NSArray>& modes, F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "performInModes:block:");
    if (modes) post(NSOnceClosure(std::forward<F>(block)), modes);
  }
  /// What the two lead to; nil modes are the common ones here. Work for no modes, or that comes
  /// after the thread has ended, is dropped.
  void post(NSOnceClosure&& work, const NSRef<NSArray>& modes);
  /// Returns when the work has run or been dropped. False, and nothing is asked for, when that
  /// would never be: on the run loop's own thread, or when that waits for the calling one.
  bool postAndWait(NSOnceClosure&& work, const NSRef<NSArray>& modes);

  /// Adds a mode to the common set, which begins as the default mode alone.
  void addCommonMode(const NSRef<NSString>& mode);
  /// A timer may be in several modes of one run loop. An invalid timer is not added; one of another
  /// run loop raises `NSInvalidArgumentException`.
  void addTimer_forMode(const NSRef<NSTimer>& timer, const NSRef<NSString>& mode);

  /// The mode of the pass that is going on; nil without one.
  NSRef<NSString> currentMode() const;

  /// Makes one pass without waiting and gives the date of the next timer in the mode, the distant
  /// future when there is none; nil if the mode is the common modes.
  NSRef<NSDate> limitDateForMode(const NSRef<NSString>& mode);
  /// Makes passes until one has performed a request, the date comes or `stop` is called, and waits
  /// between them. False if the mode is the common modes, true otherwise.
  bool runMode_beforeDate(const NSRef<NSString>& mode, const NSRef<NSDate>& limitDate);
  /// Runs in the default mode, one pass at least, until the date comes or `stop` is called.
  void runUntilDate(const NSRef<NSDate>& limitDate);
  /// Runs until `stop` is called.
  void run();
  /// Lets the innermost `run…` that is going on end after the pass that is going on.
  void stop();

  /// For a host with an event loop of its own: an eventfd that becomes readable when the run loop
  /// wants a pass of which the last `performPass` did not know. It belongs to the run loop, which
  /// alone reads it. A system that gives no descriptor raises `NSGenericException`.
  int wakeUpDescriptor();
  /// Makes a pass in the default mode without waiting, and posts what waits for idle moments if
  /// nothing else is left. The result is the time until the next pass is due; none if only the
  /// descriptor will tell.
  std::optional<std::chrono::nanoseconds> performPass();

  /// Another clock for timers and delays, such as a simulated one, which must not go backwards; an
  /// empty function is the system's. Waiting still takes real time.
  void setClock(std::function<Time()> clock);

  // What the platform's other classes build on.

  Time now() const;
  void schedule(NSRef<NSScheduledEvent> event, const NSRef<NSArray>& modes, Time time);
  void schedulePerform(NSRef<NSObject> target, NSSelector selector, NSRef<NSObject> argument,
                       NSDelay delay, const NSRef<NSArray>& modes);
  void cancelPerforms(const NSRef<NSObject>& target, NSSelector selector,
                      const NSRef<NSObject>& argument);
  const NSRef<NSNotificationQueue>& notificationQueue();
  /// Lets a host know that it should make a pass.
  void signal();
  /// Tells the number of its thread, 0 when that has not begun.
  void begin(pid_t thread);
  /// Drops all and takes no more.
  void end();

 private:
  struct Core;
  class Mode;
  class Run;

  void requireOwnThread(const char* operation) const;
  Time timeOf(const NSRef<NSDate>& date) const;
  void collect();
  bool pass(const NSRef<NSString>& mode);
  bool hasWork(const NSRef<NSString>& mode);
  bool postIdle(const NSRef<NSString>& mode);
  std::optional<Time> nextTime(const NSRef<NSString>& mode);
  std::optional<std::chrono::nanoseconds> idleTime(const NSRef<NSString>& mode);
  bool runOnce(const Run& run, const NSRef<NSString>& mode, Time limit);

  const std::unique_ptr<Core> _core;
};
