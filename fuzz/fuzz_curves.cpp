#include "fuzz/Support.h"
#include "tests/ZKFoundation/BezierModel.h"

#include <array>
#include <bit>
#include <cmath>

#include <ZKFoundation/ZKFoundation.h>

// Any five points: both searches end, and the plain one finds what the written method finds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::array<NSPoint, 5> points{};
  std::memcpy(points.data(), data, std::min(size, sizeof(points)));
  const NSPoint p = points[4];
  double refined = 7;
  ZKNearestPointOnCurveRefined(points.data(), &refined, p);
  require(refined >= 0 && refined <= 1);

  BezierModel model;
  double expected = 7;
  model.nearestPoint(points.data(), &expected, p);
  // Heights next to the smallest double may end the process on purpose.
  if (!model.hasEnded()) return 0;
  double found = 7;
  ZKNearestPointOnCurve(points.data(), &found, p);
  require(std::bit_cast<std::uint64_t>(found) == std::bit_cast<std::uint64_t>(expected));
  return 0;
}
