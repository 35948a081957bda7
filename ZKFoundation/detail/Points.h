#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/detail/Vector.h>

// NOLINTBEGIN(misc-definitions-in-headers): they are inline but in the source that is to hold them.

ZK_INLINE NSPoint ZKSumPoint(NSPoint a, NSPoint b) { return {a.x + b.x, a.y + b.y}; }

ZK_INLINE NSPoint ZKDiffPoint(NSPoint a, NSPoint b) { return {a.x - b.x, a.y - b.y}; }

ZK_INLINE CGFloat ZKDotProduct(NSPoint a, NSPoint b) { return a.x * b.x + a.y * b.y; }

ZK_INLINE CGFloat ZKSquaredLength(NSPoint v) { return ZKDotProduct(v, v); }

ZK_INLINE CGFloat ZKDiffPointSquaredLength(NSPoint a, NSPoint b) {
  return ZKSquaredLength(ZKDiffPoint(a, b));
}

ZK_INLINE NSPoint ZKBisectLine(NSPoint a, NSPoint b) {
  return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

ZK_INLINE NSPoint ZKInterpolate(NSPoint a, NSPoint b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

ZK_INLINE NSPoint ZKPointIntersection2(NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
  const NSPoint first = ZKDiffPoint(b, a);
  const NSPoint second = ZKDiffPoint(d, c);
  const double den = first.x * second.y - first.y * second.x;
  if (den == 0.0) return ZKNotFoundPoint;
  const double t = ((a.y - c.y) * second.x - (a.x - c.x) * second.y) / den;
  return t >= 0.0 && t <= 1.0 ? ZKInterpolate(a, b, t) : ZKNotFoundPoint;
}

ZK_INLINE bool ZKAreSimilarPoints(NSPoint a, NSPoint b, double tolerance) {
  return !(std::abs(a.x - b.x) > tolerance) && !(std::abs(a.y - b.y) > tolerance);
}

ZK_INLINE bool ZKAreSimilarSizes(NSSize a, NSSize b, double tolerance) {
  return ZKAreSimilarPoints({a.width, a.height}, {b.width, b.height}, tolerance);
}

ZK_INLINE NSPoint ZKCenterOfCircleFromThreePoints(NSPoint a, NSPoint b, NSPoint c) {
  const double s = ZKSquaredLength(a);
  const double B = ZKSquaredLength(b) - s;
  const double C = ZKSquaredLength(c) - s;
  const NSPoint ab = ZKDiffPoint(b, a);
  const NSPoint ac = ZKDiffPoint(c, a);
  const double D = 2 * (ab.x * ac.y - ab.y * ac.x);
  return {(ac.y * B - ab.y * C) / D, (ab.x * C - ac.x * B) / D};
}

/// De Casteljau's method, from one row of his table to the next. Unrolled by templates, as
/// compilers that save room do not unroll loops.
template <std::size_t degree, std::size_t... k>
[[gnu::always_inline]] inline NSPoint ZKDivide(const std::array<ZKVector, sizeof...(k) + 1>& row,
                                               double t, NSPoint* left, NSPoint* right,
                                               std::index_sequence<k...> /*pairs*/) {
  constexpr std::size_t last = sizeof...(k);
  if (left != nullptr) left[degree - last] = row[0].point();
  if (right != nullptr) right[last] = row[last].point();
  if constexpr (last == 0) {
    return row[0].point();
  } else {
    return ZKDivide<degree>({ZKLerp(row[k], row[k + 1], t)...}, t, left, right,
                            std::make_index_sequence<last - 1>());
  }
}

template <std::size_t degree>
[[gnu::always_inline]] inline NSPoint ZKDivide(const NSPoint* points, double t, NSPoint* left,
                                               NSPoint* right) {
  std::array<ZKVector, degree + 1> row;
  std::copy_n(points, row.size(), row.begin());
  return ZKDivide<degree>(row, t, left, right, std::make_index_sequence<degree>());
}

[[gnu::always_inline]] inline NSPoint ZKDivideByDegree(const NSPoint* points, int degree, double t,
                                                       NSPoint* left, NSPoint* right) {
  switch (degree) {
    case 0:
      return ZKDivide<0>(points, t, left, right);
    case 1:
      return ZKDivide<1>(points, t, left, right);
    case 2:
      return ZKDivide<2>(points, t, left, right);
    case 3:
      return ZKDivide<3>(points, t, left, right);
    case 4:
      return ZKDivide<4>(points, t, left, right);
    case 5:
      return ZKDivide<5>(points, t, left, right);
    default:
      return {0, 0};
  }
}

extern "C" {
/// Does what `ZKBezier` does, for callers that do not know the degree when they are compiled.
ZK_EXPORT NSPoint ZKBezierOfAnyDegree(const NSPoint* points, int degree, double t, NSPoint* left,
                                      NSPoint* right);
}

ZK_INLINE NSPoint ZKBezier(const NSPoint* points, int degree, double t, NSPoint* left,
                           NSPoint* right) {
  return __builtin_constant_p(degree) ? ZKDivideByDegree(points, degree, t, left, right)
                                      : ZKBezierOfAnyDegree(points, degree, t, left, right);
}

// NOLINTEND(misc-definitions-in-headers)
