#pragma once

#include <Foundation/NSPointerArray.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Makes a pointer array that owns nothing, and does not notice when what it points to is deleted.
[[nodiscard]] ZK_EXPORT NSRef<NSPointerArray> zk_pointerArrayWithWeakObjects();

/// Gives the last pointer; null when the array is empty.
[[nodiscard]] ZK_EXPORT void* lastPointer(const NSRef<NSPointerArray>& array);

/// Removes the last occurrence of the pointer, which may be null; false when there is none.
ZK_EXPORT bool removePointerIdenticalTo(const NSRef<NSPointerArray>& array, const void* pointer);

/// Whether the pointer, which may be null, is an element.
[[nodiscard]] ZK_EXPORT bool containsPointer(const NSRef<NSPointerArray>& array,
                                             const void* pointer);

/// Appends the other array's pointers in their order, nulls too. It may be nil, or the same array.
ZK_EXPORT void addPointersFromPointerArray(const NSRef<NSPointerArray>& array,
                                           const NSRef<NSPointerArray>& other);

}  // namespace ZKFoundationExtensions
