#include "ZKFoundation/Categories/ZKCurveOverlap.h"

#include <ZKFoundation/Categories/NSGeometry+ZKCurves.h>

namespace {

using Points = std::array<NSPoint, 4>;

Points pointsOf(const ZKCubic& v) {
  return {v[0].point(), v[1].point(), v[2].point(), v[3].point()};
}

double sizeOf(const ZKCubic& v) { return ZKCubicPiece(v, {0, 1}).size(); }

// What counts as no distance between curves that overlap.
double nearness(const ZKCubic& first, const ZKCubic& second) {
  return std::max(ZKCubicPiece::meeting, 0x1p-30 * std::min(sizeOf(first), sizeOf(second)));
}

// Whether all control points lie on one line, of which both curves cover a stretch.
bool areOnOneLine(const ZKCubic& first, const ZKCubic& second) {
  constexpr double shortest = 0x1p-22;
  ZKVector way = first[3] - first[0];
  const auto widen = [&](ZKVector v) {
    if (dot(v - first[0], v - first[0]) > dot(way, way)) way = v - first[0];
  };
  const auto isOff = [&](ZKVector v) {
    return std::abs(cross(way, v - first[0])) > nearness(first, second) * std::sqrt(dot(way, way));
  };
  std::ranges::for_each(first, widen);
  std::ranges::for_each(second, widen);
  if (std::ranges::any_of(first, isOff) || std::ranges::any_of(second, isOff)) return false;
  const NSRect a = ZKCurveBounds(pointsOf(first).data());
  const NSRect b = ZKCurveBounds(pointsOf(second).data());
  return std::min(NSMaxX(a), NSMaxX(b)) - std::max(NSMinX(a), NSMinX(b)) > shortest ||
         std::min(NSMaxY(a), NSMaxY(b)) - std::max(NSMinY(a), NSMinY(b)) > shortest;
}

// Whether a curve lies on the other one between two of these parameters that follow one another.
// More than nine points of the stretch tell: different curves have no more in common.
bool hasStretch(const ZKCubic& curve, const ZKCubic& other, std::span<double> ends) {
  const double near = nearness(curve, other);
  // Ends that are beside each other are no stretch.
  const double shortest = std::min(0x1p8 * near, 0.25 * std::min(sizeOf(curve), sizeOf(other)));
  const Points onOther = pointsOf(other);
  const auto isStretch = [&](double low, double high) {
    const ZKVector start = ZKMotionAt(curve, low).point;
    double length = ZKSizeOf(ZKMotionAt(curve, high).point - start);
    for (int k = 1; k < 12; ++k) {
      const ZKVector v = ZKMotionAt(curve, low + (high - low) * k / 12).point;
      if (ZKProjectOnCurve(onOther.data(), v.point()).distance > near) return false;
      length = std::max(length, ZKSizeOf(v - start));
    }
    return length > shortest;
  };
  std::ranges::sort(ends);
  for (std::size_t k = 1; k < ends.size(); ++k) {
    if (ends[k - 1] < ends[k] && isStretch(ends[k - 1], ends[k])) return true;
  }
  return false;
}

}  // namespace

void ZKAddSharedEnds(const ZKCubic& first, const ZKCubic& second, ZKMeetings& meetings) {
  const double near = nearness(first, second);
  const Points onFirst = pointsOf(first);
  const Points onSecond = pointsOf(second);
  for (const double end : {0.0, 1.0}) {
    const std::size_t place = end == 0 ? 0 : 3;
    const auto u = ZKProjectOnCurve(onSecond.data(), onFirst.at(place));
    if (u.distance <= near) meetings.add(end, u.t);
    const auto t = ZKProjectOnCurve(onFirst.data(), onSecond.at(place));
    if (t.distance <= near) meetings.add(t.t, end);
  }
}

// A stretch in common reaches from end to end. A curve may meet itself, so that more lies between
// two ends on the one curve than on the other.
bool ZKAreOverlapping(const ZKCubic& first, const ZKCubic& second) {
  if (areOnOneLine(first, second)) return true;
  ZKMeetings ends(first, second);
  ZKAddSharedEnds(first, second, ends);
  std::array<double, ZKMeetings::capacity> onFirst;
  std::array<double, ZKMeetings::capacity> onSecond;
  std::ranges::transform(ends.all(), onFirst.begin(), &ZKMeetings::Meeting::t);
  std::ranges::transform(ends.all(), onSecond.begin(), &ZKMeetings::Meeting::u);
  const std::size_t count = ends.all().size();
  return hasStretch(first, second, std::span(onFirst).first(count)) ||
         hasStretch(second, first, std::span(onSecond).first(count));
}
