#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/dispatch.h>
#include <ZKFoundation/ZKExport.h>

// Blocks with the receiver as their target, run elsewhere. A block is any callable that takes the
// receiver, as a reference to it (`[](Editor& editor) {…}`) or as an `NSRef`, or nothing; or an
// `NSBlock`. A nil receiver raises `NSInvalidArgumentException`.

namespace ZKFoundationExtensions {

/// Calls the block with the target; does nothing for a nil block.
ZK_EXPORT void ZK_invokeTargetBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block);

/// The same within an autorelease pool.
ZK_EXPORT void ZK_invokeTargetBlockWithAutoreleasePool(const NSRef<NSObject>& target,
                                                       const NSRef<NSBlock>& block);

/// Runs the block on the queue: with `wait` by `dispatch_sync`, and returns when it has run; else
/// by `dispatch_async`, within an autorelease pool. The receiver is kept until then, and without
/// `wait` a copy of the block. A nil block does nothing in its turn. Waiting for a serial queue on
/// itself never ends.
///
/// A null queue raises `NSInvalidArgumentException` with the reason "aQueue is NULL (in
/// 'performBlock:onQueue:waitUntilDone:')".
template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait) {
  if (!receiver) NSRaiseNilDereference(typeid(Receiver));
  if (!queue) {
    NSException::raise(NSInvalidArgumentException,
                       "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')");
  }
  if (!wait) {
    dispatch_async(queue, [target = NSRef<NSObject>(receiver),
                           copy = NSMakeBlock<Receiver>(std::forward<F>(block))] {
      ZK_invokeTargetBlockWithAutoreleasePool(target, copy);
    });
  } else if constexpr (std::is_convertible_v<F, NSRef<NSBlock>>) {
    // The block may change the caller's own references.
    dispatch_sync(queue, [target = receiver, held = NSRef<NSBlock>(block)] {
      ZK_invokeTargetBlock(target, held);
    });
  } else {
    dispatch_sync(queue, [target = receiver, &block] {
      if (!NSIsNilCallable(block)) NSInvokeWithTarget<Receiver>(block, target);
    });
  }
}

}  // namespace ZKFoundationExtensions
