#include "Foundation/Threads/Schedule.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr std::size_t branches = 4;
constexpr std::size_t fewestSlots = 4;

std::size_t parentOf(std::size_t place) noexcept { return (place - 1) / branches; }

}  // namespace

void NSScheduledEvent::unschedule() noexcept {
  if (NSSchedule* const schedule = std::exchange(_schedule, nullptr)) schedule->vacate();
}

void NSSchedule::add(NSRef<NSScheduledEvent> event, Moment moment) {
  // Room first, so that what throws has changed nothing.
  if (_slots.size() == _slots.capacity()) _slots.reserve(std::max(fewestSlots, 2 * _slots.size()));
  event->unschedule();
  event->_schedule = this;
  event->_turn = moment.turn;
  _slots.emplace_back();
  rise(_slots.size() - 1, {moment, std::move(event)});
}

// From a free place to where it belongs.
void NSSchedule::rise(std::size_t place, Slot slot) noexcept {
  while (place > 0 && slot.moment < _slots[parentOf(place)].moment) {
    _slots[place] = std::move(_slots[parentOf(place)]);
    place = parentOf(place);
  }
  _slots[place] = std::move(slot);
}

void NSSchedule::sink(std::size_t place, Slot slot) noexcept {
  for (;;) {
    const std::size_t begin = branches * place + 1;
    if (begin >= _slots.size()) break;
    const std::size_t end = std::min(begin + branches, _slots.size());
    std::size_t first = begin;
    for (std::size_t child = begin + 1; child < end; ++child) {
      if (_slots[child].moment < _slots[first].moment) first = child;
    }
    if (!(_slots[first].moment < slot.moment)) break;
    _slots[place] = std::move(_slots[first]);
    place = first;
  }
  _slots[place] = std::move(slot);
}

bool NSSchedule::isEmpty() noexcept {
  for (; !_slots.empty() && isVacant(_slots.front()); --_vacant) pop();
  return _slots.empty();
}

NSRef<NSScheduledEvent> NSSchedule::takeFirst() {
  auto event = pop();
  event->_schedule = nullptr;
  prefetch();
  return event;
}

// The order of the heap is not that of memory: the next ones come from there while this one
// happens, first the events, then what they need.
void NSSchedule::prefetch() const noexcept {
  if (_slots.empty()) return;
  _slots.front().event.get()->prefetch();
  const std::size_t end = std::min(branches + 1, _slots.size());
  for (std::size_t child = 1; child < end; ++child) {
    __builtin_prefetch(_slots[child].event.get());
  }
}

// Its event may have come back, here or elsewhere, with another turn.
bool NSSchedule::isVacant(const Slot& slot) const noexcept {
  const auto& event = *slot.event.get();
  return event._schedule != this || event._turn != slot.moment.turn;
}

NSRef<NSScheduledEvent> NSSchedule::pop() noexcept {
  auto event = std::move(_slots.front().event);
  Slot last = std::move(_slots.back());
  _slots.pop_back();
  if (!_slots.empty()) sink(0, std::move(last));
  return event;
}

void NSSchedule::vacate() noexcept {
  if (4 * ++_vacant <= 3 * _slots.size()) return;
  std::erase_if(_slots, [this](const Slot& slot) { return isVacant(slot); });
  _vacant = 0;
  if (_slots.size() < 2) return;
  for (std::size_t place = parentOf(_slots.size() - 1) + 1; place-- > 0;) {
    sink(place, Slot(std::move(_slots[place])));
  }
}
