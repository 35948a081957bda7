#include "tests/ZKFoundation/CurveCases.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The length by so many chords, and what is left to it when each is a parabola.
double lengthByChords(const Cubic& v, int count) {
  double sum = 0;
  for (int k = 0; k < count; ++k)
    sum += distance(at(v, double(k) / count), at(v, (k + 1.0) / count));
  return sum;
}

constexpr Cubic quarterCircle = {
    {{100, 0}, {100, 55.19150244935105}, {55.19150244935105, 100}, {0, 100}}};
constexpr Cubic parabola = {{{0, 0}, {1.0 / 3, 0}, {2.0 / 3, 1.0 / 3}, {1, 1}}};

TEST(NSCurve, IsBoundedByItsExtrema) {
  EXPECT_EQ(ZKCurveBounds(Cubic{{{-3, 0}, {-1, 4}, {1, 4}, {3, 0}}}.data()),
            NSMakeRect(-3, 0, 6, 3));
  expectProperty("the smallest rectangle around its points", [] {
    const Cubic v = anyCubic();
    std::vector<NSPoint> samples;
    for (int k = 0; k <= 2000; ++k) samples.push_back(at(v, k / 2000.0));
    const NSRect bounds = ZKCurveBounds(v.data());
    RC_ASSERT(ZKAreSimilarRects(bounds, ZKRectAroundPoints(samples), 1e-4));
    samples.insert(samples.end(), {bounds.origin, ZKGetPointOfRect(ZKHandleMaxXMaxY, bounds)});
    RC_ASSERT(ZKAreSimilarRects(bounds, ZKRectAroundPoints(samples), 1e-13));
    for (const double factor : {0x1p-900, 0x1p900}) {
      const NSRect other = ZKCurveBounds(scaled(v, factor).data());
      RC_ASSERT(ZKTransformRect(other, ZKMakeScaling(1 / factor, 1 / factor)) == bounds);
    }
  });
}

TEST(NSCurve, HasALength) {
  const double length = 0.5 * std::sqrt(5) + 0.25 * std::asinh(2.0);
  EXPECT_NEAR(ZKCurveLength(parabola.data(), 0), length, 1e-15);
  EXPECT_NEAR(ZKCurveLength(quarterCircle.data(), 0), 50 * std::numbers::pi, 0.01);
  EXPECT_EQ(ZKCurveLength(Cubic{{{0, 0}, {3, 4}, {6, 8}, {9, 12}}}.data(), nan), 15);
  EXPECT_EQ(ZKCurveLength(Cubic{{{2, 3}, {2, 3}, {2, 3}, {2, 3}}}.data(), 0), 0);
  EXPECT_GT(ZKCurveLength(scaled(parabola, 1e-310).data(), 0), 1e-310);
  EXPECT_TRUE(std::isnan(ZKCurveLength(Cubic{{{0, 0}, {nan, 4}, {6, 8}, {9, 12}}}.data(), 0)));
  expectProperty("as chords and its parts tell, within the tolerance", [] {
    const Cubic v = anyCubic();
    const double best = ZKCurveLength(v.data(), 0);
    const double chords = lengthByChords(v, 1000);
    RC_ASSERT(best >= chords - 1e-12 && best <= chords + 1e-3);
    for (const double tolerance : {10.0, 0.1, 1e-3, 1e-6, 1e-10}) {
      RC_ASSERT(std::abs(ZKCurveLength(v.data(), tolerance) - best) <= tolerance);
    }
    for (const double factor : {0x1p-900, 0x1p900}) {
      RC_ASSERT(ZKCurveLength(scaled(v, factor).data(), 0) == best * factor);
    }
    Cubic left, right;
    ZKBezier(v.data(), 3, *rc::gen::inRange(0, 65) / 64.0, left.data(), right.data());
    RC_ASSERT(std::abs(ZKCurveLength(left.data(), 0) + ZKCurveLength(right.data(), 0) - best) <
              1e-12);
  });
}

TEST(NSCurve, ReachesALengthAtAParameter) {
  expectProperty("up to which its part is as long", [] {
    const Cubic v = anyCubic();
    const double whole = ZKCurveLength(v.data(), 0);
    const double length = whole * *rc::gen::inRange(1, 100) / 100;
    for (const double tolerance : {1.0, 1e-3, 1e-9, 0.0}) {
      const double t = ZKCurveParameterAtLength(v.data(), length, tolerance);
      RC_ASSERT(t >= 0 && t <= 1);
      Cubic left;
      ZKBezier(v.data(), 3, t, left.data(), nullptr);
      RC_ASSERT(std::abs(ZKCurveLength(left.data(), 0) - length) <= tolerance + 1e-12);
    }
    for (const double none : {0.0, -1.0, nan})
      RC_ASSERT(ZKCurveParameterAtLength(v.data(), none, 0) == 0);
    RC_ASSERT(ZKCurveParameterAtLength(v.data(), whole + 1, 0) == 1);
  });
}

double distanceFromPolyline(const std::vector<NSPoint>& points, NSPoint p) {
  double least = infinity;
  for (std::size_t k = 1; k < points.size(); ++k) {
    const NSPoint d = ZKDiffPoint(points[k], points[k - 1]);
    const double along = ZKDotProduct(d, ZKDiffPoint(p, points[k - 1]));
    const double t = along > 0 ? std::min(along / ZKSquaredLength(d), 1.0) : 0;
    least = std::min(least, distance(p, ZKInterpolate(points[k - 1], points[k], t)));
  }
  return least;
}

TEST(NSCurve, IsFlattenedToFewPoints) {
  expectProperty("none of which is farther from it than the tolerance, nor it from them", [] {
    const Cubic v = anyCubic();
    const double tolerance = *rc::gen::element(5.0, 0.5, 0.01, 1e-4);
    const std::vector<NSPoint> points = ZKFlattenCurve(v.data(), tolerance);
    RC_ASSERT(points.size() >= 2 && points.front() == v[0] && points.back() == v[3]);
    const double limit = tolerance * (1 + 1e-9);
    for (int k = 0; k <= 200; ++k)
      RC_ASSERT(distanceFromPolyline(points, at(v, k / 200.0)) <= limit);
    for (std::size_t k = 1; k < points.size(); k += 1 + points.size() / 100) {
      const NSPoint middle = ZKBisectLine(points[k - 1], points[k]);
      RC_ASSERT(ZKProjectOnCurve(v.data(), points[k]).distance < 1e-13);
      RC_ASSERT(ZKProjectOnCurve(v.data(), middle).distance <= limit);
    }
    RC_ASSERT(ZKFlattenCurve(scaled(v, 0x1p900).data(), 0x1p900 * tolerance).size() ==
              points.size());
  });
  // Chords of a circle; 56 of 0.0283 radians are needed.
  EXPECT_LE(ZKFlattenCurve(quarterCircle.data(), 0.01).size(), 59U);
  EXPECT_EQ(ZKFlattenCurve(quarterCircle.data(), infinity).size(), 2U);
  EXPECT_GT(ZKFlattenCurve(quarterCircle.data(), nan).size(), 100'000U);
  const Cubic endless = {{{0, 0}, {1, infinity}, {2, 0}, {3, 0}}};
  EXPECT_EQ(ZKFlattenCurve(endless.data(), 1), (std::vector{endless[0], endless[3]}));
}

}  // namespace
