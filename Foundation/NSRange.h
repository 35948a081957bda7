#pragma once

#include <algorithm>
#include <iosfwd>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

/// The `length` units or elements from `location` on.
struct NSRange {
  NSUInteger location = 0;
  NSUInteger length = 0;

  friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

/// What a search gives that finds nothing.
inline constexpr NSRange NSNotFoundRange{NSNotFound, 0};

constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }

/// First index behind the range; wraps in 64 bits.
constexpr NSUInteger NSMaxRange(NSRange range) { return range.location + range.length; }

/// Half-open: the first index is in the range, `NSMaxRange` is not.
constexpr bool NSLocationInRange(NSUInteger index, NSRange range) {
  return index >= range.location && index - range.location < range.length;
}

constexpr bool NSEqualRanges(NSRange a, NSRange b) { return a == b; }

/// Whether the range lies within [0, count), also for lengths that would overflow.
constexpr bool NSRangeFits(NSRange range, NSUInteger count) {
  return range.location <= count && range.length <= count - range.location;
}

/// `NSMaxRange`, or the largest index where that would overflow.
constexpr NSUInteger NSClampedMaxRange(NSRange range) {
  return range.location + std::min(range.length, NSUIntegerMax - range.location);
}

/// What both ranges hold; {0, 0} when they share nothing.
constexpr NSRange NSIntersectionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::max(a.location, b.location);
  const NSUInteger end = std::min(NSClampedMaxRange(a), NSClampedMaxRange(b));
  return start < end ? NSRange{start, end - start} : NSRange{};
}

/// The shortest range that holds both and whatever lies between them.
constexpr NSRange NSUnionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::min(a.location, b.location);
  return {start, std::max(NSClampedMaxRange(a), NSClampedMaxRange(b)) - start};
}

/// Prints "{location, length}".
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSRange range);
