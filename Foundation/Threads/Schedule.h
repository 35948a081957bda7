#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <Foundation/NSDelay.h>
#include <Foundation/NSObject.h>

class NSSchedule;

/// Something that happens at a time, when it stands in a schedule. It stands in one at most.
class NSScheduledEvent : public NSObject {
 public:
  virtual void happen() noexcept = 0;
  /// Is called instead of `happen` when its run loop ends.
  virtual void drop() noexcept {}
  /// Is called shortly before it may happen, to have what it needs fetched from memory.
  virtual void prefetch() const noexcept {}
  /// Tells people what it is and for whom.
  [[nodiscard]] virtual std::string purpose() const = 0;

  [[nodiscard]] bool isScheduled() const noexcept { return _schedule != nullptr; }
  /// Takes it out of its schedule, which may hold the empty object for a while. So the caller holds
  /// it too, and drops its contents afterwards.
  void unschedule() noexcept;

 private:
  friend class NSSchedule;

  NSSchedule* _schedule = nullptr;
  std::uint64_t _turn = 0;
};

/// Events in the order of their times.
class NSSchedule {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// The turn, of those that a run loop counts, orders events of the same time.
  struct Moment {
    Time time;
    std::uint64_t turn = 0;
    friend bool operator<(const Moment& a, const Moment& b) noexcept {
      return a.time == b.time ? a.turn < b.turn : a.time < b.time;
    }
  };

  NSSchedule() = default;
  NSSchedule(const NSSchedule&) = delete;

  [[nodiscard]] bool isEmpty() noexcept;
  /// Gives the moment of the first event; the schedule must have been asked whether there is one.
  [[nodiscard]] Moment first() const noexcept { return _slots.front().moment; }

  /// Adds an event, which leaves the schedule in which it stands.
  void add(NSRef<NSScheduledEvent> event, Moment moment);
  /// Takes out the first event; the schedule must have been asked whether there is one.
  [[nodiscard]] NSRef<NSScheduledEvent> takeFirst();

  /// Calls the function with each event and its time, in any order.
  template <class F>
  void forEach(F function) const {
    for (const Slot& slot : _slots) {
      if (!isVacant(slot)) function(*slot.event.get(), slot.moment.time);
    }
  }

 private:
  friend class NSScheduledEvent;

  struct Slot {
    Moment moment;
    NSRef<NSScheduledEvent> event;
  };

  [[nodiscard]] bool isVacant(const Slot& slot) const noexcept;
  void rise(std::size_t place, Slot slot) noexcept;
  void sink(std::size_t place, Slot slot) noexcept;
  NSRef<NSScheduledEvent> pop() noexcept;
  void prefetch() const noexcept;
  void vacate() noexcept;

  // A heap of four branches, which needs half the levels of one of two. The slots of events that
  // have left it stay, though never more than three quarters.
  std::vector<Slot> _slots;
  std::size_t _vacant = 0;
};

/// Gives the time after a delay that is not negative; the last time there is where it lies beyond.
[[nodiscard]] constexpr NSSchedule::Time NSTimeAfter(NSSchedule::Time time,
                                                     std::chrono::nanoseconds delay) noexcept {
  constexpr auto last = NSSchedule::Time::max();
  return time > last - delay ? last : time + delay;
}

/// Gives how long it is until a time: nothing when that has come, and at most the longest delay.
[[nodiscard]] constexpr std::chrono::nanoseconds NSTimeUntil(NSSchedule::Time time,
                                                             NSSchedule::Time now) noexcept {
  if (time <= now) return {};
  // The difference of any two times fits without a sign.
  const auto count = [](NSSchedule::Time moment) {
    return static_cast<std::uint64_t>(moment.time_since_epoch().count());
  };
  constexpr auto longest = NSDelay::longest.count();
  return std::chrono::nanoseconds(std::min(count(time) - count(now), std::uint64_t{longest}));
}
