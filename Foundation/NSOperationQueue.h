#pragma once

#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/dispatch.h>

/// The main thread's operations, which its run loop performs one after the other in its common
/// modes, in one order with the main dispatch queue.
class NS_EXPORT NSOperationQueue : public NSObject {
 public:
  ~NSOperationQueue() override;

  /// Gives the queue of the main thread. From any thread.
  [[nodiscard]] static const NSRef<NSOperationQueue>& mainQueue();

  /// Runs the block in a later pass and returns at once. From any thread. A nil block raises
  /// `NSInvalidArgumentException`; what a block throws ends the program.
  template <class F>
  void addOperationWithBlock(F&& block) {
    if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "addOperationWithBlock:");
    dispatch_async(dispatch_get_main_queue(), std::forward<F>(block));
  }
};
