#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/Categories/ZKCubic.h>
#include <ZKFoundation/detail/Vector.h>

// Polynomials of degree 5 in Bernstein form, as control polygons, and how far a cubic is from a
// point as one of them.

/// The control points of a polynomial of degree 5: y over x.
using ZKPolygon = std::array<ZKVector, 6>;

/// Counts how often neighbours change between y below 0 and y of 0 or more.
[[nodiscard]] inline int ZKCrossings(const ZKPolygon& w) {
  int crossings = 0;
  bool isBelow = w[0].y() < 0;
  for (std::size_t k = 1; k < w.size(); ++k) {
    const bool isNextBelow = w[k].y() < 0;
    crossings += static_cast<int>(isNextBelow != isBelow);
    isBelow = isNextBelow;
  }
  return crossings;
}

/// Makes the control polygons of the two halves.
inline void ZKSplit(const ZKPolygon& w, ZKPolygon& left, ZKPolygon& right) {
  ZKPolygon row = w;
  for (std::size_t step = 0; step < w.size(); ++step) {
    left[step] = row[0];
    right[5 - step] = row[5 - step];
    for (std::size_t k = 0; k + 1 < w.size() - step; ++k) row[k] = ZKLerp(row[k], row[k + 1], 0.5);
  }
}

/// How often polygons can be halved for which `ZKHalvesExactly` holds, before a halving might
/// round: five times 100 bits are taken off 2^-500, whose own last bit is 2^-552.
constexpr int ZKExactHalvings = 100;

/// Whether no coordinate is near the ends of the range of doubles.
[[nodiscard]] inline bool ZKHalvesExactly(const ZKPolygon& w) {
  const auto isOrdinary = [](double value) {
    const double size = std::abs(value);
    return (size >= 0x1p-500 && size <= 0x1p500) || size == 0;
  };
  return std::ranges::all_of(w, [&](ZKVector p) { return isOrdinary(p.x()) && isOrdinary(p.y()); });
}

/// Gives the half that holds the only crossing of a polygon, bit for bit as `ZKSplit` gives it:
/// sums are halved at the end, which is the same while halving is exact.
[[nodiscard, gnu::always_inline]] inline ZKPolygon ZKHalfWithCrossing(const ZKPolygon& w) {
  ZKPolygon sums = w;
  ZKPolygon left;
  ZKPolygon right;
  double scale = 1;
  for (std::size_t step = 0; step < w.size(); ++step) {
    left[step] = sums[0] * scale;
    right[5 - step] = sums[5 - step] * scale;
    for (std::size_t k = 0; k + 1 < w.size() - step; ++k) sums[k] = sums[k] + sums[k + 1];
    scale *= 0.5;
  }
  // The middle shows it: neighbours' means lie between them, so that no crossing is added. Which
  // half it is cannot be predicted.
  const ZKVector::Bits isLeft = left[5].isBelow() ^ w[0].isBelow();
  ZKPolygon half;
  for (std::size_t k = 0; k < w.size(); ++k) {
    half[k] = ZKVector::select(isLeft, left[k], right[k]);
  }
  return half;
}

/// Gives the cubic with these control points, seen from p.
[[nodiscard]] inline ZKCubic ZKCubicFrom(NSPoint p, const NSPoint* points) {
  return {points[0] - ZKVector(p), points[1] - ZKVector(p), points[2] - ZKVector(p),
          points[3] - ZKVector(p)};
}

/// Multiplies a cubic, seen from a point, by its derivative, given by three times the
/// differences of its control points: 0 where the cubic runs square to the direction of the point.
[[nodiscard]] inline ZKPolygon ZKDistanceQuintic(const ZKCubic& c,
                                                 const std::array<ZKVector, 3>& d) {
  // C(2, j) C(3, i) / C(5, i + j)
  constexpr std::array<std::array<double, 4>, 3> z = {{
      {1.0, 0.6, 0.3, 0.1},
      {0.4, 0.6, 0.6, 0.4},
      {0.1, 0.3, 0.6, 1.0},
  }};
  constexpr std::array<double, 6> x = {0, 0.2, 0.4, 0.6, 0.8, 1.0};
  ZKPolygon w;
  for (std::size_t k = 0; k < w.size(); ++k) {
    double y = 0;
    for (std::size_t i = k < 2 ? 0 : k - 2; i <= std::min<std::size_t>(k, 3); ++i) {
      y += dot(d[k - i], c[i]) * z[k - i][i];
    }
    w[k] = ZKVector(x[k], y);
  }
  return w;
}
