#include "Foundation/NSException.h"
#include "ZKFoundation/Categories/NSSet+ZKFoundationExtensions.h"

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSSet>& set,
                             NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock) {
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  // Of its own: the block may change the set, or drop the last reference to it.
  const auto snapshot = set->copy();
  bool stop = false;
  for (const auto& object : *snapshot) {
    aBlock(object, stop);
    if (stop) return;
  }
}

}  // namespace ZKFoundationExtensions
