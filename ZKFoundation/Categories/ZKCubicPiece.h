#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include <ZKFoundation/Categories/ZKCubic.h>

/// A part of a curve, and how it lies beside a part of another one. Distances are those of curves
/// with a size of about 1.
class ZKCubicPiece {
 public:
  /// Gaps that are not wider may come from rounding alone.
  static constexpr double gap = 0x1p-49;
  /// Points that are no farther from each other are the same.
  static constexpr double meeting = 0x1p-47;

  ZKCubicPiece(const ZKCubic& points, ZKParameters parameters)
      : v(points),
        range(parameters),
        _least(min(min(v[0], v[1]), min(v[2], v[3]))),
        _greatest(max(max(v[0], v[1]), max(v[2], v[3]))) {}

  [[nodiscard]] double size() const { return ZKSizeOf(_greatest - _least); }
  [[nodiscard]] bool contains(double t) const {
    return t >= range.low - 0x1p-40 && t <= range.high + 0x1p-40;
  }

  [[nodiscard]] ZKCubicPiece half(bool isSecond) const {
    const ZKVector v01 = (v[0] + v[1]) * 0.5;
    const ZKVector v12 = (v[1] + v[2]) * 0.5;
    const ZKVector v23 = (v[2] + v[3]) * 0.5;
    const ZKVector v012 = (v01 + v12) * 0.5;
    const ZKVector v123 = (v12 + v23) * 0.5;
    const ZKVector center = (v012 + v123) * 0.5;
    return isSecond ? ZKCubicPiece({center, v123, v23, v[3]}, {range.middle(), range.high})
                    : ZKCubicPiece({v[0], v01, v012, center}, {range.low, range.middle()});
  }

  [[nodiscard]] bool isApartFrom(const ZKCubicPiece& other) const {
    const ZKVector apart = max(_least - other._greatest, other._least - _greatest);
    return std::max(apart.x(), apart.y()) > gap;
  }

  /// Whether the other is on one side of the strip along the chord in which this one lies.
  [[nodiscard]] bool isBeside(const ZKCubicPiece& other) const {
    const ZKVector chord = v[3] - v[0];
    const double h1 = cross(chord, v[1] - v[0]);
    const double h2 = cross(chord, v[2] - v[0]);
    // How far a cubic follows its control points: 3/4 to one side, 4/9 to both.
    const double part = h1 * h2 > 0 ? 0.75 : 4.0 / 9;
    const double slack = gap * (std::abs(chord.x()) + std::abs(chord.y()));
    const double top = part * std::max({h1, h2, 0.0}) + slack;
    const double bottom = part * std::min({h1, h2, 0.0}) - slack;
    const std::array<double, 4> heights = {
        cross(chord, other.v[0] - v[0]), cross(chord, other.v[1] - v[0]),
        cross(chord, other.v[2] - v[0]), cross(chord, other.v[3] - v[0])};
    const auto isAll = [&](auto test) { return std::ranges::all_of(heights, test); };
    return isAll([=](double h) { return h > top; }) || isAll([=](double h) { return h < bottom; });
  }

  /// Whether no tangent of this one is parallel to any of the other, so that they cross once at
  /// most: the chord between two crossings would have the direction of means of both.
  [[nodiscard]] bool turnsAwayFrom(const ZKCubicPiece& other) const {
    double least = 0;
    double greatest = 0;
    double sum = 0;
    for (std::size_t k = 1; k < v.size(); ++k) {
      for (std::size_t j = 1; j < v.size(); ++j) {
        const double turn = cross(v[k] - v[k - 1], other.v[j] - other.v[j - 1]);
        least = std::min(least, turn);
        greatest = std::max(greatest, turn);
        sum += turn;
      }
    }
    return (least == 0 || greatest == 0) && std::abs(sum) > 0x1p-40 * size() * other.size();
  }

  /// Gives the parameter of the point next to the given one, which is near the piece, on the curve
  /// of which this is one; the middle if there is none nearby.
  [[nodiscard]] double foot(const ZKCubic& curve, ZKVector point) const {
    const ZKVector chord = v[3] - v[0];
    const double share = dot(point - v[0], chord) / dot(chord, chord);
    if (!(std::abs(share) <= 2)) return range.middle();
    const double t = ZKFoot(curve, point, range.low + range.length() * share);
    return std::abs(t - range.middle()) <= 2 * range.length() ? t : range.middle();
  }

  ZKCubic v;
  ZKParameters range;

 private:
  ZKVector _least;
  ZKVector _greatest;
};

/// How ways from one curve to another lie to tangents: to one side of all of them, along all of
/// them, so that the ways are too short to tell, or neither.
enum class ZKSide { one, none, unclear };

[[nodiscard]] inline ZKSide ZKSideOf(std::span<const ZKVector> ways,
                                     std::span<const ZKVector> tangents, double slack) {
  bool isLeft = true;
  bool isRight = true;
  bool isNone = true;
  for (const ZKVector way : ways) {
    for (const ZKVector tangent : tangents) {
      const double turn = cross(tangent, way);
      const double unsure = slack * ZKSizeOf(tangent) + ZKCubicPiece::gap * ZKSizeOf(way);
      isLeft = isLeft && turn > unsure;
      isRight = isRight && turn < -unsure;
      isNone = isNone && std::abs(turn) <= unsure;
    }
  }
  if (isNone) return ZKSide::none;
  return isLeft || isRight ? ZKSide::one : ZKSide::unclear;
}

/// Tells whether a piece keeps to one side of another curve, of a piece of it, beside which it
/// runs; none if both are the same but for rounding, where the other does not turn back.
///
/// The way from a point of the one to a point of the other leads to the point at a like place, and
/// from there along the other curve. So the points are not the same if no way between like places
/// is parallel to a tangent. Like places are linear functions of each other; unlike strips around
/// chords, their difference is told apart from nothing as soon as the pieces are short for how much
/// the curves differ in their curvature, not for how much they are curved.
[[nodiscard]] inline ZKSide ZKSideOf(const ZKCubicPiece& piece, const ZKCubicPiece& other,
                                     const ZKCubic& curve) {
  const double from = other.foot(curve, piece.v[0]);
  const double to = other.foot(curve, piece.v[3]);
  const ZKCubic ways = {piece.v[0] - ZKPolarForm(curve, from, from, from),
                        piece.v[1] - ZKPolarForm(curve, from, from, to),
                        piece.v[2] - ZKPolarForm(curve, from, to, to),
                        piece.v[3] - ZKPolarForm(curve, to, to, to)};
  const auto tangents = ZKTangents(curve, other.range.united(ZKParametersBetween(from, to)));
  const ZKSide side = ZKSideOf(ways, tangents, ZKCubicPiece::meeting);
  if (side != ZKSide::none) return side;
  const bool isOneWay = dot(tangents[0], tangents[1]) >= 0 && dot(tangents[1], tangents[2]) >= 0 &&
                        dot(tangents[0], tangents[2]) >= 0;
  return isOneWay ? side : ZKSide::unclear;
}
