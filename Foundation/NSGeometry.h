#pragma once

#include <iosfwd>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

// Plain values without constructors, so that other languages can pass them; == is exact (a NaN
// coordinate makes a value differ from itself).

/// A point of the plane, or a vector.
struct NSPoint {
  CGFloat x;
  CGFloat y;

  friend constexpr bool operator==(const NSPoint&, const NSPoint&) = default;
};

struct NSSize {
  CGFloat width;
  CGFloat height;

  friend constexpr bool operator==(const NSSize&, const NSSize&) = default;
};

/// A rectangle, which spans [x, x + width) by [y, y + height).
struct NSRect {
  NSPoint origin;
  NSSize size;

  friend constexpr bool operator==(const NSRect&, const NSRect&) = default;
};

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

/// Whether origin and size are exactly the same.
[[nodiscard]] constexpr bool NSEqualRects(NSRect a, NSRect b) { return a == b; }
/// Moves the rectangle by dx and dy.
[[nodiscard]] constexpr NSRect NSOffsetRect(NSRect rect, CGFloat dx, CGFloat dy) {
  return {{rect.origin.x + dx, rect.origin.y + dy}, rect.size};
}
/// Whether the point lies in the rectangle: on its min edges it does, on its max edges it does not.
[[nodiscard]] constexpr bool NSPointInRect(NSPoint point, NSRect rect) {
  return point.x >= NSMinX(rect) && point.x < NSMaxX(rect) && point.y >= NSMinY(rect) &&
         point.y < NSMaxY(rect);
}
/// Whether the rectangles have an area in common; one whose width or height is not positive has
/// none.
[[nodiscard]] constexpr bool NSIntersectsRect(NSRect a, NSRect b) {
  const bool haveAreas =
      a.size.width > 0 && a.size.height > 0 && b.size.width > 0 && b.size.height > 0;
  return haveAreas && NSMinX(a) < NSMaxX(b) && NSMinX(b) < NSMaxX(a) && NSMinY(a) < NSMaxY(b) &&
         NSMinY(b) < NSMaxY(a);
}

/// Print "{x, y}", "{width, height}" and "{{x, y}, {width, height}}"; every number is the shortest
/// text that reads back as the same double.
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSPoint point);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSSize size);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSRect rect);
