#pragma once

#include <Foundation/NSIndexSet.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Makes a set of the indexes in the range. A range that would pass the largest index ends there.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableIndexSet> indexesInRange(const NSRef<NSIndexSet>& indexes,
                                                                NSRange range);

/// Writes the indexes in ascending order, in decimal, with the separator between them: "2, 5, 7".
/// An empty set gives the empty string; a nil separator is written as "(null)".
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringValueWithSeparator(const NSRef<NSIndexSet>& indexes,
                                                                 const NSRef<NSString>& separator);

}  // namespace ZKFoundationExtensions
