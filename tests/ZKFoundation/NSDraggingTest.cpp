#include "tests/Support.h"

#include <array>
#include <numbers>

#include <ZKFoundation/ZKFoundation.h>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

int anyInt(int least, int most) { return *rc::gen::inRange(least, most + 1); }
NSPoint anyPoint() { return NSMakePoint(anyInt(-9, 9), anyInt(-9, 9)); }
NSRect anyRect() { return {anyPoint(), NSMakeSize(anyInt(-6, 6), anyInt(-6, 6))}; }

// The unit squares of a rectangle.
using Cells = std::set<std::pair<int, int>>;
Cells cellsOf(NSRect rect) {
  Cells result;
  for (int x = -20; x < 20; ++x) {
    for (int y = -20; y < 20; ++y) {
      if (NSPointInRect({x + 0.5, y + 0.5}, rect)) result.emplace(x, y);
    }
  }
  return result;
}

TEST(NSRects, AreSetsOfCells) {
  expectProperty("union, intersection, containing and insetting agree with the cells", [] {
    const NSRect a = anyRect(), b = anyRect();
    const Cells cells = cellsOf(a), others = cellsOf(b);
    Cells common;
    std::ranges::set_intersection(cells, others, std::inserter(common, common.end()));
    RC_ASSERT(cellsOf(NSIntersectionRect(a, b)) == common);
    RC_ASSERT(NSIntersectsRect(a, b) == !common.empty());
    RC_ASSERT(NSIsEmptyRect(a) == cells.empty());
    RC_ASSERT(NSContainsRect(a, b) == (!others.empty() && common == others));
    Cells both = cells;
    both.insert(others.begin(), others.end());
    std::vector<NSPoint> corners;
    for (const auto& [x, y] : both) {
      corners.push_back(NSMakePoint(x, y));
      corners.push_back(NSMakePoint(x + 1, y + 1));
    }
    RC_ASSERT(NSUnionRect(a, b) == ZKRectAroundPoints(corners));
    const NSRect line = {a.origin, {a.size.width, 0}};
    RC_ASSERT(ZKRectAroundRects(std::array{line, b}) ==
              ZKRectAroundPoints(std::array{a.origin, NSPoint(NSMaxX(a), NSMinY(a)), b.origin,
                                            NSPoint(NSMaxX(b), NSMaxY(b))}));
    RC_ASSERT(NSInsetRect(NSInsetRect(a, -1, -2), 1, 2) == a);
    const NSPoint shift = NSMakePoint(0.25, 0.5);
    RC_ASSERT(NSIntegralRect(NSUnionRect(a, a) + shift) ==
              (cells.empty()
                   ? NSZeroRect
                   : NSMakeRect(NSMinX(a), NSMinY(a), a.size.width + 1, a.size.height + 1)));
  });
}

TEST(NSGeometry, CalculatesByOperators) {
  NSPoint p = {1, 2};
  p += {3, 4};
  p *= 2;
  p -= {2, 2};
  p /= 2;
  EXPECT_EQ(p, NSMakePoint(3, 5));
  EXPECT_EQ(2 * -p + p - p / 1, NSMakePoint(-6, -10));
  EXPECT_EQ((NSSize(1, 2) * 4 - NSSize(2, 2)) / 2 + 0.5 * NSSize(2, 2), NSMakeSize(2, 4));
  EXPECT_EQ(NSMakeRect(1, 2, 3, 4) + p - NSPoint(1, 1), NSMakeRect(3, 6, 3, 4));
}

struct FloatPoint {
  float x, y;
};
struct Box {
  double left, top, width, height;
};
struct Frame {
  FloatPoint at;
  std::array<double, 2> size;
};
struct Voxel {
  double x, y, z;
};
struct Named {
  double x, y;
  const char* name;
};

TEST(NSGeometry, TakesOtherStructs) {
  EXPECT_EQ(ZKBisectLine(FloatPoint{1, 2}, NSPoint(2, 4)), NSMakePoint(1.5, 3));
  EXPECT_EQ(ZKGetPointOfRect(ZKHandleMaxXMaxY, Box{1, 2, 3, 4}), NSMakePoint(4, 6));
  static_assert(std::is_convertible_v<Box, NSRect> && !std::is_convertible_v<Box, NSPoint>);
  static_assert(std::is_convertible_v<FloatPoint, NSSize>);
  static_assert(!std::is_convertible_v<NSPoint, NSSize> && !std::is_convertible_v<Voxel, NSPoint>);
  static_assert(!std::is_convertible_v<Named, NSPoint> && !std::is_convertible_v<Frame, NSPoint>);
  static_assert(std::is_trivial_v<NSRect> && std::is_standard_layout_v<NSRect>);
}

TEST(ZKDragHandle, FollowsThePointer) {
  expectProperty("the handle is at the pointer and the opposite one stays", [] {
    NSRect rect = anyRect();
    const NSRect start = rect;
    const NSUInteger first = *rc::gen::inRange<NSUInteger>(0, 8);
    NSUInteger handle = first;
    NSPoint p{};
    // Step by step, or at once, is the same.
    for (int step = anyInt(1, 5); step > 0; --step) {
      p = anyPoint();
      const auto dragged = ZKDragHandle(rect, handle, p);
      rect = dragged.rect;
      handle = dragged.handle;
    }
    RC_ASSERT(rect == ZKDragHandle(start, first, p).rect);
    const NSPoint dragged = ZKGetPointOfRect(handle, rect);
    const NSPoint fixed = ZKOppositePoint(first, start);
    const NSPoint opposite = ZKOppositePoint(handle, rect);
    const bool movesX = first % 2 == 1 || ZKIsCorner(first);
    const bool movesY = first % 2 == 0 || ZKIsCorner(first);
    RC_ASSERT(!movesX || (dragged.x == p.x && opposite.x == fixed.x));
    RC_ASSERT(!movesY || (dragged.y == p.y && opposite.y == fixed.y));
    RC_ASSERT(movesX || NSMidX(rect) == NSMidX(start));
    RC_ASSERT(movesY || NSMidY(rect) == NSMidY(start));
    RC_ASSERT(ZKNormalizedRect(rect) == rect);
  });
}

TEST(ZKDragHandle, KeepsWhatItsOptionsSay) {
  expectProperty("the proportions, the centre or both", [] {
    const NSRect start = anyRect();
    const NSUInteger handle = *rc::gen::inRange<NSUInteger>(0, 9);
    const NSPoint p = anyPoint();
    const bool isFixed = *rc::gen::arbitrary<bool>();
    const auto free = ZKDragHandle(start, handle, p, {false, isFixed});
    const auto kept = ZKDragHandle(start, handle, p, {true, isFixed});
    RC_ASSERT(kept.handle == free.handle);
    const auto middleOf = [](NSRect rect) { return ZKGetPointOfRect(ZKHandleCenter, rect); };
    if (handle == ZKHandleCenter) {
      RC_ASSERT(middleOf(kept.rect) == p && kept.rect == free.rect);
      return;
    }
    if (isFixed) {
      RC_ASSERT(ZKAreSimilarPoints(middleOf(free.rect), middleOf(start), 1e-9));
      RC_ASSERT(ZKAreSimilarPoints(middleOf(kept.rect), middleOf(start), 1e-9));
    } else if (ZKIsCorner(handle)) {
      RC_ASSERT(ZKAreSimilarPoints(ZKOppositePoint(kept.handle, kept.rect),
                                   ZKOppositePoint(handle, start), 1e-9));
    }
    if (start.size.width == 0 || start.size.height == 0) return;
    RC_ASSERT(std::abs(kept.rect.size.width * std::abs(start.size.height) -
                       kept.rect.size.height * std::abs(start.size.width)) < 1e-9);
    if (ZKIsCorner(handle)) {
      // The smallest such rectangle around the free one.
      RC_ASSERT(kept.rect.size.width >= free.rect.size.width - 1e-9);
      RC_ASSERT(kept.rect.size.height >= free.rect.size.height - 1e-9);
      RC_ASSERT(kept.rect.size.width == free.rect.size.width ||
                kept.rect.size.height == free.rect.size.height ||
                ZKAreSimilarSizes(kept.rect.size, free.rect.size, 1e-9));
    }
  });
}

TEST(ZKDragHandle, HasAnAnswerForDegenerateRectangles) {
  const NSRect rect = {{200, 100}, {100, 50}};
  EXPECT_EQ(ZKDragHandle(rect, 6, {300, 150}), (ZKDraggedRect{rect, 6}));
  EXPECT_EQ(ZKDragHandle(rect, 6, {200, 100}), (ZKDraggedRect{{{200, 100}, {0, 0}}, 6}));
  EXPECT_EQ(ZKDragHandle(rect, 6, {190, 90}), (ZKDraggedRect{{{190, 90}, {10, 10}}, 4}));
  EXPECT_EQ(ZKDragHandle(rect, 9, {0, 0}), (ZKDraggedRect{rect, 9}));
  EXPECT_EQ(ZKDragHandle({{0.1, 0}, {0.7, 10}}, 2, {0, 20}),
            (ZKDraggedRect{{{0.1, 0}, {0.7, 20}}, 2}));
  // A point becomes a square, a line stays one.
  EXPECT_EQ(ZKDragHandle({}, 6, {-3, 5}, {.keepsProportions = true}),
            (ZKDraggedRect{{{-5, 0}, {5, 5}}, 7}));
  EXPECT_EQ(ZKDragHandle({{0, 0}, {4, 0}}, 6, {8, 5}, {.keepsProportions = true}),
            (ZKDraggedRect{{{0, 0}, {8, 0}}, 6}));
  EXPECT_EQ(ZKDragHandle({{0, 0}, {0, 4}}, 3, {2, 9}, {.keepsProportions = true}),
            (ZKDraggedRect{{{0, 0}, {2, 4}}, 3}));
  EXPECT_EQ(ZKDragHandle({{0, 0}, {1e-310, 0}}, 6, {8, 5}, {.keepsProportions = true}),
            (ZKDraggedRect{{{0, 0}, {8, 0}}, 6}));
}

TEST(ZKMapRect, GoesWithTheRectangleAroundIt) {
  expectProperty("the parts go where the whole goes, and back", [] {
    const auto whole = [] { return NSRect(anyPoint(), NSMakeSize(anyInt(1, 9), anyInt(1, 9))); };
    const NSRect rect = ZKNormalizedRect(anyRect()), from = whole();
    NSRect to = whole();
    RC_ASSERT(ZKMapRect(from, from, to) == to);
    if (*rc::gen::arbitrary<bool>()) to = {{NSMaxX(to), to.origin.y}, {-to.size.width, 5}};
    RC_ASSERT(ZKMapRect(from, from, to) == ZKNormalizedRect(to));
    RC_ASSERT(ZKAreSimilarRects(ZKMapRect(ZKMapRect(rect, from, to), to, from), rect, 1e-9));
  });
  EXPECT_EQ(ZKMapRect({{1, 1}, {1, 1}}, {{0, 0}, {4, 4}}, {{10, 0}, {-4, 8}}),
            NSMakeRect(8, 2, 1, 2));
  EXPECT_EQ(ZKMapRect({{1, 1}, {0, 2}}, {{1, 0}, {0, 4}}, {{1, 0}, {6, 2}}),
            NSMakeRect(1, 0.5, 6, 1));
}

TEST(NSGeometry, SnapsToAnglesGridsAndGuides) {
  using std::numbers::pi;
  for (int k = 0; k < 24; ++k) {
    const double angle = k * pi / 12;
    for (const double off : {-0.1, 0.0, 0.1}) {
      const NSPoint v = 10 * NSPoint(std::cos(angle + off), std::sin(angle + off));
      const auto [point, distance, x, y] = ZKSnapVectorToAngle(v, pi / 12);
      EXPECT_TRUE(!x && !y);
      EXPECT_TRUE(ZKAreSimilarPoints(point, 10 * NSPoint(std::cos(angle), std::sin(angle)), 1e-12));
      EXPECT_NEAR(distance, 20 * std::sin(std::abs(off) / 2), 1e-12);
      EXPECT_TRUE(k % 6 != 0 || point.x == 0 || point.y == 0) << k;
    }
  }
  for (const double angle : {0.0, -1.0, nan, HUGE_VAL, 1e-310}) {
    EXPECT_EQ(ZKSnapVectorToAngle({3, 4}, angle), (ZKSnappedPoint{{3, 4}, 0}));
  }
  EXPECT_EQ(ZKSnapPointToGrid({13, -4}, {5, 4}, {1, 1}),
            (ZKSnappedPoint{{11, -3}, std::hypot(2, 1)}));
  EXPECT_EQ(ZKSnapPointToGrid({2.5, 7}, {5, 0}), (ZKSnappedPoint{{5, 7}, 2.5}));
  for (const auto& [x, spacing] :
       Rows<double, double>{{0x1p52 + 1, 1}, {1, 1e-310}, {1e300, 1e-10}, {3, HUGE_VAL}}) {
    EXPECT_EQ(ZKSnapPointToGrid({x, 0}, {spacing, 0}), (ZKSnappedPoint{{x, 0}, 0})) << x;
  }
  EXPECT_EQ(ZKSnapPointToGrid({0.49999999999999994, 0}, {1, 0}).point.x, 0);
  const std::array vertical = {10.0, 0.1, 30.0};
  const std::array horizontal = {50.0};
  EXPECT_EQ(ZKSnapPointToGuides({7, 46}, vertical, horizontal, 4),
            (ZKSnappedPoint{{10, 50}, 5, 10, 50}));
  EXPECT_EQ(ZKSnapPointToGuides({5.05, 45.9}, vertical, horizontal, 4),
            (ZKSnappedPoint{{5.05, 45.9}, 0}));
  EXPECT_EQ(ZKSnapRectToGuides({{17, 31}, {12, 40}}, vertical, horizontal, 2),
            (ZKSnappedPoint{{18, 30}, std::hypot(1, 1), 30, 50}));
  EXPECT_EQ(ZKSnapRectToGuides({{17, 35}, {0, 4}}, vertical, horizontal, 2),
            (ZKSnappedPoint{{17, 35}, 0}));
}

}  // namespace
