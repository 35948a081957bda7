#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include <Foundation/NSManualClock.h>
#include <Foundation/Threads/RunLoopInbox.h>
#include <Foundation/Threads/Schedule.h>
#include <Foundation/detail/OnceClosure.h>

/// Work for times to come; that of equal times in the order in which it came.
using NSAlarms = std::map<NSSchedule::Moment, NSOnceClosure>;

/// What moves with an `NSManualClock`.
class NSManualTime {
 public:
  using Time = NSManualClock::Time;

  [[nodiscard]] Time now() const;
  void advance(std::chrono::nanoseconds duration);
  void waitUntil(Time time) const;

  /// Performs the work, which must be short, after the delay: within `advance`, or at once. What
  /// has not come when the clock dies is dropped. The result is what `removeAlarm` takes.
  NSSchedule::Moment addAlarm(NSDelay delay, NSOnceClosure&& work);
  /// Drops the work, if it has not come.
  void removeAlarm(NSSchedule::Moment moment);

  /// Wakes the run loop of that inbox whenever the clock has moved.
  void add(NSRunLoopInbox& inbox);
  void remove(NSRunLoopInbox& inbox) noexcept;

 private:
  mutable std::mutex _mutex;
  mutable std::condition_variable _hasMoved;
  Time _now = std::chrono::steady_clock::now();
  NSAlarms _alarms;
  std::uint64_t _nextTurn = 0;
  std::vector<NSRunLoopInbox*> _inboxes;
};

/// Performs the work, which must be short, after the delay by that clock; nil is the system's, by
/// which a thread of its own does it. Raises `NSGenericException`, which names the operation, when
/// the system gives none.
void NSPerformAfter(NSDelay delay, NSOnceClosure&& work, const NSRef<NSManualClock>& clock,
                    const char* operation);
