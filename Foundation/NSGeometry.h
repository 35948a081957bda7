#pragma once

#include <algorithm>
#include <cmath>
#include <iosfwd>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/PlainStructs.h>

// Plain values, of the same layout as in C, so that other languages can pass them; == is exact (a
// NaN coordinate makes a value differ from itself). `NSPoint p;` is not initialised, `NSPoint p{};`
// is zero. Points and sizes are made of any struct of two floating-point members, rectangles of one
// of four or of two such pairs: another library's values pass where one of these is taken.

/// A point of the plane, or a vector.
struct NSPoint {
  CGFloat x;
  CGFloat y;

  NSPoint() = default;
  constexpr NSPoint(CGFloat anX, CGFloat aY) : x(anX), y(aY) {}
  template <NSPairStruct Pair>
  constexpr NSPoint(const Pair& pair) {
    const auto& [first, second] = pair;
    x = first;
    y = second;
  }

  constexpr NSPoint& operator+=(NSPoint other) { return *this = *this + other; }
  constexpr NSPoint& operator-=(NSPoint other) { return *this = *this - other; }
  constexpr NSPoint& operator*=(CGFloat factor) { return *this = *this * factor; }
  constexpr NSPoint& operator/=(CGFloat divisor) { return *this = *this / divisor; }

  friend constexpr bool operator==(const NSPoint&, const NSPoint&) = default;
  friend constexpr NSPoint operator+(NSPoint a, NSPoint b) { return {a.x + b.x, a.y + b.y}; }
  friend constexpr NSPoint operator-(NSPoint a, NSPoint b) { return {a.x - b.x, a.y - b.y}; }
  friend constexpr NSPoint operator-(NSPoint v) { return {-v.x, -v.y}; }
  friend constexpr NSPoint operator*(NSPoint v, CGFloat factor) {
    return {v.x * factor, v.y * factor};
  }
  friend constexpr NSPoint operator*(CGFloat factor, NSPoint v) { return v * factor; }
  friend constexpr NSPoint operator/(NSPoint v, CGFloat divisor) {
    return {v.x / divisor, v.y / divisor};
  }
};

struct NSSize {
  CGFloat width;
  CGFloat height;

  NSSize() = default;
  constexpr NSSize(CGFloat aWidth, CGFloat aHeight) : width(aWidth), height(aHeight) {}
  template <NSPairStruct Pair>
  constexpr NSSize(const Pair& pair) {
    const auto& [first, second] = pair;
    width = first;
    height = second;
  }

  constexpr NSSize& operator+=(NSSize other) { return *this = *this + other; }
  constexpr NSSize& operator-=(NSSize other) { return *this = *this - other; }
  constexpr NSSize& operator*=(CGFloat factor) { return *this = *this * factor; }
  constexpr NSSize& operator/=(CGFloat divisor) { return *this = *this / divisor; }

  friend constexpr bool operator==(const NSSize&, const NSSize&) = default;
  friend constexpr NSSize operator+(NSSize a, NSSize b) {
    return {a.width + b.width, a.height + b.height};
  }
  friend constexpr NSSize operator-(NSSize a, NSSize b) {
    return {a.width - b.width, a.height - b.height};
  }
  friend constexpr NSSize operator*(NSSize size, CGFloat factor) {
    return {size.width * factor, size.height * factor};
  }
  friend constexpr NSSize operator*(CGFloat factor, NSSize size) { return size * factor; }
  friend constexpr NSSize operator/(NSSize size, CGFloat divisor) {
    return {size.width / divisor, size.height / divisor};
  }
};

/// A rectangle, which spans [x, x + width) by [y, y + height).
struct NSRect {
  NSPoint origin;
  NSSize size;

  NSRect() = default;
  constexpr NSRect(NSPoint anOrigin, NSSize aSize) : origin(anOrigin), size(aSize) {}
  template <NSFourStruct Four>
  constexpr NSRect(const Four& four) {
    const auto& [x, y, width, height] = four;
    origin = {x, y};
    size = {width, height};
  }
  template <NSPairsStruct Pairs>
  constexpr NSRect(const Pairs& pairs) {
    const auto& [first, second] = pairs;
    origin = first;
    size = second;
  }

  /// Moves the rectangle by a vector.
  constexpr NSRect& operator+=(NSPoint vector) { return *this = *this + vector; }
  constexpr NSRect& operator-=(NSPoint vector) { return *this = *this - vector; }

  friend constexpr bool operator==(const NSRect&, const NSRect&) = default;
  friend constexpr NSRect operator+(NSRect rect, NSPoint vector) {
    return {rect.origin + vector, rect.size};
  }
  friend constexpr NSRect operator-(NSRect rect, NSPoint vector) {
    return {rect.origin - vector, rect.size};
  }
};

inline constexpr NSPoint NSZeroPoint = {0, 0};
inline constexpr NSSize NSZeroSize = {0, 0};
inline constexpr NSRect NSZeroRect = {NSZeroPoint, NSZeroSize};

[[nodiscard]] constexpr NSPoint NSMakePoint(CGFloat x, CGFloat y) { return {x, y}; }
[[nodiscard]] constexpr NSSize NSMakeSize(CGFloat width, CGFloat height) { return {width, height}; }
[[nodiscard]] constexpr NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}

[[nodiscard]] constexpr CGFloat NSMinX(NSRect rect) { return rect.origin.x; }
[[nodiscard]] constexpr CGFloat NSMinY(NSRect rect) { return rect.origin.y; }
[[nodiscard]] constexpr CGFloat NSMidX(NSRect rect) {
  return rect.origin.x + rect.size.width * 0.5;
}
[[nodiscard]] constexpr CGFloat NSMidY(NSRect rect) {
  return rect.origin.y + rect.size.height * 0.5;
}
[[nodiscard]] constexpr CGFloat NSMaxX(NSRect rect) { return rect.origin.x + rect.size.width; }
[[nodiscard]] constexpr CGFloat NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }

/// Whether both coordinates, or width and height, are exactly the same.
[[nodiscard]] constexpr bool NSEqualPoints(NSPoint a, NSPoint b) { return a == b; }
[[nodiscard]] constexpr bool NSEqualSizes(NSSize a, NSSize b) { return a == b; }
/// Whether origin and size are exactly the same.
[[nodiscard]] constexpr bool NSEqualRects(NSRect a, NSRect b) { return a == b; }
/// Whether width or height is not positive.
[[nodiscard]] constexpr bool NSIsEmptyRect(NSRect rect) {
  return !(rect.size.width > 0 && rect.size.height > 0);
}
/// Moves the rectangle by dx and dy.
[[nodiscard]] constexpr NSRect NSOffsetRect(NSRect rect, CGFloat dx, CGFloat dy) {
  return {{rect.origin.x + dx, rect.origin.y + dy}, rect.size};
}
/// Whether the point lies in the rectangle: on its min edges it does, on its max edges it does not.
[[nodiscard]] constexpr bool NSPointInRect(NSPoint point, NSRect rect) {
  return point.x >= NSMinX(rect) && point.x < NSMaxX(rect) && point.y >= NSMinY(rect) &&
         point.y < NSMaxY(rect);
}
/// Moves the left and right edges inwards by dx, the others by dy; outwards if they are negative.
/// The size is negative where there is not so much.
[[nodiscard]] constexpr NSRect NSInsetRect(NSRect rect, CGFloat dx, CGFloat dy) {
  return {rect.origin + NSPoint(dx, dy), rect.size - NSSize(2 * dx, 2 * dy)};
}
/// Whether the rectangles have an area in common; an empty one has none.
[[nodiscard]] constexpr bool NSIntersectsRect(NSRect a, NSRect b) {
  return !NSIsEmptyRect(a) && !NSIsEmptyRect(b) && NSMinX(a) < NSMaxX(b) && NSMinX(b) < NSMaxX(a) &&
         NSMinY(a) < NSMaxY(b) && NSMinY(b) < NSMaxY(a);
}
/// Whether all of b, which is not empty, lies in a; b may share the edges.
[[nodiscard]] constexpr bool NSContainsRect(NSRect a, NSRect b) {
  return !NSIsEmptyRect(b) && NSMinX(a) <= NSMinX(b) && NSMaxX(b) <= NSMaxX(a) &&
         NSMinY(a) <= NSMinY(b) && NSMaxY(b) <= NSMaxY(a);
}
/// Gives the rectangle with these edges.
[[nodiscard]] constexpr NSRect NSRectWithEdges(CGFloat minX, CGFloat minY, CGFloat maxX,
                                               CGFloat maxY) {
  return {{minX, minY}, {maxX - minX, maxY - minY}};
}
/// Gives the area in common, `NSZeroRect` when there is none.
[[nodiscard]] constexpr NSRect NSIntersectionRect(NSRect a, NSRect b) {
  if (!NSIntersectsRect(a, b)) return NSZeroRect;
  return NSRectWithEdges(std::max(NSMinX(a), NSMinX(b)), std::max(NSMinY(a), NSMinY(b)),
                         std::min(NSMaxX(a), NSMaxX(b)), std::min(NSMaxY(a), NSMaxY(b)));
}
/// Gives the smallest rectangle around both. An empty one does not count; two of them give
/// `NSZeroRect`.
[[nodiscard]] constexpr NSRect NSUnionRect(NSRect a, NSRect b) {
  if (NSIsEmptyRect(b)) return NSIsEmptyRect(a) ? NSZeroRect : a;
  if (NSIsEmptyRect(a)) return b;
  return NSRectWithEdges(std::min(NSMinX(a), NSMinX(b)), std::min(NSMinY(a), NSMinY(b)),
                         std::max(NSMaxX(a), NSMaxX(b)), std::max(NSMaxY(a), NSMaxY(b)));
}
/// Moves the edges outwards to whole numbers; an empty one gives `NSZeroRect`.
[[nodiscard]] inline NSRect NSIntegralRect(NSRect rect) {
  if (NSIsEmptyRect(rect)) return NSZeroRect;
  return NSRectWithEdges(std::floor(NSMinX(rect)), std::floor(NSMinY(rect)),
                         std::ceil(NSMaxX(rect)), std::ceil(NSMaxY(rect)));
}

/// Print "{x, y}", "{width, height}" and "{{x, y}, {width, height}}"; every number is the shortest
/// text that reads back as the same double.
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSPoint point);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSSize size);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSRect rect);
