#pragma once

#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSOptions.h>
#include <Foundation/NSTypes.h>

/// Options of comparisons and searches; a set of bits.
enum NSStringCompareOptions : NSUInteger {
  /// Regards letters that Unicode's default case folding makes alike as the same.
  NSCaseInsensitiveSearch = 1,
  /// Compares unit by unit; without it canonically equivalent texts are the same.
  NSLiteralSearch = 2,
  /// Searches from the end.
  NSBackwardsSearch = 4,
  /// Finds only what stands at the start of the range, or at its end with `NSBackwardsSearch`.
  NSAnchoredSearch = 8,
};
template <>
inline constexpr bool NSIsBitSet<NSStringCompareOptions> = true;

/// Orders two texts by their units. Without `NSLiteralSearch` by those of their canonical
/// decompositions (of their foldings with `NSCaseInsensitiveSearch`). Other options mean nothing.
[[nodiscard]] NS_EXPORT NSComparisonResult NSCompareUnits(
    std::u16string_view a, std::u16string_view b, NSOptions<NSStringCompareOptions> options);
