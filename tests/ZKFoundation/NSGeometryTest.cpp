#include "tests/Support.h"

#include <array>
#include <bit>
#include <cstdint>

#include <dlfcn.h>

#include <ZKFoundation/ZKFoundation.h>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

NSPoint anyPoint(int bound = 20) {
  const auto coordinate = rc::gen::inRange(-bound, bound + 1);
  return {static_cast<double>(*coordinate), static_cast<double>(*coordinate)};
}

NSRect anyRect(int smallestSize = 0) {
  const auto size = rc::gen::inRange(smallestSize, 12);
  const NSPoint origin = anyPoint(10);
  return {origin, {static_cast<double>(*size), static_cast<double>(*size)}};
}

double distance(NSPoint a, NSPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }

TEST(NSGeometry, SnapsAnglesToTheNearerStandardOne) {
  for (int step = 0; step < 8; ++step) {
    const double bound = 22.5 + 45.0 * step;
    EXPECT_EQ(ZKSnapAngleToStandardAngles(bound), 45.0 * step);
    EXPECT_EQ(ZKSnapAngleToStandardAngles(std::nextafter(bound, 400)), 45.0 * ((step + 1) % 8));
  }
  for (const double angle : {-10.0, -1e300, 0.0, 360.0, 400.0, nan}) {
    EXPECT_EQ(ZKSnapAngleToStandardAngles(angle), 0) << angle;
  }
}

TEST(NSGeometry, MeasuresInFloatPrecision) {
  EXPECT_EQ(ZKSlope({0, 0}, {0, 1}), 1.5707963705062866);
  EXPECT_EQ(ZKSlope({1, 1}, {0, 0}), static_cast<double>(std::atan2(-1.0F, -1.0F)));
  EXPECT_EQ(ZKLineLength({0, 0}, {16777217, 0}), 16777216);
  // Differences are taken before they are rounded.
  EXPECT_EQ(ZKLineLength({16777217, 0}, {16777219, 0}), 2);
  EXPECT_EQ(ZKRelPoint({1, 0}, {0, 0}, {3, 0}), 1.0 / 3.0);
  EXPECT_EQ(ZKRelPoint({5, 5}, {1, 1}, {1, 1}), 0);
  EXPECT_EQ(ZKRelPoint({5, 5}, {0, 0}, {1e-50, 0}), 0);
  // Not known to the compiler, which rounds better than the library does.
  const volatile float x = -4.5F;
  const volatile float y = -9.625F;
  EXPECT_EQ(ZKSlope({0, 0}, {-4.5, -9.625}), static_cast<double>(std::atan2(y, x)));
  const double right = ZKSlope({0, 0}, {0, 1});
  EXPECT_EQ(ZKAngleBetween({0, 0}, {1, 0}, {1, 1}), -right);
  EXPECT_EQ(ZKAngleBetween({0, 0}, {0, 1}, {0, 0}), 2 * right);
}

TEST(NSGeometry, CalculatesWithVectors) {
  EXPECT_EQ(ZKBisectLine({1, 2}, {4, -2}), NSMakePoint(2.5, 0));
  EXPECT_EQ(ZKInterpolate({1, 2}, {3, 6}, -0.5), NSMakePoint(0, 0));
  EXPECT_EQ(ZKDiffPoint({1, 2}, {4, -2}), NSMakePoint(-3, 4));
  EXPECT_EQ(ZKSumPoint({1, 2}, {4, -2}), NSMakePoint(5, 0));
  EXPECT_EQ(ZKDotProduct({1, 2}, {4, -3}), -2);
  EXPECT_EQ(ZKSquaredLength({3, -4}), 25);
  EXPECT_EQ(ZKDiffPointSquaredLength({1, 2}, {4, -2}), 25);
}

TEST(NSGeometry, IntersectsASegmentWithALine) {
  EXPECT_EQ(ZKNotFoundPoint, NSMakePoint(-10000000.2, -999999.6));
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {1, 1}, {5, 0}, {6, 1}), ZKNotFoundPoint);
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {0, 0}, {5, 0}, {6, 1}), ZKNotFoundPoint);
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {nan, 1}, {5, 0}, {6, 1}), ZKNotFoundPoint);
  // The ends count; the second pair is a line without ends.
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {4, 0}, {0, 5}, {0, 9}), NSMakePoint(0, 0));
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {4, 0}, {4, 5}, {4, 9}), NSMakePoint(4, 0));
  EXPECT_EQ(ZKPointIntersection2({0, 0}, {1, 0}, {1.0000001, 5}, {1.0000001, 9}), ZKNotFoundPoint);
  expectProperty("the point lies on both lines, if the ends are on different sides", [] {
    const NSPoint a = anyPoint(), b = anyPoint(), c = anyPoint(), d = anyPoint();
    const auto side = [&](NSPoint p) {
      return (d.x - c.x) * (p.y - c.y) - (d.y - c.y) * (p.x - c.x);
    };
    const NSPoint found = ZKPointIntersection2(a, b, c, d);
    const bool crosses = side(a) != side(b) && side(a) * side(b) <= 0;
    RC_ASSERT(crosses == (found != ZKNotFoundPoint));
    if (crosses) {
      RC_ASSERT(std::abs(side(found)) < 1e-10);
      RC_ASSERT(distance(a, found) + distance(found, b) - distance(a, b) < 1e-10);
    }
  });
}

TEST(NSGeometry, IntersectsLinesByTheirAngles) {
  // y = 0 and y = 2 + (x - 2) π/4 with the angle for the slope.
  const NSPoint found = ZKPointIntersection({0, 0}, {9, 0}, {2, 2}, {3, 3});
  const double angle = ZKSlope({2, 2}, {3, 3});
  EXPECT_EQ(found, NSMakePoint((2 - 2 * angle) / -angle, 0));
  EXPECT_FALSE(std::isfinite(ZKPointIntersection({0, 0}, {1, 1}, {5, 0}, {6, 1}).x));
}

TEST(NSGeometry, FindsTheNearestPointOfASegment) {
  EXPECT_EQ(ZKNearestPointOnLine({5, 5}, {1, 2}, {1, 2}), NSMakePoint(1, 2));
  EXPECT_EQ(ZKNearestPointOnLine({9, 0}, {1, 0}, {4, 0}), NSMakePoint(4, 0));
  EXPECT_EQ(ZKNearestPointOnLine({-3, 1}, {0, 0}, {4, 0}), NSMakePoint(0, 0));
  EXPECT_EQ(ZKNearestPointOnLine({1, 1}, {0, 0}, {1e-50, 0}), NSMakePoint(0, 0));
  expectProperty("no other point of the segment is nearer", [] {
    const NSPoint p = anyPoint(), a = anyPoint(), b = anyPoint();
    const double found = distance(p, ZKNearestPointOnLine(p, a, b));
    for (int k = 0; k <= 32; ++k) {
      RC_ASSERT(found <= distance(p, ZKInterpolate(a, b, k / 32.0)) + 1e-5);
    }
  });
}

TEST(NSGeometry, ComparesWithATolerance) {
  for (const auto& [dx, dy, tolerance, isSimilar] :
       Rows<double, double, double, bool>{{0, 0, 0, true},
                                          {0.5, -0.5, 0.5, true},
                                          {0.5, 0.75, 0.5, false},
                                          {-0.75, 0.5, 0.5, false},
                                          {nan, 0, 0, true},
                                          {0, 1, nan, true}}) {
    const NSPoint b = {1 + dx, 2 + dy};
    EXPECT_EQ(ZKAreSimilarPoints({1, 2}, b, tolerance), isSimilar);
    EXPECT_EQ(ZKAreSimilarSizes({1, 2}, {b.x, b.y}, tolerance), isSimilar);
    EXPECT_EQ(ZKAreSimilarRects({{1, 2}, {5, 6}}, {b, {5, 6}}, tolerance), isSimilar);
    EXPECT_EQ(ZKAreSimilarRects({{5, 6}, {1, 2}}, {{5, 6}, {b.x, b.y}}, tolerance), isSimilar);
  }
}

TEST(NSGeometry, FindsTheCircleThroughThreePoints) {
  EXPECT_EQ(ZKCenterOfCircleFromThreePoints({0, 0}, {2, 0}, {0, 2}), NSMakePoint(1, 1));
  EXPECT_FALSE(std::isfinite(ZKCenterOfCircleFromThreePoints({0, 0}, {1, 1}, {3, 3}).x));
  expectProperty("the centre is as far from each", [] {
    const NSPoint a = anyPoint(), b = anyPoint(), c = anyPoint();
    const double area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    RC_PRE(area != 0);
    const NSPoint center = ZKCenterOfCircleFromThreePoints(a, b, c);
    const double radius = distance(center, a);
    RC_ASSERT(std::abs(distance(center, b) - radius) < 1e-9 * (1 + radius));
    RC_ASSERT(std::abs(distance(center, c) - radius) < 1e-9 * (1 + radius));
  });
}

TEST(NSRect, ContainsItsMinEdgesAndOverlapsByArea) {
  expectProperty("a rectangle is the unit cells that begin in it", [] {
    const NSRect a = anyRect(-2), b = anyRect(-2);
    bool overlaps = false;
    for (int column = -12; column < 24; ++column) {
      for (int row = -12; row < 24; ++row) {
        const double x = column;
        const double y = row;
        const auto holds = [&](const NSRect& rect) {
          return x >= rect.origin.x && x + 1 <= rect.origin.x + rect.size.width &&
                 y >= rect.origin.y && y + 1 <= rect.origin.y + rect.size.height;
        };
        RC_ASSERT(NSPointInRect({x, y}, a) == holds(a));
        overlaps = overlaps || (holds(a) && holds(b));
      }
    }
    RC_ASSERT(NSIntersectsRect(a, b) == overlaps);
    RC_ASSERT(ZKIntersectsRect(false, a, b) == overlaps);
    RC_ASSERT(ZKIntersectsRect(true, a, b) == NSPointInRect(ZKGetPointOfRect(8, a), b));
  });
}

TEST(NSRect, NamesNineHandles) {
  const NSRect rect = {{10, 20}, {4, 8}};
  const std::vector<NSPoint> points = {{12, 20}, {10, 24}, {12, 28}, {14, 24}, {10, 20},
                                       {14, 20}, {14, 28}, {10, 28}, {12, 24}};
  for (NSUInteger handle = 0; handle < points.size(); ++handle) {
    EXPECT_EQ(ZKGetPointOfRect(handle, rect), points[handle]);
    const NSPoint opposite = {24 - points[handle].x, 48 - points[handle].y};
    EXPECT_EQ(ZKOppositePoint(handle, rect), opposite);
    EXPECT_EQ(points[ZKOppositePointIndex(handle)], opposite);
    EXPECT_EQ(ZKIsCorner(handle), handle >= 4 && handle <= 7);
  }
  for (const NSUInteger none : {NSUInteger{9}, NSUInteger{12}, ~NSUInteger{0}}) {
    EXPECT_EQ(ZKGetPointOfRect(none, rect), rect.origin);
    EXPECT_EQ(ZKOppositePoint(none, rect), rect.origin);
    EXPECT_EQ(ZKOppositePointIndex(none), ~NSUInteger{0});
    EXPECT_FALSE(ZKIsCorner(none));
  }
  const std::vector<double> edges = {10, 20, 14, 28, 0, 0};
  for (NSUInteger edge = 0; edge < edges.size(); ++edge) {
    EXPECT_EQ(ZKCoordinateForRectEdge(edge, rect), edges[edge]);
  }
}

TEST(NSRect, DragsHandlesByTheTable) {
  const NSRect wide = {{0, 0}, {20, 10}};
  const NSRect high = {{0, 0}, {10, 20}};
  const NSRect square = {{0, 0}, {10, 10}};
  const Rows<NSUInteger, NSRect, NSPoint, NSRect, NSUInteger> rows = {
      // The min-y edge keeps its name, and is put in order only where max-x exceeds max-y.
      {0, high, {5, 5}, {{0, 5}, {10, 15}}, 0},
      {0, high, {5, 25}, {{0, 25}, {10, -5}}, 0},
      {0, wide, {5, 15}, {{0, 10}, {20, 5}}, 0},
      {0, square, {5, 15}, {{0, 15}, {10, -5}}, 0},
      {1, square, {4, 5}, {{4, 0}, {6, 10}}, 1},
      {1, square, {10, 5}, {{10, 0}, {0, 10}}, 1},
      {1, square, {15, 5}, {{10, 0}, {5, 10}}, 3},
      {2, square, {5, 12}, {{0, 0}, {10, 12}}, 2},
      {2, square, {5, 10}, {{0, 0}, {10, 10}}, 2},
      {2, square, {5, 8}, {{0, 0}, {10, 8}}, 0},
      {2, square, {5, -3}, {{0, -3}, {10, 3}}, 0},
      {3, square, {12, 5}, {{0, 0}, {12, 10}}, 3},
      {3, square, {0, 5}, {{0, 0}, {0, 10}}, 3},
      {3, square, {-3, 5}, {{-3, 0}, {3, 10}}, 1},
      {4, square, {4, 5}, {{4, 5}, {6, 5}}, 4},
      {4, square, {10, 10}, {{10, 10}, {0, 0}}, 4},
      {4, square, {4, 12}, {{4, 10}, {6, 2}}, 7},
      {4, square, {12, 12}, {{10, 10}, {2, 2}}, 6},
      {4, square, {12, 10}, {{10, 10}, {2, 0}}, 5},
      {5, high, {8, 5}, {{0, 5}, {8, 15}}, 5},
      {5, high, {20, 5}, {{0, 5}, {20, 15}}, 5},
      {5, high, {21, 5}, {{0, 5}, {21, 15}}, 6},
      {5, high, {8, 25}, {{0, 25}, {8, -5}}, 5},
      {5, high, {0, 5}, {{0, 5}, {0, 15}}, 5},
      {5, high, {-4, 5}, {{-4, 5}, {4, 15}}, 4},
      {5, {{0, -20}, {10, 10}}, {-4, -15}, {{-4, -15}, {4, 5}}, 7},
      {6, square, {12, 12}, {{0, 0}, {12, 12}}, 6},
      {6, square, {12, 11}, {{0, 0}, {12, 11}}, 5},
      {6, square, {0, 0}, {{0, 0}, {0, 0}}, 6},
      {6, square, {-4, -5}, {{-4, -5}, {4, 5}}, 4},
      {6, square, {-4, -4}, {{-4, -4}, {4, 4}}, 7},
      {6, square, {-4, 5}, {{-4, 0}, {4, 5}}, 7},
      {7, square, {4, 10}, {{4, 0}, {6, 10}}, 7},
      {7, square, {4, 9}, {{4, 0}, {6, 9}}, 4},
      {7, square, {10, 12}, {{10, 0}, {0, 12}}, 7},
      {7, square, {12, 9}, {{10, 0}, {2, 9}}, 5},
      {7, square, {12, 10}, {{10, 0}, {2, 10}}, 6},
      {8, wide, {30, -5}, {{20, -10}, {20, 10}}, 8},
      {9, wide, {30, -5}, wide, 9},
      {~NSUInteger{0}, wide, {30, -5}, wide, ~NSUInteger{0}},
  };
  NSRect uneven = {{0.1, 0.1}, {0.2, 0.2}};
  ZKMovePointTo(&uneven, ZKHandleMaxXMaxY, {0.7, 0.9});
  EXPECT_EQ(uneven.size.width, 0.2 + (0.7 - (0.1 + 0.2)));
  for (const auto& [handle, before, to, moved, result] : rows) {
    NSRect rect = before;
    EXPECT_EQ(ZKMovePointTo(&rect, handle, to), result) << handle << " to " << to;
    EXPECT_EQ(rect, moved) << handle << " to " << to;
  }
}

TEST(NSRect, IsMadeMovedAndGrown) {
  EXPECT_EQ(ZKMakeRectFromPoint({1, 2}), NSMakeRect(1, 2, 0, 0));
  EXPECT_EQ(ZKRectWithSizeAndOriginAtCenter({4, 6}), NSMakeRect(-2, -3, 4, 6));
  EXPECT_EQ(ZKCenterOnPoint({{1, 2}, {4, 6}}, {0, 0}), NSMakeRect(-2, -3, 4, 6));
  EXPECT_EQ(ZKCenterOn({{1, 2}, {4, 6}}, {0, 0}), NSMakeRect(-2, -3, 4, 6));
  EXPECT_EQ(ZKUnionRect({{10, 10}, {5, 5}}, {{0, 0}, {0, 0}}), NSMakeRect(0, 0, 15, 15));
  expectProperty("unions, growth and corners agree", [] {
    const NSPoint p = anyPoint(), q = anyPoint();
    const NSRect rect = anyRect(), other = anyRect();
    RC_ASSERT(ZKExtendRectByPoint(rect, p) == ZKUnionRect(rect, ZKMakeRectFromPoint(p)));
    RC_ASSERT(ZKMakeRectFromTwoPoints(p, q) == ZKExtendRectByPoint(ZKMakeRectFromPoint(p), q));
    RC_ASSERT(ZKMakeRectFromTwoPoints(p, q) == ZKNormalizedRect({p, {q.x - p.x, q.y - p.y}}));
    NSRect grown = rect;
    for (const NSUInteger corner : {4U, 6U}) {
      grown = ZKExtendRectByPoint(grown, ZKGetPointOfRect(corner, other));
    }
    RC_ASSERT(ZKUnionRect(rect, other) == grown);
    RC_ASSERT(ZKUnionRect(other, rect) == grown);
  });
}

TEST(NSRect, IsAlignedAndScaled) {
  const NSRect a = {{77, 78}, {2, 4}};
  const NSRect b = {{10, 20}, {10, 10}};
  const std::vector<NSPoint> origins = {{14, 23}, {14, 26}, {10, 26}, {18, 26}, {10, 23},
                                        {14, 20}, {10, 20}, {18, 20}, {18, 23}, {14, 23}};
  for (NSUInteger code = 0; code < origins.size(); ++code) {
    EXPECT_EQ(ZKAlignRectangles(code, a, b), origins[code]);
  }
  for (const auto& [mode, size, scaled] :
       Rows<NSUInteger, NSSize, NSRect>{{0, {4, 2}, {{10, 20}, {4, 2}}},
                                        {0, {20, 10}, {{10, 20}, {10, 5}}},
                                        {0, {5, 20}, {{10, 20}, {2.5, 10}}},
                                        {0, {10, 10}, {{10, 20}, {10, 10}}},
                                        {1, {4, 2}, {{10, 20}, {10, 5}}},
                                        {1, {40, 80}, {{10, 20}, {5, 10}}},
                                        {2, {4, 2}, b},
                                        {99, {40, 2}, b}}) {
    EXPECT_EQ(ZKScaleRectToFitInRect(mode, ZKAlignBottomLeft, {{3, 3}, size}, b), scaled);
  }
  EXPECT_EQ(ZKScaleRectToFitInRect(1, ZKAlignTopRight, {{0, 0}, {4, 2}}, b),
            NSMakeRect(10, 25, 10, 5));
  EXPECT_EQ(ZKScaleRectToFitInRect(0, ZKAlignTopRight, a, b), NSMakeRect(18, 26, 2, 4));
  // Equal rectangles are neither scaled nor aligned.
  for (const NSRect same : {b, {{1, 2}, {0, 5}}, {{1, 2}, {0.1, 0.3}}}) {
    EXPECT_EQ(ZKScaleRectToFitInRect(1, ZKAlignTopRight, same, same), same);
  }
  // (x + width) - width of the other, not x + (width - width of the other).
  EXPECT_EQ(ZKAlignRectangles(ZKAlignRight, {{0, 0}, {0.1, 0}}, {{0.3, 0}, {0.7, 0}}).x,
            0.3 + 0.7 - 0.1);
  EXPECT_FALSE(std::isfinite(ZKScaleRectToFitInRect(1, 0, {{0, 0}, {0, 0}}, b).size.width));
}

TEST(NSRect, IsLookedForInArrays) {
  const auto box = [](NSRect rect) { return NSMake<NSValue>(rect); };
  const auto rects = NSMake<NSMutableArray>({box({{0, 0}, {5, 5}}), box({{10, 0}, {5, 5}})});
  EXPECT_TRUE(ZKPointInRects(rects, {0, 0}));
  EXPECT_TRUE(ZKPointInRects(rects, {12, 4}));
  EXPECT_FALSE(ZKPointInRects(rects, {5, 5}));
  EXPECT_FALSE(ZKPointInRects(nullptr, {0, 0}));
  rects->addObject(u"text"_ns);
  EXPECT_TRUE(ZKPointInRects(rects, {12, 4}));
  expectRaises(NSInvalidArgumentException, "an element is not an NSValue (in 'ZKPointInRects')",
               [&] { return ZKPointInRects(rects, NSMakePoint(7, 7)); });
}

// What the library exports, not the body that a header shows.
template <class Function>
Function* exported(Function* function) {
  Function* volatile hidden = function;
  return hidden;
}

template <class Value>
bool areSameBits(Value a, Value b) {
  using Bits = std::array<std::uint64_t, sizeof(Value) / sizeof(std::uint64_t)>;
  return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

TEST(NSGeometry, CalculatesInHeadersWhatTheLibraryDoes) {
  expectProperty("to the bit", [] {
    const auto number = [] {
      return std::ldexp(*rc::gen::inRange(-999, 999) / 7.0,
                        *rc::gen::element(-1070, -9, 0, 9, 1010));
    };
    const auto point = [&] { return NSPoint{number(), number()}; };
    const NSPoint a = point(), b = point(), c = point(), d = point();
    const NSRect rect = {a, {b.x, b.y}}, other = {c, {d.x, d.y}};
    const double t = number();
    RC_ASSERT(areSameBits(ZKBisectLine(a, b), exported(ZKBisectLine)(a, b)));
    RC_ASSERT(areSameBits(ZKInterpolate(a, b, t), exported(ZKInterpolate)(a, b, t)));
    RC_ASSERT(
        areSameBits(ZKDiffPointSquaredLength(a, b), exported(ZKDiffPointSquaredLength)(a, b)));
    RC_ASSERT(
        areSameBits(ZKPointIntersection2(a, b, c, d), exported(ZKPointIntersection2)(a, b, c, d)));
    RC_ASSERT(areSameBits(ZKCenterOfCircleFromThreePoints(a, b, c),
                          exported(ZKCenterOfCircleFromThreePoints)(a, b, c)));
    RC_ASSERT(areSameBits(ZKUnionRect(rect, other), exported(ZKUnionRect)(rect, other)));
    RC_ASSERT(areSameBits(ZKCenterOnPoint(rect, c), exported(ZKCenterOnPoint)(rect, c)));
    RC_ASSERT(areSameBits(ZKExtendRectByPoint(rect, c), exported(ZKExtendRectByPoint)(rect, c)));
    RC_ASSERT(ZKIntersectsRect(true, rect, other) == exported(ZKIntersectsRect)(true, rect, other));
    RC_ASSERT(ZKAreSimilarRects(rect, other, t) == exported(ZKAreSimilarRects)(rect, other, t));
    std::array<NSPoint, 6> points = {a, b, c, d, a, c}, left = points, right = points,
                           exportedLeft = points, exportedRight = points;
    for (int degree = 0; degree < 6; ++degree) {
      RC_ASSERT(areSameBits(
          ZKBezier(points.data(), degree, t, left.data(), right.data()),
          exported(ZKBezier)(points.data(), degree, t, exportedLeft.data(), exportedRight.data())));
      RC_ASSERT(areSameBits(left, exportedLeft));
      RC_ASSERT(areSameBits(right, exportedRight));
    }
  });
}

TEST(NSGeometry, HasNamesThatOtherLanguagesFind) {
  for (const char* name :
       {"ZKNotFoundPoint", "ZKSlope", "ZKMovePointTo", "ZKUnionRect", "ZKBezier", "ZKFindRoots"}) {
    EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
  }
}

}  // namespace
