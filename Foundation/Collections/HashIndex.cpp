#include "Foundation/detail/HashIndex.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

void NSHashIndex::reserve(std::size_t count) {
  if (count >= vacant) throw std::length_error("NSHashIndex: more than 2^32 - 2 elements");
  if (count > _hashes.capacity()) _hashes.reserve(std::max(count, count + _hashes.size() / 2));
  // Two thirds full at most, so that runs of taken slots stay short.
  const std::size_t wanted = count + count / 2 + 1;
  if (wanted <= _slots.size()) return;
  constexpr std::size_t fewest = 8;
  _slots = std::vector<Slot>(std::bit_ceil(std::max(wanted, fewest)));
  for (std::size_t position = 0; position < _hashes.size(); ++position) {
    fill({_hashes[position], static_cast<std::uint32_t>(position)});
  }
}

void NSHashIndex::insert(std::size_t position, NSUInteger hash) {
  reserve(size() + 1);
  if (position != size()) {
    for (Slot& slot : _slots) {
      if (slot.position != vacant && slot.position >= position) ++slot.position;
    }
  }
  _hashes.insert(_hashes.begin() + static_cast<std::ptrdiff_t>(position), mix(hash));
  fill({_hashes[position], static_cast<std::uint32_t>(position)});
}

void NSHashIndex::remove(std::size_t position) noexcept {
  vacate(slotOf(position));
  _hashes.erase(_hashes.begin() + static_cast<std::ptrdiff_t>(position));
  if (position == size()) return;
  for (Slot& slot : _slots) {
    if (slot.position != vacant && slot.position > position) --slot.position;
  }
}

void NSHashIndex::replaceByLast(std::size_t position) noexcept {
  vacate(slotOf(position));
  const std::size_t last = size() - 1;
  if (position != last) {
    _slots[slotOf(last)].position = static_cast<std::uint32_t>(position);
    _hashes[position] = _hashes[last];
  }
  _hashes.pop_back();
}

std::size_t NSHashIndex::slotOf(std::size_t position) const noexcept {
  std::size_t at = home(_hashes[position]);
  while (_slots[at].position != position) at = (at + 1) & mask();
  return at;
}

void NSHashIndex::fill(Slot slot) noexcept {
  std::size_t at = home(slot.hash);
  while (_slots[at].position != vacant) at = (at + 1) & mask();
  _slots[at] = slot;
}

// Moves up what stands behind the hole for want of its own slot, or look-ups would stop at the
// hole.
void NSHashIndex::vacate(std::size_t hole) noexcept {
  const auto distance = [&](std::size_t from, std::size_t to) { return (to - from) & mask(); };
  for (std::size_t at = (hole + 1) & mask(); _slots[at].position != vacant;
       at = (at + 1) & mask()) {
    if (distance(home(_slots[at].hash), at) >= distance(hole, at)) {
      _slots[hole] = _slots[at];
      hole = at;
    }
  }
  _slots[hole] = {};
}
