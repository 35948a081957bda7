#pragma once

#include <iosfwd>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

// Plain values; == is exact (so a NaN coordinate makes a value differ from itself).

/// A point of the plane, or a vector.
struct NSPoint {
  CGFloat x = 0;
  CGFloat y = 0;

  friend constexpr bool operator==(const NSPoint&, const NSPoint&) = default;
};

struct NSSize {
  CGFloat width = 0;
  CGFloat height = 0;

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

/// Print "{x, y}", "{width, height}" and "{{x, y}, {width, height}}"; every number is the shortest
/// text that reads back as the same double.
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSPoint point);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSSize size);
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSRect rect);
