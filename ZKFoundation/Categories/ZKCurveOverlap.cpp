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

// The stretch between ends that lie on the other curve does so too. More than nine points of it
// tell: different curves have no more in common.
bool ZKAreOverlapping(const ZKCubic& first, const ZKCubic& second) {
  if (areOnOneLine(first, second)) return true;
  ZKMeetings ends(first, second);
  ZKAddSharedEnds(first, second, ends);
  double low = 1;
  double high = 0;
  for (const auto& each : ends.all()) {
    low = std::min(low, each.t);
    high = std::max(high, each.t);
  }
  if (!(low < high)) return false;
  const Points onSecond = pointsOf(second);
  for (int k = 1; k < 12; ++k) {
    const NSPoint p = ZKMotionAt(first, low + (high - low) * k / 12).point.point();
    if (ZKProjectOnCurve(onSecond.data(), p).distance > nearness(first, second)) return false;
  }
  return true;
}
