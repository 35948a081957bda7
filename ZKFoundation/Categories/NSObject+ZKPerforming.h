#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSException.h>
#include <Foundation/NSSelector.h>
#include <Foundation/NSThread.h>
#include <Foundation/dispatch.h>
#include <ZKFoundation/ZKExport.h>

// Blocks with the receiver as their target, run later or elsewhere. A block is any callable that
// takes the receiver, as a reference to it (`[](Editor& editor) {…}`) or as an `NSRef`, or nothing;
// or an `NSBlock`. The receiver, and the block or its copy, are held until the block has run or
// been cancelled. A lambda that is not waited for moves into the request, which alone then holds
// what it captures, so that this dies where the block ran; not where the lambda cannot let go of
// it, as of a captured constant. A nil block takes its turn and does nothing. A nil receiver raises
// `NSInvalidArgumentException`. An exception that leaves a block ends the program, except where it
// runs within the call on the thread that was asked for: there the caller gets it.
//
// In a run loop a block runs by performing the selector `ZK_invokeTargetBlock:` with the block as
// its argument, as `NSObject` and `NSRunLoop` tell.

namespace ZKFoundationExtensions {

/// Calls the block with the target; does nothing for a nil block.
ZK_EXPORT void ZK_invokeTargetBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block);

/// The same within an autorelease pool.
ZK_EXPORT void ZK_invokeTargetBlockWithAutoreleasePool(const NSRef<NSObject>& target,
                                                       const NSRef<NSBlock>& block);

/// The selector `ZK_invokeTargetBlock:`.
ZK_EXPORT NSSelector ZKInvokeTargetBlockSelector() noexcept;

/// The block for a call that waits: the caller's own, which is not copied.
template <class Receiver, class F>
NSRef<NSBlock> ZKBorrowBlock(F& block) {
  if constexpr (std::is_convertible_v<F&, NSRef<NSBlock>>) {
    return block;
  } else {
    if (NSIsNilCallable(block)) return nullptr;
    return NSMakeBlock<Receiver>(
        [&block](const NSRef<Receiver>& target) { NSInvokeWithTarget<Receiver>(block, target); });
  }
}

/// The block for a request: the caller's own for a call that waits, else a copy; one that cannot be
/// copied raises `NSInvalidArgumentException`.
template <class Receiver, class F>
NSRef<NSBlock> ZKBlockForRequest(F&& block, bool wait) {
  if (wait) return ZKBorrowBlock<Receiver>(block);
  if constexpr (std::is_constructible_v<std::decay_t<F>, F>) {
    return NSMakeBlock<Receiver>(std::forward<F>(block));
  } else {
    NSException::raise(NSInvalidArgumentException, "the block cannot be copied");
  }
}

/// Runs the block on the calling thread's run loop, in the default mode or in those modes, after at
/// least the delay (seconds, or a `std::chrono` duration) and never within the call. The result is
/// the copy that will run, by which alone it can be cancelled; an `NSBlock` is its own copy.
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay(const NSRef<Receiver>& receiver, F&& block, NSDelay delay) {
  NSCheckArgument("performBlock:afterDelay:", "receiver", receiver);
  auto copy = NSMakeBlock<Receiver>(std::forward<F>(block));
  receiver->performSelector_withObject_afterDelay(ZKInvokeTargetBlockSelector(), copy, delay);
  return copy;
}
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay_inModes(const NSRef<Receiver>& receiver, F&& block,
                                               NSDelay delay, const NSRef<NSArray>& modes) {
  NSCheckArgument("performBlock:afterDelay:inModes:", "receiver", receiver);
  auto copy = NSMakeBlock<Receiver>(std::forward<F>(block));
  receiver->performSelector_withObject_afterDelay_inModes(ZKInvokeTargetBlockSelector(), copy,
                                                          delay, modes);
  return copy;
}

/// Cancels what the two above have scheduled on the calling thread for this target with this very
/// block. Nil as either does nothing.
ZK_EXPORT void cancelPreviousPerformRequestsWithTarget_block(const NSRef<NSObject>& target,
                                                             const NSRef<NSBlock>& block);

/// On the main thread calls the block, which takes nothing, at once; elsewhere hands it to the main
/// queue and returns. A nil block does nothing. The receiver plays no part and may be nil.
template <class Receiver, class F>
void performBlockOnMainThread(const NSRef<Receiver>& receiver, F&& block) {
  if constexpr (std::is_convertible_v<F, NSRef<NSBlock>>) {
    NSRef<NSBlock> held = std::forward<F>(block);
    if (!held) return;
    performBlockOnMainThread(receiver, [held = std::move(held)] { held->invoke(nullptr); });
  } else if (NSIsNilCallable(block)) {
    return;
  } else if (NSThread::isMainThread()) {
    block();
  } else {
    dispatch_async(dispatch_get_main_queue(), std::forward<F>(block));
  }
}

/// Runs the block on the main thread's run loop, in its common modes or in those modes. With `wait`
/// it returns when the block has run, and on the main thread runs it at once.
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block, bool wait) {
  NSCheckArgument("performBlockOnMainThread:waitUntilDone:", "receiver", receiver);
  receiver->performSelectorOnMainThread_withObject_waitUntilDone(
      ZKInvokeTargetBlockSelector(), ZKBlockForRequest<Receiver>(std::forward<F>(block), wait),
      wait);
}
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                                  bool wait, const NSRef<NSArray>& modes) {
  NSCheckArgument("performBlockOnMainThread:waitUntilDone:modes:", "receiver", receiver);
  receiver->performSelectorOnMainThread_withObject_waitUntilDone_modes(
      ZKInvokeTargetBlockSelector(), ZKBlockForRequest<Receiver>(std::forward<F>(block), wait),
      wait, modes);
}

/// The same on that thread, which must run its run loop. On one that has ended the block never runs
/// and nobody waits.
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                         const NSRef<NSThread>& thread, bool wait) {
  NSCheckArgument("performBlock:onThread:waitUntilDone:", "receiver", receiver);
  receiver->performSelector_onThread_withObject_waitUntilDone(
      ZKInvokeTargetBlockSelector(), thread,
      ZKBlockForRequest<Receiver>(std::forward<F>(block), wait), wait);
}
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                               const NSRef<NSThread>& thread, bool wait,
                                               const NSRef<NSArray>& modes) {
  NSCheckArgument("performBlock:onThread:waitUntilDone:modes:", "receiver", receiver);
  receiver->performSelector_onThread_withObject_waitUntilDone_modes(
      ZKInvokeTargetBlockSelector(), thread,
      ZKBlockForRequest<Receiver>(std::forward<F>(block), wait), wait, modes);
}

/// Runs the block on a new thread, within an autorelease pool. Raises `NSGenericException` when the
/// system gives none.
template <class Receiver, class F>
void performBlockInBackground(const NSRef<Receiver>& receiver, F&& block) {
  NSCheckArgument("performBlockInBackground:", "receiver", receiver);
  receiver->performSelectorInBackground_withObject(
      NSMakeSelector<"ZK_invokeTargetBlockWithAutoreleasePool:",
                     &ZK_invokeTargetBlockWithAutoreleasePool>(),
      NSMakeBlock<Receiver>(std::forward<F>(block)));
}

/// Runs the block on the queue: with `wait` by `dispatch_sync`, and returns when it has run; else
/// by `dispatch_async`, within an autorelease pool. What they raise comes back: a wait that would
/// never end, such as one for a serial queue on itself, a system without threads.
///
/// A null queue raises `NSInvalidArgumentException` with the reason "aQueue is NULL (in
/// 'performBlock:onQueue:waitUntilDone:')".
template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait) {
  NSCheckArgument("performBlock:onQueue:waitUntilDone:", "receiver", receiver);
  if (!queue) {
    NSException::raise(NSInvalidArgumentException,
                       "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')");
  }
  auto request = ZKBlockForRequest<Receiver>(std::forward<F>(block), wait);
  if (wait) {
    // The block may change the caller's own reference to the receiver.
    dispatch_sync(queue, [target = receiver, &request] { ZK_invokeTargetBlock(target, request); });
  } else {
    dispatch_async(queue, [target = NSRef<NSObject>(receiver), copy = std::move(request)] {
      ZK_invokeTargetBlockWithAutoreleasePool(target, copy);
    });
  }
}

}  // namespace ZKFoundationExtensions
