#pragma once

#include <chrono>
#include <memory>

#include <Foundation/NSDelay.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSManualTime;

/// A clock that stands still until somebody moves it, for tests: run loops, delayed blocks of
/// queues and waits that stand on it need no sleep and no luck. From any thread.
///
///     const auto clock = NSMake<NSManualClock>();
///     NSRunLoop::currentRunLoop()->setClock(clock);
///     clock->advance(60s);  // what is due within a minute runs in the next pass
class NS_EXPORT NSManualClock : public NSObject {
 public:
  using Time = std::chrono::steady_clock::time_point;

  NSManualClock();
  ~NSManualClock() override;

  [[nodiscard]] Time now() const;
  /// Moves the time on. Delayed blocks that become due are submitted to their queues, each when the
  /// clock shows its time; then the run loops and threads that wait on the clock wake up.
  void advance(NSDelay delay);
  /// Returns when the clock shows that time, however long before the call it was moved there.
  void waitUntil(Time time) const;

 private:
  friend struct NSAccess;

  const std::unique_ptr<NSManualTime> _core;
};
