#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSOrderedSet.h>
#include <ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Calls the block with each member, in their order, its index and a flag that ends the walk once
/// it is set; a block may take the member alone. A nil block raises `NSInvalidArgumentException`
/// with the reason "aBlock is nil (in 'makeObjectsPerformBlock:')", a set that has changed when the
/// next member is due `NSGenericException`.
ZK_EXPORT void makeObjectsPerformBlock(
    const NSRef<NSOrderedSet>& set,
    NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock);

/// Gives what the transformator makes of each member, in their order, `NSNull` where it answers
/// nil; of equal results the first stays. Nil without a transformator. Changes that the
/// transformator makes to the set do not count.
[[nodiscard]] ZK_EXPORT NSRef<NSOrderedSet> transformedOrderedSetUsingTransformator(
    const NSRef<NSOrderedSet>& set, ZKTransformator transformator);

}  // namespace ZKFoundationExtensions
