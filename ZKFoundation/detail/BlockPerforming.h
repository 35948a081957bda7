#pragma once

#include <type_traits>
#include <utility>

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSException.h>
#include <Foundation/NSRunLoop.h>
#include <ZKFoundation/Categories/NSObject+ZKPerforming.h>

namespace ZKFoundationExtensions {

/// Gives the block for a call that waits: the caller's own, which is not copied.
template <class Receiver, class F>
[[nodiscard]] NSRef<NSBlock> ZKBorrowBlock(F& block) {
  if constexpr (std::is_convertible_v<F&, NSRef<NSBlock>>) {
    return block;
  } else {
    if (NSIsNilCallable(block)) return nullptr;
    return NSMakeBlock<Receiver>(
        [&block](const NSRef<Receiver>& target) { NSInvokeWithTarget<Receiver>(block, target); });
  }
}

/// Calls the block with the target; does nothing for a nil block.
template <class Target, class F>
void ZKCallBlock(F& block, const NSRef<Target>& target) {
  if constexpr (std::is_convertible_v<F&, NSRef<NSBlock>>) {
    ZK_invokeTargetBlock(target, block);
  } else {
    if (!NSIsNilCallable(block)) NSInvokeWithTarget(block, target);
  }
}
/// Does so if the target still lives, and tells whether it does.
template <class Target, class F>
bool ZKCallBlock(F& block, const NSWeakRef<Target>& target) {
  const auto held = target.lock();
  if (held) ZKCallBlock(block, held);
  return static_cast<bool>(held);
}

/// What a request that is not waited for calls.
template <class Reference, class Callable>
struct ZKRequest {
  Reference target;
  Callable block;

  auto operator()() { return ZKCallBlock(block, target); }
};

/// Makes a request, which alone owns the receiver, unless that is a weak reference, and the block,
/// or its copy; one that cannot be copied raises `NSInvalidArgumentException`.
template <class Reference, class F>
[[nodiscard]] auto ZKMakeRequest(const Reference& receiver, F&& block) {
  if constexpr (std::is_convertible_v<F, NSRef<NSBlock>>) {
    return ZKRequest<Reference, NSRef<NSBlock>>{receiver, std::forward<F>(block)};
  } else if constexpr (std::is_constructible_v<std::decay_t<F>, F>) {
    return ZKRequest<Reference, std::decay_t<F>>{receiver, std::forward<F>(block)};
  } else {
    NSException::raise(NSInvalidArgumentException, "the block cannot be copied");
    return [] { return false; };
  }
}

/// Stands for every weak receiver as the target of a delayed request: it is always there.
class ZK_EXPORT ZKWeakReceiver final : public NSObject {
 public:
  [[nodiscard]] static const NSRef<ZKWeakReceiver>& shared();
};

/// The block of a delayed request for a weak receiver: it has run only if that then lived.
template <class Request>
class ZKWeakBlock final : public NSBlock {
 public:
  explicit ZKWeakBlock(Request&& request) : _request(std::move(request)) {
    // Instantiated for the line that makes the block; of a virtual function g++ names none.
    static_cast<void>(&Request::operator());
  }
  void invoke(const NSRef<NSObject>& /*target*/) override {
    if (_request()) _hasRun = true;
    if (!_hasRun) forget();
  }

 private:
  Request _request;
  bool _hasRun = false;
};

template <class Receiver, class F>
[[nodiscard]] NSRef<NSBlock> ZKMakeWeakBlock(const NSWeakRef<Receiver>& receiver, F&& block) {
  auto request = ZKMakeRequest(receiver, std::forward<F>(block));
  return NSMake<ZKWeakBlock<decltype(request)>>(std::move(request));
}

/// Has `perform` perform a block for a weak receiver: the caller's own for a call that waits.
template <class Receiver, class F, class Perform>
void ZKPerformWeakly(const NSWeakRef<Receiver>& receiver, F&& block, bool wait, Perform perform) {
  if (wait) {
    perform([&] { ZKCallBlock(block, receiver); });
  } else {
    perform(ZKMakeRequest(receiver, std::forward<F>(block)));
  }
}

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

template <class Receiver, class F>
void performBlockOnMainThread(const NSRef<Receiver>& receiver, F&& block) {
  if constexpr (std::is_convertible_v<F, NSRef<NSBlock>>) {
    NSRef<NSBlock> held = std::forward<F>(block);
    if (!held) return;
    performBlockOnMainThread(receiver, [held = std::move(held)] { held->perform(nullptr); });
  } else if (NSIsNilCallable(block)) {
    return;
  } else if (NSThread::isMainThread()) {
    block();
  } else {
    dispatch_async(dispatch_get_main_queue(), std::forward<F>(block));
  }
}

template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block, bool wait) {
  NSCheckArgument("performBlockOnMainThread:waitUntilDone:", "receiver", receiver);
  performBlock_onThread_waitUntilDone(receiver, std::forward<F>(block), NSThread::mainThread(),
                                      wait);
}

template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                                  bool wait, const NSRef<NSArray>& modes) {
  NSCheckArgument("performBlockOnMainThread:waitUntilDone:modes:", "receiver", receiver);
  performBlock_onThread_waitUntilDone_modes(receiver, std::forward<F>(block),
                                            NSThread::mainThread(), wait, modes);
}

template <class Receiver, class F>
void performBlock_onThread_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                         const NSRef<NSThread>& thread, bool wait) {
  NSCheckArgument("performBlock:onThread:waitUntilDone:", "receiver", receiver);
  if (wait || !thread) {
    receiver->performSelector_onThread_withObject_waitUntilDone(
        ZKInvokeTargetBlockSelector(), thread, ZKBorrowBlock<Receiver>(block), wait);
  } else {
    thread->runLoop()->performBlock(ZKMakeRequest(receiver, std::forward<F>(block)));
  }
}

template <class Receiver, class F>
void performBlock_onThread_waitUntilDone_modes(const NSRef<Receiver>& receiver, F&& block,
                                               const NSRef<NSThread>& thread, bool wait,
                                               const NSRef<NSArray>& modes) {
  NSCheckArgument("performBlock:onThread:waitUntilDone:modes:", "receiver", receiver);
  if (wait || !thread) {
    receiver->performSelector_onThread_withObject_waitUntilDone_modes(
        ZKInvokeTargetBlockSelector(), thread, ZKBorrowBlock<Receiver>(block), wait, modes);
  } else {
    thread->runLoop()->performInModes_block(modes, ZKMakeRequest(receiver, std::forward<F>(block)));
  }
}

template <class Receiver, class F>
void performBlockInBackground(const NSRef<Receiver>& receiver, F&& block) {
  NSCheckArgument("performBlockInBackground:", "receiver", receiver);
  receiver->performSelectorInBackground_withObject(
      NSMakeSelector<"ZK_invokeTargetBlockWithAutoreleasePool:",
                     &ZK_invokeTargetBlockWithAutoreleasePool>(),
      NSMakeBlock<Receiver>(std::forward<F>(block)));
}

template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait) {
  NSCheckArgument("performBlock:onQueue:waitUntilDone:", "receiver", receiver);
  if (!queue) {
    NSException::raise(NSInvalidArgumentException,
                       "aQueue is NULL (in 'performBlock:onQueue:waitUntilDone:')");
  }
  if (wait) {
    // The block may change the caller's own reference to the receiver.
    dispatch_sync(queue, [target = receiver, request = ZKBorrowBlock<Receiver>(block)] {
      ZK_invokeTargetBlock(target, request);
    });
  } else {
    dispatch_async(queue, [request = ZKMakeRequest(receiver, std::forward<F>(block))]() mutable {
      const NSAutoreleasePool pool;
      request();
    });
  }
}

template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay(const NSWeakRef<Receiver>& receiver, F&& block,
                                       NSDelay delay) {
  return performBlock_afterDelay(ZKWeakReceiver::shared(),
                                 ZKMakeWeakBlock(receiver, std::forward<F>(block)), delay);
}

template <class Receiver, class F>
NSRef<NSBlock> performBlock_afterDelay_inModes(const NSWeakRef<Receiver>& receiver, F&& block,
                                               NSDelay delay, const NSRef<NSArray>& modes) {
  return performBlock_afterDelay_inModes(
      ZKWeakReceiver::shared(), ZKMakeWeakBlock(receiver, std::forward<F>(block)), delay, modes);
}

template <class Receiver>
void cancelPreviousPerformRequestsWithTarget_block(const NSWeakRef<Receiver>& /*target*/,
                                                   const NSRef<NSBlock>& block) {
  cancelPreviousPerformRequestsWithTarget_block(ZKWeakReceiver::shared(), block);
}

template <class Receiver>
ZKCancellation cancelDelayedBlock(const NSWeakRef<Receiver>& /*target*/,
                                  const NSRef<NSBlock>& block) {
  return cancelDelayedBlock(ZKWeakReceiver::shared(), block);
}

template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                            bool wait) {
  performBlock_onThread_waitUntilDone(receiver, std::forward<F>(block), NSThread::mainThread(),
                                      wait);
}

template <class Receiver, class F>
void performBlockOnMainThread_waitUntilDone_modes(const NSWeakRef<Receiver>& receiver, F&& block,
                                                  bool wait, const NSRef<NSArray>& modes) {
  performBlock_onThread_waitUntilDone_modes(receiver, std::forward<F>(block),
                                            NSThread::mainThread(), wait, modes);
}

template <class Receiver, class F>
void performBlock_onThread_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                         const NSRef<NSThread>& thread, bool wait) {
  ZKPerformWeakly(receiver, std::forward<F>(block), wait, [&](auto&& request) {
    performBlock_onThread_waitUntilDone(ZKWeakReceiver::shared(),
                                        std::forward<decltype(request)>(request), thread, wait);
  });
}

template <class Receiver, class F>
void performBlock_onThread_waitUntilDone_modes(const NSWeakRef<Receiver>& receiver, F&& block,
                                               const NSRef<NSThread>& thread, bool wait,
                                               const NSRef<NSArray>& modes) {
  ZKPerformWeakly(receiver, std::forward<F>(block), wait, [&](auto&& request) {
    performBlock_onThread_waitUntilDone_modes(
        ZKWeakReceiver::shared(), std::forward<decltype(request)>(request), thread, wait, modes);
  });
}

template <class Receiver, class F>
void performBlock_onQueue_waitUntilDone(const NSWeakRef<Receiver>& receiver, F&& block,
                                        const dispatch_queue_t& queue, bool wait) {
  ZKPerformWeakly(receiver, std::forward<F>(block), wait, [&](auto&& request) {
    performBlock_onQueue_waitUntilDone(ZKWeakReceiver::shared(),
                                       std::forward<decltype(request)>(request), queue, wait);
  });
}

}  // namespace ZKFoundationExtensions
