#include "Foundation/NSManualClock.h"

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/ManualTime.h>
#include <Foundation/Threads/SystemThreads.h>

namespace {

// The alarms of the system's clock. Their thread exists only while there are any.
class SystemAlarms {
 public:
  static SystemAlarms& shared() {
    static NSNeverDestroyed<SystemAlarms> alarms;
    return *alarms;
  }

  void add(std::chrono::nanoseconds delay, NSOnceClosure&& work, const char* operation) {
    const std::lock_guard lock(_mutex);
    if (!_hasThread) {
      // It waits for the lock.
      if (const auto error = NSDetachThread([this] { run(); })) {
        NSRaiseSystemError(error, operation);
      }
      _hasThread = true;
    }
    const auto time = NSTimeAfter(std::chrono::steady_clock::now(), delay);
    _alarms.emplace(NSSchedule::Moment{time, _nextTurn++}, std::move(work));
    _hasNews.notify_one();
  }

 private:
  void run() {
    std::unique_lock lock(_mutex);
    while (!_alarms.empty()) {
      const auto first = _alarms.begin()->first.time;
      if (first > std::chrono::steady_clock::now()) {
        _hasNews.wait_until(lock, first);
        continue;
      }
      auto alarm = _alarms.extract(_alarms.begin());
      lock.unlock();
      alarm.mapped().perform();
      lock.lock();
    }
    _hasThread = false;
  }

  std::mutex _mutex;
  std::condition_variable _hasNews;
  NSAlarms _alarms;
  std::uint64_t _nextTurn = 0;
  bool _hasThread = false;
};

}  // namespace

NSManualTime::Time NSManualTime::now() const {
  const std::lock_guard lock(_mutex);
  return _now;
}

void NSManualTime::advance(std::chrono::nanoseconds duration) {
  std::unique_lock lock(_mutex);
  const Time end = NSTimeAfter(_now, duration);
  while (!_alarms.empty() && _alarms.begin()->first.time <= end) {
    auto alarm = _alarms.extract(_alarms.begin());
    _now = std::max(_now, alarm.key().time);
    lock.unlock();
    alarm.mapped().perform();
    lock.lock();
  }
  _now = std::max(_now, end);
  _hasMoved.notify_all();
  for (NSRunLoopInbox* const inbox : _inboxes) inbox->wake();
}

void NSManualTime::waitUntil(Time time) const {
  std::unique_lock lock(_mutex);
  _hasMoved.wait(lock, [&] { return _now >= time; });
}

NSSchedule::Moment NSManualTime::addAlarm(NSDelay delay, NSOnceClosure&& work) {
  std::unique_lock lock(_mutex);
  const NSSchedule::Moment moment{NSTimeAfter(_now, delay.duration()), _nextTurn++};
  if (moment.time > _now) {
    _alarms.emplace(moment, std::move(work));
  } else {
    lock.unlock();
    work.perform();
  }
  return moment;
}

void NSManualTime::removeAlarm(NSSchedule::Moment moment) {
  // What it holds goes when the lock has.
  NSAlarms::node_type removed;
  const std::lock_guard lock(_mutex);
  removed = _alarms.extract(moment);
}

void NSManualTime::add(NSRunLoopInbox& inbox) {
  const std::lock_guard lock(_mutex);
  _inboxes.push_back(&inbox);
}

void NSManualTime::remove(NSRunLoopInbox& inbox) noexcept {
  const std::lock_guard lock(_mutex);
  std::erase(_inboxes, &inbox);
}

void NSPerformAfter(NSDelay delay, NSOnceClosure&& work, const NSRef<NSManualClock>& clock,
                    const char* operation) {
  if (!clock) return SystemAlarms::shared().add(delay.duration(), std::move(work), operation);
  NSAccess::core(*clock).addAlarm(delay, std::move(work));
}

NSManualClock::NSManualClock() : _core(std::make_unique<NSManualTime>()) {}

NSManualClock::~NSManualClock() = default;

NSManualClock::Time NSManualClock::now() const { return _core->now(); }

void NSManualClock::advance(NSDelay delay) { _core->advance(delay.duration()); }

void NSManualClock::waitUntil(Time time) const { _core->waitUntil(time); }
