#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSSet.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Calls the block with each element, in no particular order, and a flag that ends the walk once it
/// is set; a block may take the element alone. A nil block raises `NSInvalidArgumentException` with
/// the reason "aBlock is nil (in 'makeObjectsPerformBlock:')". A set that a block has changed
/// raises `NSGenericException` after that block, unless it has set the flag.
ZK_EXPORT void makeObjectsPerformBlock(const NSRef<NSSet>& set,
                                       NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock);

}  // namespace ZKFoundationExtensions
