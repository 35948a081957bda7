#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSSet.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Calls the block with each element, in no particular order. A nil block raises
/// `NSInvalidArgumentException` with the reason "aBlock is nil (in 'makeObjectsPerformBlock:')".
ZK_EXPORT void makeObjectsPerformBlock(const NSRef<NSSet>& set,
                                       NSBlockRef<void(const NSRef<NSObject>&)> aBlock);

}  // namespace ZKFoundationExtensions
