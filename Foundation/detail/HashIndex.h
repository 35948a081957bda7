#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/GoldenRatio.h>
#include <Foundation/detail/HashSeed.h>

/// The index of a sequence by the hashes of its elements: an open-addressing table of positions.
/// Its owner tells it of every element that comes or goes.
///
/// The table consists of groups of eight slots. A word for each group holds seven bits of the
/// hashes in its slots, so that most look-ups for what is not there read nothing but one word.
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
    if (_tags.empty()) return notFound;
    const std::uint32_t mixed = mix(hash);
    const std::size_t slot = findSlot(mixed, [&](std::uint32_t position) {
      return _hashes[position] == mixed && isSame(std::size_t{position});
    });
    return slot == notFound ? notFound : _positions[slot];
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
  // The tags of a group: byte k is that of slot k, 0 when the slot is vacant.
  using Tags = std::uint64_t;
  static constexpr std::size_t width = sizeof(Tags);
  static constexpr Tags ones = 0x0101'0101'0101'0101;
  static constexpr Tags uppermost = 0x8080'8080'8080'8080;

  // Classes' own hashes may be small numbers or addresses. The first product and the shift scatter
  // such sequences without bringing any two together. The upper half of the second product, by a
  // random odd number, is the same for two numbers, whichever they are, with a probability of at
  // most 2^-31 (Dietzfelbinger et al., 1997).
  [[nodiscard]] static std::uint32_t mix(NSUInteger hash) noexcept {
    hash *= NSGoldenRatio;
    hash ^= hash >> 32U;
    return static_cast<std::uint32_t>((hash * NSHashSeed[0]) >> 32U);
  }
  [[nodiscard]] std::size_t next(std::size_t group) const noexcept {
    return (group + 1) & (_tags.size() - 1);
  }
  // By the uppermost bits, to which every bit of a hash contributes.
  [[nodiscard]] std::size_t home(std::uint32_t mixed) const noexcept {
    return static_cast<std::size_t>((std::uint64_t{mixed} * _tags.size()) >> 32U);
  }
  // By the lowest bits, and one that is set in each.
  [[nodiscard]] static Tags tagOf(std::uint32_t mixed) noexcept { return (mixed & 0x7FU) | 0x80U; }
  [[nodiscard]] static Tags vacantIn(Tags tags) noexcept { return ~tags & uppermost; }
  // Which slot of a group the lowest bit that is set stands for.
  [[nodiscard]] static std::size_t firstOf(Tags marks) noexcept {
    return static_cast<std::size_t>(std::countr_zero(marks)) / width;
  }

  // Finds the slot whose position `isIt` holds for, among those with the tag of the hash.
  template <class IsIt>
  [[nodiscard]] std::size_t findSlot(std::uint32_t mixed, IsIt isIt) const {
    const Tags wanted = tagOf(mixed) * ones;
    for (std::size_t group = home(mixed);; group = next(group)) {
      const Tags tags = _tags[group];
      // A byte that is zero becomes 0x80; so may one above it, which `isIt` then refuses.
      const Tags differences = tags ^ wanted;
      for (Tags marks = (differences - ones) & ~differences & uppermost; marks != 0;
           marks &= marks - 1) {
        const std::size_t slot = group * width + firstOf(marks);
        if (isIt(_positions[slot])) return slot;
      }
      if (vacantIn(tags) != 0) return notFound;
    }
  }
  [[nodiscard]] std::size_t slotOf(std::size_t position) const noexcept;
  void setTag(std::size_t slot, Tags tag) noexcept;
  void fill(std::uint32_t position) noexcept;
  void vacate(std::size_t hole) noexcept;

  std::vector<Tags> _tags;
  // Those of vacant slots mean nothing.
  std::vector<std::uint32_t> _positions;
  std::vector<std::uint32_t> _hashes;
};
