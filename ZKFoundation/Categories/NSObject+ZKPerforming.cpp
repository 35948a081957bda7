#include "ZKFoundation/Categories/NSObject+ZKPerforming.h"

#include <Foundation/NSAutoreleasePool.h>

namespace ZKFoundationExtensions {

void ZK_invokeTargetBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block) {
  if (block) block->invoke(target);
}

void ZK_invokeTargetBlockWithAutoreleasePool(const NSRef<NSObject>& target,
                                             const NSRef<NSBlock>& block) {
  const NSAutoreleasePool pool;
  ZK_invokeTargetBlock(target, block);
}

}  // namespace ZKFoundationExtensions
