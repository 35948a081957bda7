#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

/// Gives the power of two that brings a size of 0 or more to 1 or more, but less than 2. Sizes next
/// to the ends of the range of doubles come to less than 4, and to where squares and products do
/// not leave that range.
[[nodiscard]] inline double ZKUnitScale(double size) {
  const auto exponent =
      std::clamp<std::uint64_t>(std::bit_cast<std::uint64_t>(size) >> 52, 23, 2045);
  return std::bit_cast<double>((2046 - exponent) << 52);
}
