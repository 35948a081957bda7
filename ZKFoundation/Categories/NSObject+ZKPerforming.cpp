#include "ZKFoundation/Categories/NSObject+ZKPerforming.h"

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSNeverDestroyed.h>

namespace ZKFoundationExtensions {

void ZK_invokeTargetBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block) {
  if (block) block->perform(target);
}

void ZK_invokeTargetBlockWithAutoreleasePool(const NSRef<NSObject>& target,
                                             const NSRef<NSBlock>& block) {
  const NSAutoreleasePool pool;
  ZK_invokeTargetBlock(target, block);
}

NSSelector ZKInvokeTargetBlockSelector() noexcept {
  return NSMakeSelector<"ZK_invokeTargetBlock:", &ZK_invokeTargetBlock>();
}

const NSRef<ZKWeakReceiver>& ZKWeakReceiver::shared() {
  static const NSNeverDestroyed<NSRef<ZKWeakReceiver>> result(NSMake<ZKWeakReceiver>());
  return *result;
}

void cancelPreviousPerformRequestsWithTarget_block(const NSRef<NSObject>& target,
                                                   const NSRef<NSBlock>& block) {
  if (!target || !block) return;
  NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
      target, ZKInvokeTargetBlockSelector(), block);
}

ZKCancellation cancelDelayedBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block) {
  if (!target || !block) return ZKCancellation::unknown;
  if (NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
          target, ZKInvokeTargetBlockSelector(), block) > 0) {
    return ZKCancellation::cancelled;
  }
  return block->hasBegun() ? ZKCancellation::alreadyRan : ZKCancellation::unknown;
}

}  // namespace ZKFoundationExtensions
