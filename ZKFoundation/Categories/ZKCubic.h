#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/detail/Vector.h>

// Cubic Bezier curves, and how they run.

/// The control points of a cubic.
using ZKCubic = std::array<ZKVector, 4>;

/// Parameters from one to another.
struct ZKParameters {
  double low;
  double high;

  [[nodiscard]] double middle() const { return 0.5 * (low + high); }
  [[nodiscard]] double length() const { return high - low; }
  /// Gives the least range with both.
  [[nodiscard]] ZKParameters united(ZKParameters other) const {
    return {std::min(low, other.low), std::max(high, other.high)};
  }
};

/// Gives the parameters between two, in whichever order.
[[nodiscard]] inline ZKParameters ZKParametersBetween(double from, double to) {
  return {std::min(from, to), std::max(from, to)};
}

/// Gives the greater of both coordinates, without their signs.
[[nodiscard]] inline double ZKSizeOf(ZKVector v) {
  return std::max(std::abs(v.x()), std::abs(v.y()));
}

/// A point of a curve, with both derivatives there.
struct ZKMotion {
  ZKVector point;
  ZKVector first;
  ZKVector second;
};

[[nodiscard]] inline ZKMotion ZKMotionAt(const ZKCubic& v, double t) {
  const ZKVector v01 = ZKLerp(v[0], v[1], t);
  const ZKVector v12 = ZKLerp(v[1], v[2], t);
  const ZKVector v23 = ZKLerp(v[2], v[3], t);
  const ZKVector v012 = ZKLerp(v01, v12, t);
  const ZKVector v123 = ZKLerp(v12, v23, t);
  return {ZKLerp(v012, v123, t), (v123 - v012) * 3, (v23 - v12 - (v12 - v01)) * 6};
}

/// Gives the polar form: the control points of the part from t to u are those for (t, t, t),
/// (t, t, u), (t, u, u) and (u, u, u).
[[nodiscard]] inline ZKVector ZKPolarForm(const ZKCubic& v, double t1, double t2, double t3) {
  const ZKVector v01 = ZKLerp(v[0], v[1], t1);
  const ZKVector v12 = ZKLerp(v[1], v[2], t1);
  const ZKVector v23 = ZKLerp(v[2], v[3], t1);
  return ZKLerp(ZKLerp(v01, v12, t2), ZKLerp(v12, v23, t2), t3);
}

/// Gives the polar form of a third of the derivative.
[[nodiscard]] inline ZKVector ZKTangent(const ZKCubic& v, double t1, double t2) {
  return ZKLerp(ZKLerp(v[1] - v[0], v[2] - v[1], t1), ZKLerp(v[2] - v[1], v[3] - v[2], t1), t2);
}

/// Gives three vectors of which each tangent at one of the parameters is a mean, but for its
/// length.
[[nodiscard]] inline std::array<ZKVector, 3> ZKTangents(const ZKCubic& v, ZKParameters range) {
  return {ZKTangent(v, range.low, range.low), ZKTangent(v, range.low, range.high),
          ZKTangent(v, range.high, range.high)};
}

/// Gives three vectors of which each chord from t to one of the parameters is a mean, but for its
/// length: a third of the chord by the difference of the parameters.
[[nodiscard]] inline std::array<ZKVector, 3> ZKChords(const ZKCubic& v, double t,
                                                      ZKParameters range) {
  const auto chord = [&](double t1, double t2) {
    const ZKVector between = (ZKTangent(v, t, t1) + ZKTangent(v, t, t2)) * 0.5;
    return (ZKTangent(v, t, t) + between + ZKTangent(v, t1, t2)) * (1.0 / 3);
  };
  return {chord(range.low, range.low), chord(range.low, range.high), chord(range.high, range.high)};
}

/// Gives a parameter around t whose point is nearer to the given one, as far away as the second and
/// third derivatives tell; t itself where there is none. Where the curve all but stands still the
/// first derivative tells nothing.
[[nodiscard, gnu::noinline]] inline double ZKNearerByBend(const ZKCubic& v, ZKVector point,
                                                          double t) {
  const auto [start, first, second] = ZKMotionAt(v, t);
  const ZKVector third = (v[3] - v[0] - (v[2] - v[1]) * 3) * 6;
  double least = dot(point - start, point - start);
  const double apart = std::sqrt(least);
  const double step = std::min(std::sqrt(2 * apart / std::sqrt(dot(second, second))),
                               std::cbrt(6 * apart / std::sqrt(dot(third, third))));
  double nearest = t;
  for (const double other : {t - step, t + step}) {
    if (!(other >= 0 && other <= 1)) continue;
    const ZKVector way = point - ZKMotionAt(v, other).point;
    if (dot(way, way) < least) least = dot(way, way), nearest = other;
  }
  return nearest;
}

/// Gives the parameter of the point of the curve next to the given one, by Newton's method (less
/// the curvature) from a parameter near it.
[[nodiscard]] inline double ZKFoot(const ZKCubic& v, ZKVector point, double t) {
  double move = 1;
  for (int step = 0; step < 4 && std::abs(move) > 0x1p-46; ++step) {
    const ZKMotion on = ZKMotionAt(v, t);
    const ZKVector way = point - on.point;
    const double speed = dot(on.first, on.first);
    move = speed <= ZKSizeOf(way) ? ZKNearerByBend(v, point, t) - t : 0;
    if (move == 0 && speed > 0) move = dot(way, on.first) / speed;
    t += move;
  }
  return t;
}
