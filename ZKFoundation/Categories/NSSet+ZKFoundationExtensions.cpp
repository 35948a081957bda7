#include "Foundation/NSException.h"
#include "ZKFoundation/Categories/NSSet+ZKFoundationExtensions.h"

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSSet>& set,
                             NSBlockRef<void(const NSRef<NSObject>&)> aBlock) {
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  for (const auto& object : *set) aBlock(object);
}

}  // namespace ZKFoundationExtensions
