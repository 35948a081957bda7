#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSIndexSet.h>
#include <ZKFoundation/ZKExport.h>

/// Makes another object, or nil, of an object: any callable, for the call that it is passed to.
using ZKTransformator = NSBlockRef<NSRef<NSObject>(const NSRef<NSObject>& object)>;

namespace ZKFoundationExtensions {

/// Calls the block with each element, in their order, its index and a flag that ends the walk once
/// it is set; a block may take the element alone. A nil block raises `NSInvalidArgumentException`
/// with the reason "aBlock is nil (in 'makeObjectsPerformBlock:')". An array that a block has
/// changed raises `NSGenericException` after that block, unless it has set the flag.
ZK_EXPORT void makeObjectsPerformBlock(
    const NSRef<NSArray>& array,
    NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock);

/// Gives what the transformator makes of each element, in their order, `NSNull` where it answers
/// nil. Nil without a transformator. What that changes in the array does not count.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> transformedArrayUsingTransformator(
    const NSRef<NSArray>& array, ZKTransformator transformator);

/// Gives the elements of the class or of one that derives from it, in their order.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> arrayWithObjectsKindOfClass(const NSRef<NSArray>& array,
                                                                   NSClass aClass);
/// Gives the elements of exactly this class, in their order.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> arrayWithObjectsMemberOfClass(const NSRef<NSArray>& array,
                                                                     NSClass aClass);
/// Whether there is an element of the class or of one that derives from it.
[[nodiscard]] ZK_EXPORT bool containObjectsKindOfClass(const NSRef<NSArray>& array, NSClass aClass);
/// Removes the elements that are not of exactly this class, and with each of them every element
/// that is equal to it, whatever class that one has. Needs the objects' `hash`.
ZK_EXPORT void removeAllObjectsWhichNotMemberOfClass(const NSRef<NSMutableArray>& array,
                                                     NSClass aClass);

/// Makes an array of the elements to whose value for the key the matching value is equal, in their
/// order. Nil matches nothing, not even a nil value; a nil array has no elements.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray> arrayFromArray_forKey_matching(
    const NSRef<NSArray>& array, const NSRef<NSString>& key, const NSRef<NSObject>& matching);
/// Makes an array of the elements to whose value for the keys, joined by ".", the matching value is
/// equal, in their order. Nil matches nothing, not even a nil value; a nil array has no elements.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray> arrayFromArray_forKeyPath_matching(
    const NSRef<NSArray>& array, const NSRef<NSString>& keyPath, const NSRef<NSObject>& matching);

/// Whether this very object is an element.
[[nodiscard]] ZK_EXPORT bool containsObjectIdenticalTo(const NSRef<NSArray>& array,
                                                       const NSRef<NSObject>& object);

/// Makes an array of the elements at the first 20 indexes of the set that are below the count;
/// ignores further indexes, and a nil set.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray> arrayFromIndexes(const NSRef<NSArray>& array,
                                                               const NSRef<NSIndexSet>& indexes);

/// Makes an array of the elements in the opposite order.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> reversedArray(const NSRef<NSArray>& array);

/// Inserts the other array's elements, in their order, the first of them at the index. Nil and an
/// empty array change nothing; otherwise an index below 0 or above the count raises
/// `NSRangeException`. The other array may be the same, and is inserted as it was.
ZK_EXPORT void insertObjectsFromArray_atIndex(const NSRef<NSMutableArray>& array,
                                              const NSRef<NSArray>& other, NSInteger index);

}  // namespace ZKFoundationExtensions
