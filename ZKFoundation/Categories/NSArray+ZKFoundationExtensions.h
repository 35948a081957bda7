#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSBlock.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Calls the block with each element, in their order, its index and a flag that ends the walk once
/// it is set; a block may take the element alone. The walk is over the elements that there are at
/// its beginning. A nil block raises `NSInvalidArgumentException` with the reason "aBlock is nil
/// (in 'makeObjectsPerformBlock:')".
ZK_EXPORT void makeObjectsPerformBlock(
    const NSRef<NSArray>& array,
    NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock);

}  // namespace ZKFoundationExtensions
