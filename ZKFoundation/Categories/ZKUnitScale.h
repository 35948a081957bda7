#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

/// Gives the power of two that brings a size of 0 or more to 1 or more, but less than 2; to a range
/// where squares and products do not leave that of doubles when the size is next to its ends.
[[nodiscard]] inline double ZKUnitScale(double size) {
  const auto exponent =
      std::clamp<std::uint64_t>(std::bit_cast<std::uint64_t>(size) >> 52, 23, 2023);
  return std::bit_cast<double>((2046 - exponent) << 52);
}
