#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <Foundation/NSGeometry.h>

// Polynomials of degree 5 in Bernstein form, as control polygons, and how far a cubic is from a
// point as one of them.

/// A point in one vector register, so that one instruction moves both coordinates.
class ZKPair {
 public:
  ZKPair() = default;
  ZKPair(double x, double y) : _lanes{x, y} {}
  ZKPair(NSPoint point) : ZKPair(point.x, point.y) {}

  double x() const { return _lanes[0]; }
  double y() const { return _lanes[1]; }
  NSPoint point() const { return {x(), y()}; }

  friend ZKPair operator+(ZKPair a, ZKPair b) { return ZKPair(a._lanes + b._lanes); }
  friend ZKPair operator-(ZKPair a, ZKPair b) { return ZKPair(a._lanes - b._lanes); }
  friend ZKPair operator*(ZKPair a, double factor) { return ZKPair(a._lanes * factor); }
  friend double dot(ZKPair a, ZKPair b) {
    const Lanes products = a._lanes * b._lanes;
    return products[0] + products[1];
  }

  /// All ones where y is below 0, all zeros elsewhere.
  using Bits = long long __attribute__((vector_size(16)));
  Bits isBelow() const {
    const Bits below = _lanes < 0;
    return __builtin_shufflevector(below, below, 1, 1);
  }
  /// a for ones, b for zeros; a choice without a branch.
  static ZKPair select(Bits bits, ZKPair a, ZKPair b) {
    return ZKPair(reinterpret_cast<Lanes>((bits & reinterpret_cast<Bits>(a._lanes)) |
                                          (~bits & reinterpret_cast<Bits>(b._lanes))));
  }

 private:
  using Lanes = double __attribute__((vector_size(16)));
  explicit ZKPair(Lanes lanes) : _lanes(lanes) {}

  Lanes _lanes;
};

/// (1 - t) a + t b
inline ZKPair ZKBetween(ZKPair a, ZKPair b, double t) { return a * (1 - t) + b * t; }

/// The control points: y over x.
using ZKPolygon = std::array<ZKPair, 6>;

/// How often neighbours change between y below 0 and y of 0 or more.
inline int ZKCrossings(const ZKPolygon& w) {
  int crossings = 0;
  bool isBelow = w[0].y() < 0;
  for (std::size_t k = 1; k < w.size(); ++k) {
    const bool isNextBelow = w[k].y() < 0;
    crossings += static_cast<int>(isNextBelow != isBelow);
    isBelow = isNextBelow;
  }
  return crossings;
}

/// The control polygons of the two halves.
inline void ZKSplit(const ZKPolygon& w, ZKPolygon& left, ZKPolygon& right) {
  ZKPolygon row = w;
  for (std::size_t step = 0; step < w.size(); ++step) {
    left[step] = row[0];
    right[5 - step] = row[5 - step];
    for (std::size_t k = 0; k + 1 < w.size() - step; ++k)
      row[k] = ZKBetween(row[k], row[k + 1], 0.5);
  }
}

/// How often polygons can be halved for which `ZKHalvesExactly` holds, before a halving might
/// round: five times 100 bits are taken off 2^-500, whose own last bit is 2^-552.
constexpr int ZKExactHalvings = 100;

/// Whether no coordinate is near the ends of the range of doubles.
inline bool ZKHalvesExactly(const ZKPolygon& w) {
  const auto isOrdinary = [](double value) {
    const double size = std::abs(value);
    return (size >= 0x1p-500 && size <= 0x1p500) || size == 0;
  };
  return std::ranges::all_of(w, [&](ZKPair p) { return isOrdinary(p.x()) && isOrdinary(p.y()); });
}

/// The half that holds the only crossing of a polygon, bit for bit as `ZKSplit` gives it: sums are
/// halved at the end, which is the same while halving is exact.
[[gnu::always_inline]] inline ZKPolygon ZKHalfWithCrossing(const ZKPolygon& w) {
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
  const ZKPair::Bits isLeft = left[5].isBelow() ^ w[0].isBelow();
  ZKPolygon half;
  for (std::size_t k = 0; k < w.size(); ++k) {
    half[k] = ZKPair::select(isLeft, left[k], right[k]);
  }
  return half;
}

/// A cubic's control points, seen from a point.
using ZKCubic = std::array<ZKPair, 4>;

inline ZKCubic ZKCubicFrom(NSPoint p, const NSPoint* points) {
  return {points[0] - ZKPair(p), points[1] - ZKPair(p), points[2] - ZKPair(p),
          points[3] - ZKPair(p)};
}

/// The product of a cubic, seen from a point, and its derivative, given by three times the
/// differences of its control points: 0 where the cubic runs square to the direction of the point.
inline ZKPolygon ZKDistanceQuintic(const ZKCubic& c, const std::array<ZKPair, 3>& d) {
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
    w[k] = ZKPair(x[k], y);
  }
  return w;
}
