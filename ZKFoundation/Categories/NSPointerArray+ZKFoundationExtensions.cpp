#include "ZKFoundation/Categories/NSPointerArray+ZKFoundationExtensions.h"

#include <algorithm>
#include <vector>

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

NSRef<NSPointerArray> zk_pointerArrayWithWeakObjects() {
  return NSPointerArray::pointerArrayWithOptions(NSPointerFunctionsOpaqueMemory);
}

void* lastPointer(const NSRef<NSPointerArray>& array) {
  NSCheckArgument("lastPointer", "array", array);
  return array->count() == 0 ? nullptr : array->pointers().back();
}

bool removePointerIdenticalTo(const NSRef<NSPointerArray>& array, const void* pointer) {
  NSCheckArgument("removePointerIdenticalTo:", "array", array);
  const auto pointers = array->pointers();
  const auto found = std::find(pointers.rbegin(), pointers.rend(), pointer);
  if (found == pointers.rend()) return false;
  array->removePointerAtIndex(static_cast<NSUInteger>(pointers.rend() - found - 1));
  return true;
}

bool containsPointer(const NSRef<NSPointerArray>& array, const void* pointer) {
  NSCheckArgument("containsPointer:", "array", array);
  const auto pointers = array->pointers();
  return std::ranges::find(pointers, pointer) != pointers.end();
}

void addPointersFromPointerArray(const NSRef<NSPointerArray>& array,
                                 const NSRef<NSPointerArray>& other) {
  NSCheckArgument("addPointersFromPointerArray:", "array", array);
  if (!other) return;
  const std::vector<void*> added(other->pointers().begin(), other->pointers().end());
  for (void* const pointer : added) array->addPointer(pointer);
}

}  // namespace ZKFoundationExtensions
