#include "ZKFoundation/Categories/NSSet+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSSet>& set,
                             NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock) {
  NSCheckArgument("makeObjectsPerformBlock:", "set", set);
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  set->enumerateObjectsUsingBlock(aBlock);
}

}  // namespace ZKFoundationExtensions
