#include "Foundation/NSSchedule.h"

#include <utility>

NSRef<NSScheduledEvent> NSScheduledEvent::unschedule() {
  return _schedule == nullptr ? nullptr : _schedule->take(_position);
}

void NSSchedule::add(const NSRef<NSScheduledEvent>& event, Moment moment) {
  _slots.emplace_back();
  event->_schedule = this;
  rise(_slots.size() - 1, {moment, event});
}

NSRef<NSScheduledEvent> NSSchedule::take(std::size_t position) {
  auto event = std::move(_slots[position].event);
  event->_schedule = nullptr;
  Slot last = std::move(_slots.back());
  _slots.pop_back();
  if (position < _slots.size()) {
    if (position > 0 && last.moment < _slots[(position - 1) / 2].moment) {
      rise(position, std::move(last));
    } else {
      sink(position, std::move(last));
    }
  }
  return event;
}

void NSSchedule::place(std::size_t position, Slot slot) {
  slot.event.get()->_position = position;
  _slots[position] = std::move(slot);
}

// The place is free, and the slot may belong further up.
void NSSchedule::rise(std::size_t position, Slot slot) {
  while (position > 0) {
    const std::size_t parent = (position - 1) / 2;
    if (_slots[parent].moment <= slot.moment) break;
    place(position, std::move(_slots[parent]));
    position = parent;
  }
  place(position, std::move(slot));
}

// The place is free, and the slot may belong further down.
void NSSchedule::sink(std::size_t position, Slot slot) {
  for (;;) {
    std::size_t child = 2 * position + 1;
    if (child >= _slots.size()) break;
    if (child + 1 < _slots.size() && _slots[child + 1].moment < _slots[child].moment) ++child;
    if (slot.moment <= _slots[child].moment) break;
    place(position, std::move(_slots[child]));
    position = child;
  }
  place(position, std::move(slot));
}
