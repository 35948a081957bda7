#include "Foundation/NSException.h"
#include "ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h"

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSArray>& array,
                             NSBlockRef<void(const NSRef<NSObject>&)> aBlock) {
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  for (const auto& object : *array) aBlock(object);
}

}  // namespace ZKFoundationExtensions
