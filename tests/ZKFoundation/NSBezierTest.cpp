#include "tests/Support.h"
#include "tests/ZKFoundation/BezierModel.h"

#include <bit>
#include <random>

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
  using Case = std::pair<Cubic, NSPoint>;

  Case next() {
    const auto kind = draw(8);
    const auto any = [&] { return NSPoint{coordinate(kind), coordinate(kind)}; };
    Case result = {{any(), any(), any(), any()}, any()};
    auto& [v, p] = result;
    if (draw(5) == 0) v[1] = v[0];
    if (draw(5) == 0) v[2] = v[3];
    if (draw(9) == 0) v[3] = v[0];
    if (draw(9) == 0) {
      for (NSPoint& point : v) point.y = 0.5 * point.x;
    }
    if (draw(9) == 0) p = BezierModel::bezier(v.data(), 3, double(draw(65)) / 64, nullptr, nullptr);
    return result;
  }

  double number() { return std::uniform_real_distribution<double>(-100, 100)(_engine); }
  std::uint64_t draw(std::uint64_t count) { return _engine() % count; }

 private:
  double coordinate(std::uint64_t kind) {
    constexpr std::array special = {0.0,    -0.0,   1.0,     -1.0,     1e154,     1e308, -1e308,
                                    1e-160, 1e-320, tiniest, infinity, -infinity, nan};
    switch (kind) {
      case 0:
        return double(draw(7)) - 3;
      case 1:
        return double(draw(2001)) - 1000;
      case 2:
        return std::ldexp(number(), int(draw(1200)) - 600);
      case 3:
        return special[draw(special.size())];
      case 4:
        return number() * 1e-160;
      default:
        return number();
    }
  }

  std::mt19937_64 _engine{20};
};

int caseCount() { return std::max(std::atoi(ZK_PROPERTY_CASES) * 10, 1000); }

bool areSameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
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
    ASSERT_TRUE(areSameBits(t, expectedT) && areSameBits(found.x, expected.x) &&
                areSameBits(found.y, expected.y))
        << curve[0] << curve[1] << curve[2] << curve[3] << " from " << p << ": " << t << ", not "
        << expectedT;
  }
  EXPECT_GT(compared, caseCount() * 9 / 10);
}

TEST(NSBezier, FindsTheRootsThatTheWrittenMethodFinds) {
  Cases cases;
  BezierModel model;
  for (int k = 0; k < caseCount(); ++k) {
    std::array<double, 6> heights;
    const std::array units = {1.0, tiniest, 0x1p-1040, 0x1p-500, 0x1p900};
    const double unit = units[cases.draw(units.size())];
    const auto bound = cases.draw(60) + 1;
    for (double& height : heights) height = double(cases.draw(2 * bound + 1)) - double(bound);
    const Polygon polygon = overUnitInterval(heights, unit);
    const int depth = int(cases.draw(4)) * 25 - 10;
    std::array<double, 10> expected;
    std::array<double, 5> roots;
    const int count = std::min(model.findRoots(polygon.data(), expected.data(), depth), 5);
    if (!model.hasEnded()) continue;
    ASSERT_EQ(ZKFindRoots(polygon.data(), roots.data(), depth), count);
    for (std::size_t root = 0; root < std::size_t(count); ++root) {
      ASSERT_TRUE(areSameBits(roots[root], expected[root]));
    }
  }
}

TEST(NSBezier, EndsWhateverItIsGiven) {
  std::array<double, 5> roots;
  const Polygon positive = overUnitInterval({0, 1, 2, -0.0, 4, 5});
  roots[0] = 7;
  EXPECT_EQ(ZKFindRoots(positive.data(), roots.data(), 0), 0);
  EXPECT_EQ(roots[0], 7);
  // Two roots that coincide, told apart for more than 500 levels.
  const Polygon touching = overUnitInterval({10, -2, -5, 1, 16, 40});
  BezierModel model;
  std::array<double, 10> expected;
  const int count = model.findRoots(touching.data(), expected.data(), 0);
  EXPECT_TRUE(model.hasEnded());
  EXPECT_EQ(ZKFindRoots(touching.data(), roots.data(), 0), count);
  for (const int depth : {64, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(ZKFindRoots(overUnitInterval({-1, 2, -1, 2, 2, 2}).data(), roots.data(), depth),
              model.findRoots(overUnitInterval({-1, 2, -1, 2, 2, 2}).data(), expected.data(), 64));
    EXPECT_EQ(roots[0], expected[0]);
  }
  // A width that overflows makes no polygon flat.
  Polygon wide = overUnitInterval({1, 1, 1, -1, -1, -1});
  for (NSPoint& point : wide) point.x = 1e308 * (2 * point.x - 1);
  EXPECT_EQ(ZKFindRoots(wide.data(), roots.data(), 0),
            model.findRoots(wide.data(), expected.data(), 0));
  EXPECT_EQ(roots[0], expected[0]);
  // Levels without end.
  for (const int depth : {0, -1'000'000'000}) {
    for (const double rest : {nan, infinity, -infinity, 1.0}) {
      const Polygon polygon = overUnitInterval({0, -infinity, rest, rest, -infinity, 0});
      const int found = ZKFindRoots(polygon.data(), roots.data(), depth);
      for (int root = 0; root < found; ++root) {
        const double t = roots[static_cast<std::size_t>(root)];
        EXPECT_TRUE(t >= 0 && t <= 1) << t;
      }
    }
  }
  const Cubic curve = {{{0, 0}, {10, 0}, {-10, 0}, {30, 0}}};
  double t = 7;
  EXPECT_EQ(ZKNearestPointOnCurve(curve.data(), &t, {-0x1p60, 0}), NSMakePoint(0, 0));
  for (std::size_t broken = 0; broken < curve.size(); ++broken) {
    Cubic withoutNumber = curve;
    withoutNumber[broken].y = nan;
    double other = 7;
    const NSPoint plain = ZKNearestPointOnCurve(withoutNumber.data(), &t, {1, 2});
    const NSPoint refined = ZKNearestPointOnCurveRefined(withoutNumber.data(), &other, {1, 2});
    EXPECT_TRUE(areSameBits(plain.x, refined.x) && areSameBits(plain.y, refined.y)) << broken;
    EXPECT_TRUE(areSameBits(t, other)) << broken;
  }
}

TEST(NSBezierDeathTest, StopsAtMoreRootsThanThereCanBe) {
  // Halving the smallest of all numbers rounds, and makes up crossings.
  std::array<double, 6> heights = {14, -108, 446, -1332, 3038, -4236};
  std::array<double, 10> roots;
  const std::string file = "NSGeometry\\+ZKFoundationExtensions\\.cpp:[0-9]+: ZKFindRoots: ";
  const auto find = [&] {
    ZKFindRoots(overUnitInterval(heights, tiniest).data(), roots.data(), 0);
  };
  EXPECT_DEATH(find(), file + "Assertion `left_count < 6' failed");
  std::ranges::reverse(heights);
  EXPECT_DEATH(find(), file + "Assertion `right_count < 6' failed");
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

// The distance as exactly as long doubles give it, by brute force.
class ExactCurve {
 public:
  ExactCurve(const Cubic& v, NSPoint p) : _v(v), _p(p) {}

  long double distance(long double t) const {
    const long double s = 1 - t;
    const auto at = [&](CGFloat NSPoint::*axis) {
      return s * s * s * _v[0].*axis + 3 * s * s * t * _v[1].*axis + 3 * s * t * t * _v[2].*axis +
             t * t * t * _v[3].*axis - _p.*axis;
    };
    return std::hypot(at(&NSPoint::x), at(&NSPoint::y));
  }

  long double least() const {
    constexpr int steps = 400;
    constexpr long double step = 1.0L / steps;
    long double best = std::min(distance(0), distance(1));
    for (int k = 0; k < steps; ++k) {
      const long double t = k * step;
      if (distance(t) > best + step * size()) continue;
      long double low = t - step;
      long double high = t + step;
      for (int turn = 0; turn < 60; ++turn) {
        const long double third = (high - low) / 3;
        if (distance(low + third) < distance(high - third)) {
          high -= third;
        } else {
          low += third;
        }
      }
      best = std::min(best, distance(std::clamp<long double>((low + high) / 2, 0, 1)));
    }
    return best;
  }

  long double size() const {
    long double result = 0;
    for (const NSPoint v : _v) {
      result += 9 * std::hypot(v.x - _p.x, v.y - _p.y);
    }
    return result;
  }

 private:
  Cubic _v;
  NSPoint _p;
};

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
      double t = 7;
      const NSPoint found = ZKNearestPointOnCurveRefined(v.data(), &t, p);
      ASSERT_EQ(found, ZKBezier(v.data(), 3, t, nullptr, nullptr));
      const ExactCurve exact(v, p);
      const auto error = double((exact.distance(t) - exact.least()) / scale);
      ASSERT_LE(error, 2e-15) << v[0] << v[1] << v[2] << v[3] << " from " << p << " at " << t;
    }
  }
}

TEST(NSBezier, TurnsWithTheDrawing) {
  expectProperty("a quarter turn, a shift and a change of direction", [] {
    Cubic v, turned, shifted, reversed;
    const auto any = [] {
      return NSPoint{double(*rc::gen::inRange(-99, 99)), double(*rc::gen::inRange(-99, 99))};
    };
    const NSPoint p = any();
    for (std::size_t k = 0; k < 4; ++k) {
      v[k] = any();
      turned[k] = {-v[k].y, v[k].x};
      shifted[k] = {v[k].x + 1024, v[k].y - 512};
      reversed[3 - k] = v[k];
    }
    for (const auto nearest : {&ZKNearestPointOnCurve, &ZKNearestPointOnCurveRefined}) {
      double t = 7, other = 7;
      const NSPoint found = nearest(v.data(), &t, p);
      const double distance = std::hypot(found.x - p.x, found.y - p.y);
      const NSPoint turnedPoint = nearest(turned.data(), &other, {-p.y, p.x});
      RC_ASSERT(other == t);
      RC_ASSERT(turnedPoint == NSMakePoint(-found.y, found.x));
      const NSPoint shiftedPoint = nearest(shifted.data(), nullptr, {p.x + 1024, p.y - 512});
      RC_ASSERT(std::abs(std::hypot(shiftedPoint.x - 1024 - p.x, shiftedPoint.y + 512 - p.y) -
                         distance) < 1e-7);
      const NSPoint back = nearest(reversed.data(), &other, p);
      RC_ASSERT(std::abs(std::hypot(back.x - p.x, back.y - p.y) - distance) < 1e-7);
      // The same point but for ties: t becomes 1 - t.
      const bool isTie = std::hypot(back.x - found.x, back.y - found.y) > 1e-2;
      const NSPoint mirrored = ZKBezier(v.data(), 3, 1 - other, nullptr, nullptr);
      RC_ASSERT(isTie || std::hypot(mirrored.x - found.x, mirrored.y - found.y) < 1e-2);
    }
  });
}

}  // namespace
