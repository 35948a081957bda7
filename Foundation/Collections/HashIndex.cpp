#include "Foundation/detail/HashIndex.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

void NSHashIndex::reserve(std::size_t count) {
  if (count >= std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("NSHashIndex: more than 2^32 - 2 elements");
  }
  if (count > _hashes.capacity()) _hashes.reserve(std::max(count, count + _hashes.size() / 2));
  // Five eighths full at most, so that few groups are full, at which the processor guesses wrong.
  const std::size_t wanted = count / 5 + 1;
  if (wanted <= _tags.size()) return;
  const std::size_t groups = std::bit_ceil(wanted);
  std::vector<std::uint32_t> positions(groups * width);
  _tags = std::vector<Tags>(groups);
  _positions = std::move(positions);
  for (std::size_t position = 0; position < _hashes.size(); ++position) {
    fill(static_cast<std::uint32_t>(position));
  }
}

void NSHashIndex::insert(std::size_t position, NSUInteger hash) {
  reserve(size() + 1);
  if (position != size()) {
    for (std::uint32_t& other : _positions) other += other >= position ? 1U : 0U;
  }
  _hashes.insert(_hashes.begin() + static_cast<std::ptrdiff_t>(position), mix(hash));
  fill(static_cast<std::uint32_t>(position));
}

void NSHashIndex::remove(std::size_t position) noexcept {
  vacate(slotOf(position));
  _hashes.erase(_hashes.begin() + static_cast<std::ptrdiff_t>(position));
  if (position == size()) return;
  for (std::uint32_t& other : _positions) other -= other > position ? 1U : 0U;
}

void NSHashIndex::replaceByLast(std::size_t position) noexcept {
  vacate(slotOf(position));
  const std::size_t last = size() - 1;
  if (position != last) {
    _positions[slotOf(last)] = static_cast<std::uint32_t>(position);
    _hashes[position] = _hashes[last];
  }
  _hashes.pop_back();
}

std::size_t NSHashIndex::slotOf(std::size_t position) const noexcept {
  return findSlot(_hashes[position], [=](std::size_t other) { return other == position; });
}

void NSHashIndex::setTag(std::size_t slot, Tags tag) noexcept {
  const std::size_t shift = slot % width * 8;
  Tags& tags = _tags[slot / width];
  tags = (tags & ~(Tags{0xFF} << shift)) | (tag << shift);
}

void NSHashIndex::fill(std::uint32_t position) noexcept {
  const std::uint32_t mixed = _hashes[position];
  std::size_t group = home(mixed);
  while (vacantIn(_tags[group]) == 0) group = next(group);
  const std::size_t slot = group * width + firstOf(vacantIn(_tags[group]));
  _positions[slot] = position;
  setTag(slot, tagOf(mixed));
}

// A look-up ends at the first group with a vacant slot. So when the hole opens a group that was
// full, what had to go past it moves into the hole.
void NSHashIndex::vacate(std::size_t hole) noexcept {
  const auto distance = [&](std::size_t from, std::size_t to) {
    return (to - from) & (_tags.size() - 1);
  };
  bool wasFull = vacantIn(_tags[hole / width]) == 0;
  setTag(hole, 0);
  for (std::size_t group = next(hole / width); wasFull; group = next(group)) {
    wasFull = vacantIn(_tags[group]) == 0;
    for (Tags taken = _tags[group] & uppermost; taken != 0; taken &= taken - 1) {
      const std::size_t slot = group * width + firstOf(taken);
      const std::uint32_t mixed = _hashes[_positions[slot]];
      if (distance(home(mixed), group) < distance(hole / width, group)) continue;
      _positions[hole] = _positions[slot];
      setTag(hole, tagOf(mixed));
      setTag(slot, 0);
      hole = slot;
      break;
    }
  }
}
