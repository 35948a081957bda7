#include "tests/Support.h"
#include "tests/ZKFoundation/BezierModel.h"

#include <random>
#include <span>

#include <ZKFoundation/ZKFoundation.h>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double tiniest = std::numeric_limits<double>::denorm_min();

using Cubic = std::array<NSPoint, 4>;
using Polygon = std::array<NSPoint, 6>;

Polygon overUnitInterval(std::array<double, 6> heights, double unit = 1) {
  Polygon polygon;
  for (std::size_t k = 0; k < 6; ++k) polygon[k] = {double(k) / 5, heights[k] * unit};
  return polygon;
}

// Cubics and points of every kind, with coordinates drawn alike for a whole case.
class Cases {
 public:
  std::pair<Cubic, NSPoint> next() {
    const auto kind = draw(8);
    const auto any = [&] { return NSPoint{coordinate(kind), coordinate(kind)}; };
    std::pair<Cubic, NSPoint> result = {{any(), any(), any(), any()}, any()};
    auto& [v, p] = result;
    if (draw(5) == 0) v[1] = v[0];
    if (draw(5) == 0) v[2] = v[3];
    if (draw(9) == 0) v[3] = v[0];
    if (draw(9) == 0) std::ranges::for_each(v, [](NSPoint& q) { q.y = 0.5 * q.x; });
    if (draw(9) == 0) p = BezierModel::bezier(v.data(), 3, double(draw(65)) / 64, nullptr, nullptr);
    return result;
  }

  double number() { return std::uniform_real_distribution<double>(-100, 100)(_engine); }
  std::uint64_t draw(std::uint64_t count) { return _engine() % count; }

 private:
  double coordinate(std::uint64_t kind) {
    constexpr std::array special = {0.0,    -0.0,   1.0,     -1.0,     1e154,     1e308, -1e308,
                                    1e-160, 1e-320, tiniest, infinity, -infinity, nan};
    const std::array kinds = {double(draw(7)) - 3,
                              double(draw(2001)) - 1000,
                              std::ldexp(number(), int(draw(1200)) - 600),
                              special[draw(special.size())],
                              number() * 1e-160,
                              number()};
    return kinds[std::min(kind, kinds.size() - 1)];
  }

  std::mt19937_64 _engine{20};
};

int caseCount() { return std::max(std::atoi(ZK_PROPERTY_CASES) * 10, 1000); }

// Numbers to the last bit; all NaN are one.
std::string exact(const std::vector<double>& numbers) {
  std::ostringstream text;
  for (const double number : numbers) {
    text << std::hexfloat << (std::isnan(number) ? nan : number) << ' ';
  }
  return text.str();
}

// Finds what the written method finds, if that comes to an end; of six to ten roots the first five.
void expectModelRoots(const Polygon& polygon, int depth) {
  BezierModel model;
  auto expected = model.findRoots(polygon.data(), std::min(depth, 64));
  if (!model.hasEnded()) return;
  expected.resize(std::min<std::size_t>(expected.size(), 5));
  std::vector<double> roots(5);
  roots.resize(static_cast<std::size_t>(ZKFindRoots(polygon.data(), roots.data(), depth)));
  EXPECT_EQ(exact(roots), exact(expected));
}

TEST(NSBezier, DividesCurvesOfEveryDegree) {
  expectProperty("as de Casteljau's table has it", [] {
    const int degree = *rc::gen::inRange(0, 6);
    const double t = *rc::gen::inRange(-4, 9) / 4.0;
    Polygon points, left, right, expectedLeft, expectedRight;
    for (NSPoint& p : points) p = {*rc::gen::inRange(-9, 9) / 7.0, *rc::gen::inRange(-9, 9) / 7.0};
    const NSPoint expected =
        BezierModel::bezier(points.data(), degree, t, expectedLeft.data(), expectedRight.data());
    RC_ASSERT(ZKBezier(points.data(), degree, t, nullptr, nullptr) == expected);
    RC_ASSERT(ZKBezier(points.data(), degree, t, left.data(), right.data()) == expected);
    RC_ASSERT(std::equal(left.begin(), left.begin() + degree + 1, expectedLeft.begin()));
    RC_ASSERT(std::equal(right.begin(), right.begin() + degree + 1, expectedRight.begin()));
    ZKBezier(points.data(), degree, t, nullptr, points.data());
    RC_ASSERT(std::equal(right.begin(), right.begin() + degree + 1, points.begin()));
  });
  const NSPoint point = {7, 7};
  NSPoint untouched = {1, 2};
  for (const int degree : {-1, 6}) {
    EXPECT_EQ(ZKBezier(&point, degree, 0.5, &untouched, &untouched), NSMakePoint(0, 0));
    EXPECT_EQ(untouched, NSMakePoint(1, 2));
  }
}

TEST(NSBezier, HasTangents) {
  const Cubic curve = {{{0, 0}, {0, 1}, {1, 2}, {3, 2}}};
  const double up = std::atan2(1.0, 0.0);
  for (const double t : {-1.0, -0.0, 0.0}) EXPECT_EQ(ZKBezierSlope(curve.data(), t), up);
  for (const double t : {1.0, 2.0}) EXPECT_EQ(ZKBezierSlope(curve.data(), t), 0);
  EXPECT_NEAR(ZKBezierSlope(curve.data(), 0.5), std::atan2(2.25, 3.0), 1e-15);
  const Cubic standing = {{{1, 1}, {1, 1}, {4, 5}, {6, 7}}};
  EXPECT_EQ(ZKBezierSlope(standing.data(), 0), 0);
}

TEST(NSBezier, FindsWhatTheWrittenMethodFinds) {
  Cases cases;
  BezierModel model;
  int compared = 0;
  for (int k = 0; k < caseCount(); ++k) {
    const auto [curve, p] = cases.next();
    double expectedT = 7, t = 7;
    const NSPoint expected = model.nearestPoint(curve.data(), &expectedT, p);
    const NSPoint found = ZKNearestPointOnCurve(curve.data(), &t, p);
    if (!model.hasEnded()) continue;
    ++compared;
    ASSERT_EQ(exact({t, found.x, found.y}), exact({expectedT, expected.x, expected.y}))
        << curve[0] << curve[1] << curve[2] << curve[3] << " from " << p;
  }
  EXPECT_GT(compared, caseCount() * 9 / 10);
}

TEST(NSBezier, FindsTheRootsThatTheWrittenMethodFinds) {
  Cases cases;
  for (int k = 0; k < caseCount() && !HasFailure(); ++k) {
    std::array<double, 6> heights;
    const std::array units = {1.0, tiniest, 0x1p-1040, 0x1p-500, 0x1p900};
    const double unit = units[cases.draw(units.size())];
    const auto bound = cases.draw(60) + 1;
    for (double& height : heights) height = double(cases.draw(2 * bound + 1)) - double(bound);
    expectModelRoots(overUnitInterval(heights, unit), int(cases.draw(4)) * 25 - 10);
  }
  // Two roots that coincide, told apart for more than 500 levels.
  expectModelRoots(overUnitInterval({10, -2, -5, 1, 16, 40}), 0);
  for (const int depth : {64, std::numeric_limits<int>::max()}) {
    expectModelRoots(overUnitInterval({-1, 2, -1, 2, 2, 2}), depth);
  }
  // A width that overflows makes no polygon flat.
  Polygon wide = overUnitInterval({1, 1, 1, -1, -1, -1});
  for (NSPoint& point : wide) point.x = 1e308 * (2 * point.x - 1);
  expectModelRoots(wide, 0);
}

TEST(NSBezier, StoresNothingWhereThereAreNoRoots) {
  double root = 7;
  EXPECT_EQ(ZKFindRoots(overUnitInterval({0, 1, 2, -0.0, 4, 5}).data(), &root, 0), 0);
  EXPECT_EQ(root, 7);
}

TEST(NSBezier, EndsWhereHalvingWouldNot) {
  std::array<double, 5> roots;
  for (const int depth : {0, -1'000'000'000}) {
    for (const double rest : {nan, infinity, -infinity, 1.0}) {
      const Polygon polygon = overUnitInterval({0, -infinity, rest, rest, -infinity, 0});
      const auto count = static_cast<std::size_t>(ZKFindRoots(polygon.data(), roots.data(), depth));
      for (const double root : std::span(roots).first(count)) {
        EXPECT_TRUE(root >= 0 && root <= 1) << root;
      }
    }
  }
}

TEST(NSBezier, RefinesNothingWithoutFiniteCoordinates) {
  const Cubic curve = {{{0, 0}, {10, 0}, {-10, 0}, {30, 0}}};
  for (std::size_t broken = 0; broken < curve.size(); ++broken) {
    Cubic v = curve;
    v[broken].y = nan;
    double t = 7, other = 7;
    const NSPoint plain = ZKNearestPointOnCurve(v.data(), &t, {1, 2});
    const NSPoint refined = ZKNearestPointOnCurveRefined(v.data(), &other, {1, 2});
    EXPECT_EQ(exact({other, refined.x, refined.y}), exact({t, plain.x, plain.y})) << broken;
  }
}

TEST(NSBezierDeathTest, StopsAtMoreRootsThanThereCanBe) {
  // Halving the smallest of all numbers rounds, and makes up crossings: in the whole, and in a
  // half.
  using Heights = std::array<double, 6>;
  for (Heights heights : {Heights{14, -108, 446, -1332, 3038, -4236},
                          Heights{-2, -178, 2058, -16230, 101782, -502138}}) {
    for (const std::string side : {"left", "right"}) {
      std::array<double, 10> roots;
      EXPECT_DEATH(ZKFindRoots(overUnitInterval(heights, tiniest).data(), roots.data(), 0),
                   "NSGeometry\\+ZKFoundationExtensions\\.cpp:[0-9]+: ZKFindRoots: Assertion `" +
                       side + "_count < 6' failed");
      std::ranges::reverse(heights);
    }
  }
}

TEST(NSBezier, PrefersEarlyParametersAtEqualDistances) {
  const Cubic straight = {{{0, 0}, {1, 0}, {2, 0}, {3, 0}}};
  double t = 7;
  EXPECT_EQ(ZKNearestPointOnCurve(straight.data(), &t, {1.5, 1}), NSMakePoint(1.5, 0));
  EXPECT_EQ(t, 0.5);
  const Cubic arch = {{{-3, 0}, {-1, 4}, {1, 4}, {3, 0}}};
  for (const auto nearest : {&ZKNearestPointOnCurve, &ZKNearestPointOnCurveRefined}) {
    EXPECT_EQ(nearest(arch.data(), &t, {0, -20}), arch[0]);
    EXPECT_EQ(t, 0);
    EXPECT_EQ(nearest(arch.data(), &t, arch[3]), arch[3]);
    EXPECT_EQ(t, 1);
    EXPECT_EQ(nearest(arch.data(), nullptr, arch[0]), arch[0]);
    const Cubic loop = {{arch[0], arch[1], arch[2], arch[0]}};
    nearest(loop.data(), &t, arch[0]);
    EXPECT_EQ(t, 0);
  }
}

long double exactDistance(const Cubic& v, NSPoint p, long double t) {
  const long double s = 1 - t;
  const auto at = [&](CGFloat NSPoint::*axis) {
    return s * s * s * v[0].*axis + 3 * s * s * t * v[1].*axis + 3 * s * t * t * v[2].*axis +
           t * t * t * v[3].*axis - p.*axis;
  };
  return std::hypot(at(&NSPoint::x), at(&NSPoint::y));
}

// By brute force, for curves whose derivatives are shorter than that.
long double leastDistance(const Cubic& v, NSPoint p, long double derivative) {
  constexpr int steps = 400;
  constexpr long double step = 1.0L / steps;
  long double best = std::min(exactDistance(v, p, 0), exactDistance(v, p, 1));
  for (int k = 0; k < steps; ++k) {
    long double low = (k - 1) * step, high = (k + 1) * step;
    if (exactDistance(v, p, k * step) > best + step * derivative) continue;
    for (int turn = 0; turn < 60; ++turn) {
      const long double third = (high - low) / 3;
      const bool isLeft = exactDistance(v, p, low + third) < exactDistance(v, p, high - third);
      (isLeft ? high : low) += isLeft ? -third : third;
    }
    best = std::min(best, exactDistance(v, p, std::clamp<long double>((low + high) / 2, 0, 1)));
  }
  return best;
}

TEST(NSBezier, RefinesToTheTrueNearestPointAtAnyScale) {
  Cases cases;
  for (const double scale : {1e-8, 1e-3, 1.0, 1e3, 1e8, 1e160}) {
    for (int k = 0; k < std::max(caseCount() / 500, 40); ++k) {
      const auto number = [&] { return cases.number() / 100 * scale; };
      Cubic v;
      for (NSPoint& point : v) point = {number(), number()};
      NSPoint p = {2 * number(), 2 * number()};
      const auto kind = cases.draw(8);
      if (kind == 1) v[1] = v[0];
      if (kind == 2) v = {v[0], v[0], v[3], v[3]};
      if (kind == 3) std::ranges::for_each(v, [](NSPoint& point) { point.y = 0.5 * point.x; });
      if (kind == 4) p = ZKBezier(v.data(), 3, 0.3, nullptr, nullptr);
      // A loop and a cusp; both have ties along x = 0.
      if (kind == 5) v = {{{-scale, 0}, {2 * scale, scale}, {-2 * scale, scale}, {scale, 0}}};
      if (kind == 6) v = {{{-scale, 0}, {scale, scale}, {-scale, scale}, {scale, 0}}};
      if (kind >= 5 && k % 2 == 0) p.x = 0;
      // Close to where the curve stands still, or almost: at the cusp, at an end, at the tip of a
      // fold.
      const double near = std::ldexp(scale, -static_cast<int>(cases.draw(60)));
      if (kind == 6 && k % 4 == 3) v[3].x += near;
      if (kind == 6 && k % 2 == 1) p = {near * cases.number() / 100, 0.75 * scale - near};
      if (kind == 1 && k % 2 == 0) p = {v[0].x + near / scale * (v[2].x - v[0].x), v[0].y};
      if (kind == 7) v = {{{0, 0}, {-9 * scale, 0}, {2 * scale, 0}, {3 * scale, 0}}};
      if (kind == 7) p = {-3.5160623391752877 * scale + (k % 2) * near, 0};
      // Where both derivatives are zero.
      if (kind == 7 && k % 4 >= 2) v = {{{0, 0}, {scale, 0}, {0, 0}, {scale, 0}}};
      if (kind == 7 && k % 4 >= 2) p = {0.5 * scale + (k % 2) * near, 0};
      double t = 7;
      const NSPoint found = ZKNearestPointOnCurveRefined(v.data(), &t, p);
      ASSERT_EQ(found, ZKBezier(v.data(), 3, t, nullptr, nullptr));
      const long double least = leastDistance(v, p, 50 * scale);
      const auto error = double((exactDistance(v, p, t) - least) / scale);
      ASSERT_LE(error, 2e-15) << v[0] << v[1] << v[2] << v[3] << " from " << p << " at " << t;
      ZKNearestPointOnCurve(v.data(), &t, p);
      ASSERT_TRUE(scale < 1e-3 || scale > 1e3 || exactDistance(v, p, t) - least < 1e-4 * scale)
          << t;
    }
  }
}

}  // namespace
