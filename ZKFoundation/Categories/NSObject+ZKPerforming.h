#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSSelector.h>
#include <Foundation/NSThread.h>
#include <Foundation/NSWeakRef.h>
#include <Foundation/dispatch.h>
#include <ZKFoundation/ZKExport.h>

// Blocks with the receiver as their target, run later or elsewhere. A block is any callable that
// takes the receiver, as a reference to it (`[](Editor& editor) {…}`) or as an `NSRef`, or nothing;
// or an `NSBlock`. The receiver, and the block or its copy, are held until the block has run or
// been cancelled. A lambda that is not waited for moves into the request, which alone then holds
// what it captures, so that this is released where the block ran; a captured constant cannot be
// moved, and is copied. A nil block takes its turn and does nothing. A nil receiver, and a
// block that is not waited for and cannot be copied, raise `NSInvalidArgumentException`. An
// exception that leaves a block ends the program, except where it runs within the call on the
// thread that was asked for: there the caller gets it.
//
// A delayed block runs by performing the selector `ZK_invokeTargetBlock:` with the block as its
// argument; `NSObject` and `NSRunLoop` tell what that means.
//
// A weak reference as the receiver is not held: the request is dropped when it takes its turn and
// the receiver has died. It locks the receiver while the block runs.

namespace ZKFoundationExtensions {

/// Calls the block with the target; does nothing for a nil block.
ZK_EXPORT void ZK_invokeTargetBlock(const NSRef<NSObject>& target, const NSRef<NSBlock>& block);

/// Calls the block with the target within an autorelease pool; does nothing for a nil block.
ZK_EXPORT void ZK_invokeTargetBlockWithAutoreleasePool(const NSRef<NSObject>& target,
                                                       const NSRef<NSBlock>& block);

/// Gives the selector `ZK_invokeTargetBlock:`.
[[nodiscard]] ZK_EXPORT NSSelector ZKInvokeTargetBlockSelector() noexcept;

/// Runs the block on the calling thread's run loop, in the default mode, after at least the delay
/// (seconds, or a `std::chrono` duration) and never within the call. Gives the copy that will run,
/// by which alone it can be cancelled; an `NSBlock` is its own copy.
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay(const NSRef<Receiver>& receiver, F&& block, NSDelay delay);

/// Runs the block on the calling thread's run loop, in those modes, after at least the delay and
/// never within the call. Gives the copy that will run, by which alone it can be cancelled.
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay_inModes(const NSRef<Receiver>& receiver, F&& block,
                                               NSDelay delay, const NSRef<NSArray>& modes);

/// Cancels what has been scheduled with a delay on the calling thread for this target with this
/// very block. Nil as either does nothing.
ZK_EXPORT void cancelPreviousPerformRequestsWithTarget_block(const NSRef<NSObject>& target,
                                                             const NSRef<NSBlock>& block);

/// What became of an attempt to cancel a delayed block.
enum class ZKCancellation {
  /// It was waiting, and will not run.
  cancelled,
  /// It was not waiting any more, as it has run or is running.
  alreadyRan,
  /// Nothing waited for this target with this block, and the block has never run: it was cancelled
  /// before, dropped, or asked for on another thread.
  unknown,
};

/// Cancels like `cancelPreviousPerformRequestsWithTarget_block`, and tells what came of it. Nil as
/// either is unknown.
ZK_EXPORT ZKCancellation cancelDelayedBlock(const NSRef<NSObject>& target,
                                            const NSRef<NSBlock>& block);

/// Calls the block, which takes nothing, at once on the main thread; elsewhere hands it to the main
/// queue and returns. A nil block does nothing. The receiver plays no part and may be nil.
template <class Receiver, class F>
void performBlockOnMainThread(const NSRef<Receiver>& receiver, F&& block);

/// Runs the block on the main thread's run loop, in its common modes. With `wait` it returns when
/// the block has run, and on the main thread runs it at once.
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block, bool wait);

/// Runs the block on the main thread's run loop, in those modes. With `wait` it returns when the
/// block has run, and on the main thread runs it at once.
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                                  bool wait, const NSRef<NSArray>& modes);

/// Runs the block on that thread's run loop, which the thread must run, in its common modes. With
/// `wait` it returns when the block has run, and on that thread runs it at once. On a thread that
/// has ended the block never runs and nobody waits.
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                         const NSRef<NSThread>& thread, bool wait);

/// Runs the block on that thread's run loop in those modes, else as
/// `performBlock_onThread_waitUntilDone`.
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                               const NSRef<NSThread>& thread, bool wait,
                                               const NSRef<NSArray>& modes);

/// Runs the block on a new thread, in an autorelease pool. Raises `NSGenericException` without one.
template <class Receiver, class F>
void performBlockInBackground(const NSRef<Receiver>& receiver, F&& block);

/// Runs the block on the queue: with `wait` by `dispatch_sync`, and returns when it has run; else
/// by `dispatch_async`, within an autorelease pool. What they raise comes back: a wait that would
/// never end, such as one for a serial queue on itself, a system without threads.
///
/// A null queue raises `NSInvalidArgumentException` with the reason "aQueue is NULL (in
/// 'performBlock:onQueue:waitUntilDone:')".
template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait);

/// Runs the block in the default mode after at least the delay if the receiver then still lives.
/// Gives what will run, a new block, by which alone it can be cancelled, with a weak target again.
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay(const NSWeakRef<Receiver>& receiver, F&& block,
                                       NSDelay delay);
/// Runs the block in those modes after at least the delay if the receiver then still lives. Gives
/// what will run, a new block, by which alone it can be cancelled, with a weak target again.
template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay_inModes(const NSWeakRef<Receiver>& receiver, F&& block,
                                               NSDelay delay, const NSRef<NSArray>& modes);
/// Cancels what has been scheduled with a delay for a weak target, which the block alone tells.
template <class Receiver>
void cancelPreviousPerformRequestsWithTarget_block(const NSWeakRef<Receiver>& target,
                                                   const NSRef<NSBlock>& block);
/// Cancels likewise, and tells what came of it.
template <class Receiver>
ZKCancellation cancelDelayedBlock(const NSWeakRef<Receiver>& target, const NSRef<NSBlock>& block);

/// Runs the block on the main thread's run loop, in its common modes, if the receiver then still
/// lives. With `wait` it returns when its turn is over.
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                            bool wait);
/// Runs the block on the main thread's run loop, in those modes, if the receiver then still lives.
/// With `wait` it returns when its turn is over.
template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone_modes(const NSWeakRef<Receiver>& receiver, F&& block,
                                                  bool wait, const NSRef<NSArray>& modes);
/// Runs the block on that thread's run loop, in its common modes, if the receiver then still lives.
/// With `wait` it returns when its turn is over.
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                         const NSRef<NSThread>& thread, bool wait);
/// Runs the block on that thread's run loop, in those modes, if the receiver then still lives. With
/// `wait` it returns when its turn is over.
template <class Receiver, class F>
void performBlock_onThread_waitUntilDone_modes(const NSWeakRef<Receiver>& receiver, F&& block,
                                               const NSRef<NSThread>& thread, bool wait,
                                               const NSRef<NSArray>& modes);
/// Runs the block on the queue if the receiver still lives at its turn. With `wait` it returns when
/// its turn is over. A null queue raises `NSInvalidArgumentException`.
template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait);

}  // namespace ZKFoundationExtensions

#include <ZKFoundation/detail/BlockPerforming.h>  // the templates' definitions
