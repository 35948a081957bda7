#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/GoldenRatio.h>
#include <Foundation/detail/HashSeed.h>

/// The index of a sequence by the hashes of its elements: an open-addressing table of positions
/// with linear probing. Its owner tells it of every element that comes or goes.
///
/// It keeps 32 bits of each hash, so that it never asks an element again, even one whose hash has
/// changed since, and hardly ever compares with another element than the one that is looked for.
/// Which bits depends on a random number of the process, so that nobody can choose hashes that
/// meet.
class NS_EXPORT NSHashIndex {
 public:
  static constexpr std::size_t notFound = std::numeric_limits<std::size_t>::max();

  [[nodiscard]] std::size_t size() const noexcept { return _hashes.size(); }

  /// Finds the position for which `isSame(position)` holds, among those with this hash.
  template <class IsSame>
  [[nodiscard]] std::size_t find(NSUInteger hash, IsSame isSame) const {
    if (_slots.empty()) return notFound;
    const std::uint32_t mixed = mix(hash);
    for (std::size_t at = home(mixed);; at = (at + 1) & mask()) {
      const Slot slot = _slots[at];
      if (slot.position == vacant) return notFound;
      if (slot.hash == mixed && isSame(std::size_t{slot.position})) return slot.position;
    }
  }

  /// Makes room for that many elements altogether: until then, inserting cannot fail. More than
  /// 2^32 - 2 throw `std::length_error`.
  void reserve(std::size_t count);
  /// Enters an element at the position; those from there on move up.
  void insert(std::size_t position, NSUInteger hash);
  /// Removes the element; those behind it move down.
  void remove(std::size_t position) noexcept;
  /// Removes the element; the last one takes its place.
  void replaceByLast(std::size_t position) noexcept;

 private:
  static constexpr std::uint32_t vacant = std::numeric_limits<std::uint32_t>::max();
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t position = vacant;
  };

  // Classes' own hashes may be small numbers or addresses. The first product and the shift scatter
  // such sequences without bringing any two together. The upper half of the second product, by a
  // random odd number, is the same for two numbers, whichever they are, with a probability of at
  // most 2^-31 (Dietzfelbinger et al., 1997).
  [[nodiscard]] static std::uint32_t mix(NSUInteger hash) noexcept {
    hash *= NSGoldenRatio;
    hash ^= hash >> 32U;
    return static_cast<std::uint32_t>((hash * NSHashSeed[0]) >> 32U);
  }
  [[nodiscard]] std::size_t mask() const noexcept { return _slots.size() - 1; }
  // By the uppermost bits, to which every bit of a hash contributes.
  [[nodiscard]] std::size_t home(std::uint32_t mixed) const noexcept {
    return static_cast<std::size_t>((std::uint64_t{mixed} * _slots.size()) >> 32U);
  }
  [[nodiscard]] std::size_t slotOf(std::size_t position) const noexcept;
  void fill(Slot slot) noexcept;
  void vacate(std::size_t hole) noexcept;

  std::vector<Slot> _slots;
  std::vector<std::uint32_t> _hashes;
};
