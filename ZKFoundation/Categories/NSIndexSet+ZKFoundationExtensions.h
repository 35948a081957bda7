#pragma once

#include <Foundation/NSIndexSet.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// A new set of the indexes that lie in the range. A range that would pass the largest index ends
/// there.
ZK_EXPORT NSRef<NSMutableIndexSet> indexesInRange(const NSRef<NSIndexSet>& indexes, NSRange range);

/// The indexes in ascending order, in decimal, with the separator between them: "2, 5, 7". An empty
/// set gives the empty string; a nil separator is written as "(null)".
ZK_EXPORT NSRef<NSString> stringValueWithSeparator(const NSRef<NSIndexSet>& indexes,
                                                   const NSRef<NSString>& separator);

}  // namespace ZKFoundationExtensions
