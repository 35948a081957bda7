#include "ZKFoundation/Categories/NSOrderedSet+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>
#include <ZKFoundation/Categories/ZKMappedCollection.h>

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSOrderedSet>& set,
                             NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) {
  NSCheckArgument("makeObjectsPerformBlock:", "set", set);
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  set->enumerateObjectsUsingBlock(aBlock);
}

NSRef<NSOrderedSet> transformedOrderedSetUsingTransformator(const NSRef<NSOrderedSet>& set,
                                                            ZKTransformator transformator) {
  NSCheckArgument("transformedOrderedSetUsingTransformator:", "set", set);
  return ZKMappedCollection<NSOrderedSet>(NSObjectVector(set->elements()), transformator);
}

}  // namespace ZKFoundationExtensions
