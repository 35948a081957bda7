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

/// Spans [x, x + width) by [y, y + height).
struct NSRect {
  NSPoint origin;
  NSSize size;

  friend constexpr bool operator==(const NSRect&, const NSRect&) = default;
};

constexpr NSPoint NSMakePoint(CGFloat x, CGFloat y) { return {x, y}; }
constexpr NSSize NSMakeSize(CGFloat width, CGFloat height) { return {width, height}; }
constexpr NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}

constexpr CGFloat NSMinX(NSRect rect) { return rect.origin.x; }
constexpr CGFloat NSMinY(NSRect rect) { return rect.origin.y; }
constexpr CGFloat NSMidX(NSRect rect) { return rect.origin.x + rect.size.width * 0.5; }
constexpr CGFloat NSMidY(NSRect rect) { return rect.origin.y + rect.size.height * 0.5; }
constexpr CGFloat NSMaxX(NSRect rect) { return rect.origin.x + rect.size.width; }
constexpr CGFloat NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }

/// Exactly the same origin and size.
constexpr bool NSEqualRects(NSRect a, NSRect b) { return a == b; }
/// The rectangle moved by dx and dy.
constexpr NSRect NSOffsetRect(NSRect rect, CGFloat dx, CGFloat dy) {
  return {{rect.origin.x + dx, rect.origin.y + dy}, rect.size};
}
/// Whether the rectangle contains the point; its min edges belong to it, its max edges do not.
constexpr bool NSPointInRect(NSPoint point, NSRect rect) {
  return point.x >= NSMinX(rect) && point.x < NSMaxX(rect) && point.y >= NSMinY(rect) &&
         point.y < NSMaxY(rect);
}
/// Whether the rectangles have an area in common; none has, whose width or height is not positive.
constexpr bool NSIntersectsRect(NSRect a, NSRect b) {
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
