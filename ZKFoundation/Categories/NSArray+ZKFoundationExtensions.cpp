#include "Foundation/NSException.h"
#include "ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h"

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSArray>& array,
                             NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) {
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  // Of its own: the block may change the array, or drop the last reference to it.
  const auto snapshot = array->copy();
  bool stop = false;
  for (NSUInteger index = 0; index < snapshot->count() && !stop; ++index) {
    aBlock(snapshot->objects()[index], index, stop);
  }
}

}  // namespace ZKFoundationExtensions
