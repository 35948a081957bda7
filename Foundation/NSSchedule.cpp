#include "Foundation/NSSchedule.h"

#include <algorithm>
#include <utility>

namespace {

// The order of the heap, whose first is the earliest.
constexpr auto isLater = [](const auto& a, const auto& b) { return b.moment < a.moment; };

}  // namespace

void NSScheduledEvent::unschedule() noexcept {
  if (NSSchedule* const schedule = std::exchange(_schedule, nullptr)) schedule->vacate();
}

void NSSchedule::add(NSRef<NSScheduledEvent> event, Moment moment) {
  event->_schedule = this;
  event->_turn = moment.turn;
  _slots.push_back({moment, std::move(event)});
  std::ranges::push_heap(_slots, isLater);
}

bool NSSchedule::isEmpty() noexcept {
  for (; !_slots.empty() && isVacant(_slots.front()); --_vacant) pop();
  return _slots.empty();
}

NSRef<NSScheduledEvent> NSSchedule::takeFirst() {
  auto event = pop();
  event->_schedule = nullptr;
  // The next one is likely to be asked for, and lies anywhere.
  if (!_slots.empty()) __builtin_prefetch(_slots.front().event.get());
  return event;
}

// Its event may have come back, here or elsewhere, with another turn.
bool NSSchedule::isVacant(const Slot& slot) const noexcept {
  const auto& event = *slot.event.get();
  return event._schedule != this || event._turn != slot.moment.turn;
}

NSRef<NSScheduledEvent> NSSchedule::pop() noexcept {
  std::ranges::pop_heap(_slots, isLater);
  auto event = std::move(_slots.back().event);
  _slots.pop_back();
  return event;
}

void NSSchedule::vacate() noexcept {
  if (4 * ++_vacant <= 3 * _slots.size()) return;
  std::erase_if(_slots, [this](const Slot& slot) { return isVacant(slot); });
  std::ranges::make_heap(_slots, isLater);
  _vacant = 0;
}
