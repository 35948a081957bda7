#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Finds the smallest number that is free. Of n numbers that are taken no more than n + 1 bits
/// matter: one of so many is free.
class ZKFreeNumber {
 public:
  /// Counts from `first` on. At most `count` numbers will be taken.
  ZKFreeNumber(std::uint64_t first, std::size_t count)
      : _first(first), _taken(count / wordBits + 1) {}

  /// Notes that a number is taken.
  void take(std::uint64_t number) {
    if (number < _first) return;
    const std::uint64_t bit = number - _first;
    if (bit / wordBits < _taken.size())
      _taken[bit / wordBits] |= std::uint64_t{1} << bit % wordBits;
  }

  [[nodiscard]] std::uint64_t smallest() const {
    constexpr auto full = std::numeric_limits<std::uint64_t>::max();
    const auto word = std::ranges::find_if(_taken, [](auto bits) { return bits != full; });
    return _first + static_cast<std::uint64_t>(word - _taken.begin()) * wordBits +
           static_cast<std::uint64_t>(std::countr_one(*word));
  }

 private:
  static constexpr std::size_t wordBits = 64;

  std::uint64_t _first;
  std::vector<std::uint64_t> _taken;
};
