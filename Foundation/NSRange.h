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

/// The range that a search gives when it finds nothing.
inline constexpr NSRange NSNotFoundRange{NSNotFound, 0};

[[nodiscard]] constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
  return {location, length};
}

/// Gives the first index after the range; wraps in 64 bits.
[[nodiscard]] constexpr NSUInteger NSMaxRange(NSRange range) {
  return range.location + range.length;
}

/// Whether the index is in the range: the first one is, `NSMaxRange` is not.
[[nodiscard]] constexpr bool NSLocationInRange(NSUInteger index, NSRange range) {
  return index >= range.location && index - range.location < range.length;
}

[[nodiscard]] constexpr bool NSEqualRanges(NSRange a, NSRange b) { return a == b; }

/// Whether the range lies within [0, count), also for lengths that would overflow.
[[nodiscard]] constexpr bool NSRangeFits(NSRange range, NSUInteger count) {
  return range.location <= count && range.length <= count - range.location;
}

/// Gives `NSMaxRange`, or the largest index where that would overflow.
[[nodiscard]] constexpr NSUInteger NSClampedMaxRange(NSRange range) {
  return range.location + std::min(range.length, NSUIntegerMax - range.location);
}

/// Gives what both ranges hold; {0, 0} when they share nothing.
[[nodiscard]] constexpr NSRange NSIntersectionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::max(a.location, b.location);
  const NSUInteger end = std::min(NSClampedMaxRange(a), NSClampedMaxRange(b));
  return start < end ? NSRange{start, end - start} : NSRange{};
}

/// Gives the shortest range that holds both and whatever lies between them.
[[nodiscard]] constexpr NSRange NSUnionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::min(a.location, b.location);
  return {start, std::max(NSClampedMaxRange(a), NSClampedMaxRange(b)) - start};
}

/// Prints "{location, length}".
NS_EXPORT std::ostream& operator<<(std::ostream& out, NSRange range);
