#pragma once

#include <chrono>
#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include <Foundation/NSArray.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/OnceClosure.h>
#include <Foundation/detail/Passkey.h>

class NSDate;
class NSDescriptorSource;
class NSManualClock;
class NSRunLoopCore;
class NSThread;
class NSTimer;

/// Gives the mode in which a run loop runs when nothing else is said.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSDefaultRunLoopMode();
/// Gives what stands for all modes of the run loop's common set, as a mode of a request or a timer.
/// It cannot be run in.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSRunLoopCommonModes();

/// Serves a thread while that has nothing else to do: performs the requests that come from it and
/// from other threads, fires timers and posts the thread's queued notifications. Every thread has
/// one, `currentRunLoop`, as soon as it asks.
///
/// It runs in passes, each in one mode. A pass fires the timers and delayed requests that are due,
/// then performs the other requests in the order in which they came; of both, those that were there
/// when it began. Then it posts the notifications that wait for the end of a pass. What was asked
/// for in another mode stays for later. Each pass has an autorelease pool. A request may run the
/// run loop again, in the same mode or another.
///
/// Where nothing else is said, a run loop is used by its own thread only, and running another's
/// raises `NSInternalInconsistencyException`. When its thread ends, callers who wait go on, then
/// what has not run is dropped; whatever it is asked for later, by any thread, has no effect. A
/// child that `fork` has made must not use it: `NSThread` tells what it may use.
class NS_EXPORT NSRunLoop : public NSObject {
 public:
  /// The time by which timers and delays go, steady.
  using Time = std::chrono::steady_clock::time_point;

  explicit NSRunLoop(NSPasskey<NSThread> key);
  ~NSRunLoop() override;

  /// Gives the calling thread's.
  [[nodiscard]] static NSRef<NSRunLoop> currentRunLoop();
  /// Gives the main thread's. From any thread.
  [[nodiscard]] static NSRef<NSRunLoop> mainRunLoop();

  /// Runs the block in a later pass in one of the common modes. From any thread. A nil block raises
  /// `NSInvalidArgumentException`.
  template <class F>
  void performBlock(F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "performBlock:");
    post(NSOnceClosure(std::forward<F>(block)), nullptr);
  }
  /// Runs the block in a later pass in one of those modes; never when they are nil or empty. From
  /// any thread. A nil block raises `NSInvalidArgumentException`.
  template <class F>
  void performInModes_block(const NSRef<NSArray>& modes, F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "performInModes:block:");
    if (modes) post(NSOnceClosure(std::forward<F>(block)), modes);
  }

  /// Adds a mode to the common set, which begins as the default mode alone.
  void addCommonMode(const NSRef<NSString>& mode);
  /// Lets the timer fire in passes in that mode. A timer may be in several modes of one run loop.
  /// An invalid timer is not added; one of another run loop raises `NSInvalidArgumentException`.
  void addTimer_forMode(const NSRef<NSTimer>& timer, const NSRef<NSString>& mode);

  /// Watches the source's descriptor in passes in that mode, after their requests, and while the
  /// run loop waits in it. A source may be in several modes of one run loop. An invalid source is
  /// not added; one of another run loop raises `NSInvalidArgumentException`. A host with an event
  /// loop of its own watches its descriptors itself.
  void addSource_forMode(const NSRef<NSDescriptorSource>& source, const NSRef<NSString>& mode);

  /// Gives the mode of the pass that is going on; nil without one.
  [[nodiscard]] NSRef<NSString> currentMode() const;

  /// Makes one pass without waiting and gives the date of the next timer in the mode, the distant
  /// future when there is none; nil if the mode is the common modes.
  NSRef<NSDate> limitDateForMode(const NSRef<NSString>& mode);
  /// Makes passes until one has performed a request or called the block of a source, the date comes
  /// or `stop` is called, and waits between them. False if the mode is the common modes, true
  /// otherwise.
  bool runMode_beforeDate(const NSRef<NSString>& mode, const NSRef<NSDate>& limitDate);
  /// Runs in the default mode, one pass at least, until the date comes or `stop` is called.
  void runUntilDate(const NSRef<NSDate>& limitDate);
  /// Runs until `stop` is called.
  void run();
  /// Ends the innermost `run…` after its current pass.
  void stop();

  /// Gives an eventfd for a host with an event loop of its own. It becomes readable when the run
  /// loop wants a pass that the last `performPass` could not foresee; for a host's loop within a
  /// block that is what its pass has left, be it for later. Only the run loop reads it. A system
  /// that gives no descriptor raises `NSGenericException`.
  [[nodiscard]] int wakeUpDescriptor();
  /// Makes a pass in the default mode without waiting, and posts what waits for idle moments if
  /// nothing else is left. Gives the time until the next pass is due; none if only the descriptor
  /// will tell.
  std::optional<std::chrono::nanoseconds> performPass();
  /// Makes such a pass in that mode, such as the host's for tracking the mouse. Afterwards the
  /// descriptor is readable as long as the default mode has work that the last `performPass` could
  /// not foresee. Nothing happens, and nothing is due, in the common modes.
  std::optional<std::chrono::nanoseconds> performPassInMode(const NSRef<NSString>& mode);

  /// Tells people what waits, a text for each timer, request, source and queued notification: what
  /// it is, for an object of which class, when it is due and in which modes. A block is named by
  /// the function that wrote it.
  [[nodiscard]] NSRef<NSArray> pendingWork() const;

  /// Sets another clock for timers and delays, such as a simulated one, which must not go
  /// backwards; an empty function is the system's clock. Waiting still takes real time.
  void setClock(std::function<Time()> clock);
  /// Sets a clock that is moved by hand, for waiting too; nil is the system's clock.
  template <std::convertible_to<NSRef<NSManualClock>> Clock>
  void setClock(const Clock& clock) {
    setManualClock(clock);
  }

 private:
  friend struct NSAccess;

  void post(NSOnceClosure&& work, const NSRef<NSArray>& modes);
  void setManualClock(const NSRef<NSManualClock>& clock);
  [[nodiscard]] NSRunLoopCore& ownCore(const char* operation) const;

  const std::unique_ptr<NSRunLoopCore> _core;
};
