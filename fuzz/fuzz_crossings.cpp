#include "fuzz/Support.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/ZKFoundation.h>

namespace {

using Cubic = std::array<NSPoint, 4>;

double sizeOf(const Cubic& cubic) {
  for (const NSPoint p : cubic) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return 0;
  }
  const NSRect bounds = ZKRectAroundPoints(cubic);
  return std::max(bounds.size.width, bounds.size.height);
}

void measure(const Cubic& cubic, double size) {
  const NSRect bounds = ZKCurveBounds(cubic.data());
  const auto points = ZKFlattenCurve(cubic.data(), size / 1000);
  const double place = std::max(std::abs(cubic[0].x), std::abs(cubic[0].y));
  const double slack = size * 1e-9 + place * 1e-15;
  require(points.front() == cubic.front() && points.back() == cubic.back());
  for (const NSPoint p : points) {
    require(p.x >= bounds.origin.x - slack && p.y >= bounds.origin.y - slack);
    require(p.x <= NSMaxX(bounds) + slack && p.y <= NSMaxY(bounds) + slack);
  }
  const double length = ZKCurveLength(cubic.data(), size / 1000);
  require(length >= 0 && length <= 6 * size);
  const double t = ZKCurveParameterAtLength(cubic.data(), length / 2, size / 1000);
  require(t >= 0 && t <= 1);
}

template <std::size_t capacity>
void check(const ZKCrossingList<capacity>& crossings, bool isLine = false) {
  for (const ZKCrossing& crossing : crossings) {
    require(crossing.t >= 0 && crossing.t <= 1);
    // A line goes on for ever, beyond the range of doubles, too.
    require(isLine || (crossing.u >= 0 && crossing.u <= 1));
  }
}

// What is found lies on both curves, at most rounding apart.
void checkMeetings(const Cubic& first, const Cubic& second) {
  const auto crossings = ZKCrossingsOfCurves(first.data(), second.data());
  check(crossings);
  double size = 0;
  for (const Cubic& cubic : {first, second}) {
    for (const NSPoint p : cubic) {
      size = std::max({size, std::abs(p.x - first[0].x), std::abs(p.y - first[0].y)});
    }
  }
  // Points of curves near the ends of the range of doubles are rounded more.
  if (crossings.isOverlap() || !(size > 1e-290 && size < 1e290)) return;
  const double places = std::max(std::abs(first[0].x), std::abs(first[0].y));
  for (const ZKCrossing& crossing : crossings) {
    const NSPoint other = ZKBezier(second.data(), 3, crossing.u, nullptr, nullptr);
    const NSPoint apart = ZKDiffPoint(crossing.point, other);
    require(std::max(std::abs(apart.x), std::abs(apart.y)) <= 1e-13 * size + 1e-15 * places);
  }
}

}  // namespace

// Any eight points: two cubics, whose measures and crossings lie where they must.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::array<Cubic, 2> cubics{};
  std::memcpy(cubics.data(), data, std::min(size, sizeof(cubics)));
  const auto& [first, second] = cubics;
  checkMeetings(first, second);
  check(ZKCrossingsWithSegment(first.data(), second[0], second[3]));
  check(ZKCrossingsWithLine(first.data(), second[0], second[3]), true);
  for (const Cubic& cubic : cubics) {
    const double extent = sizeOf(cubic);
    if (extent > 1e-270 && extent < 1e270) measure(cubic, extent);
  }
  return 0;
}
