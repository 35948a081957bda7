#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/ZKUnitScale.h>

// One coordinate of a cubic.

/// Gives its value at t.
[[nodiscard]] inline double ZKCubicAt(const std::array<double, 4>& v, double t) {
  const double s = 1 - t;
  return s * s * (s * v[0] + 3 * t * v[1]) + t * t * (3 * s * v[2] + t * v[3]);
}

/// Stores the parameters between 0 and 1 at which it turns, in increasing order, at t, and gives
/// their number. Where it only stands still it does not turn.
[[nodiscard]] inline int ZKCubicExtrema(const std::array<double, 4>& v, std::array<double, 2>& t) {
  // The derivative is three times d0 s² + 2 d1 s t + d2 t², with s = 1 - t.
  double d0 = v[1] - v[0];
  double d1 = v[2] - v[1];
  double d2 = v[3] - v[2];
  const double scale = ZKUnitScale(std::max({std::abs(d0), std::abs(d1), std::abs(d2)}));
  d0 *= scale;
  d1 *= scale;
  d2 *= scale;
  const double discriminant = d1 * d1 - d0 * d2;
  if (!(discriminant > 0)) return 0;
  // Of both forms of a quadratic's roots, those in which nothing cancels.
  const double b = d1 - d0;
  const double q = -(b + std::copysign(std::sqrt(discriminant), b));
  const double first = q / (d0 - 2 * d1 + d2);
  const double second = d0 / q;
  int count = 0;
  for (const double root : {std::min(first, second), std::max(first, second)}) {
    if (root > 0 && root < 1) t[static_cast<std::size_t>(count++)] = root;
  }
  return count;
}
