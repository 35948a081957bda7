#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSBlock.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Calls the block with each element, in their order. A nil block raises
/// `NSInvalidArgumentException` with the reason "aBlock is nil (in 'makeObjectsPerformBlock:')".
ZK_EXPORT void makeObjectsPerformBlock(const NSRef<NSArray>& array,
                                       NSBlockRef<void(const NSRef<NSObject>&)> aBlock);

}  // namespace ZKFoundationExtensions
