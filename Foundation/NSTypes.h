#pragma once

#include <cstdint>
#include <limits>

/// Unsigned 64-bit count, length or index.
using NSUInteger = std::uint64_t;
/// Signed 64-bit integer.
using NSInteger = std::int64_t;
/// One UTF-16 code unit; half of a surrogate pair is a unit of its own.
using unichar = char16_t;
/// A coordinate: geometry is computed in doubles.
using CGFloat = double;
/// Seconds.
using NSTimeInterval = double;

inline constexpr NSInteger NSIntegerMax = std::numeric_limits<NSInteger>::max();
inline constexpr NSInteger NSIntegerMin = std::numeric_limits<NSInteger>::min();
inline constexpr NSUInteger NSUIntegerMax = std::numeric_limits<NSUInteger>::max();

/// The index or location that stands for "not found": the largest signed 64-bit value.
inline constexpr NSUInteger NSNotFound = static_cast<NSUInteger>(NSIntegerMax);

/// The answer of a comparison: the left side comes before the right one, equals or follows it.
enum NSComparisonResult : NSInteger {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
};

/// Opaque memory zone. It has no meaning here and is handed through as it is.
struct NSZone;
