#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <vector>

#include <Foundation/NSObject.h>

class NSSchedule;

/// Something that happens at a time, once it stands in a schedule; in one at most.
class NSScheduledEvent : public NSObject {
 public:
  virtual void happen() noexcept = 0;

  bool isScheduled() const noexcept { return _schedule != nullptr; }
  /// Takes it out of its schedule; the result may be the last reference.
  NSRef<NSScheduledEvent> unschedule();

 private:
  friend class NSSchedule;

  NSSchedule* _schedule = nullptr;
  std::size_t _position = 0;
};

/// Events in the order of their times. Each knows its place, so that any of them can go at once.
class NSSchedule {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// The turn, of those that a run loop counts, orders events of the same time.
  struct Moment {
    Time time;
    std::uint64_t turn = 0;
    friend auto operator<=>(const Moment&, const Moment&) = default;
  };

  bool isEmpty() const noexcept { return _slots.empty(); }
  /// The first of all; there must be one.
  Moment first() const noexcept { return _slots.front().moment; }

  /// The event must not be scheduled.
  void add(const NSRef<NSScheduledEvent>& event, Moment moment);
  NSRef<NSScheduledEvent> takeFirst() { return take(0); }
  NSRef<NSScheduledEvent> take(std::size_t position);
  Time timeAt(std::size_t position) const noexcept { return _slots[position].moment.time; }

 private:
  struct Slot {
    Moment moment;
    NSRef<NSScheduledEvent> event;
  };

  // A binary heap.
  void place(std::size_t position, Slot slot);
  void rise(std::size_t position, Slot slot);
  void sink(std::size_t position, Slot slot);

  std::vector<Slot> _slots;
};
