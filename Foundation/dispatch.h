#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSManualClock.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/OnceClosure.h>

// Queues of blocks that the process's shared threads run, or the main thread. A block is any
// callable without arguments. An exception that leaves a block ends the program; nobody who waits
// gets it.

enum dispatch_queue_attr_t {
  /// One block at a time, in the order in which they came.
  DISPATCH_QUEUE_SERIAL,
  /// Begun in that order, many at a time.
  DISPATCH_QUEUE_CONCURRENT,
};

/// A queue; made by `dispatch_queue_create`. It lives at least until its last block has begun.
class NS_EXPORT dispatch_queue : public NSObject {
 public:
  /// Gives the label, for people.
  [[nodiscard]] const std::string& label() const noexcept { return _label; }
  /// "dispatch_queue com.example.queue"
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Runs the work at some time, as `dispatch_async` tells.
  virtual void submit(NSOnceClosure work) = 0;
  /// Runs the work after a while, as `dispatch_after` tells.
  void submitAfter(NSDelay delay, NSOnceClosure work, const NSRef<NSManualClock>& clock);
  /// Tells people what waits to begin, a text for each block, which is named by the function that
  /// wrote it. What a thread has taken over with the block that it runs is not among them, nor what
  /// `dispatch_after` holds back. From any thread; of the main queue on the main thread alone.
  [[nodiscard]] virtual NSRef<NSArray> pendingWork() const = 0;
  /// Returns when the work has run, as `dispatch_sync` tells.
  virtual void performAndWait(NSOnceClosure work) = 0;

 protected:
  explicit dispatch_queue(const char* label) : _label(label == nullptr ? "" : label) {}

 private:
  friend class NSWorkerPool;

  const std::string _label;
  // What waits for a thread, counted by the pool, which holds the queue meanwhile.
  std::size_t _pendingWorks = 0;
};

using dispatch_queue_t = NSRef<dispatch_queue>;

/// Makes a queue. The label, which may be null, is for people.
[[nodiscard]] NS_EXPORT dispatch_queue_t dispatch_queue_create(const char* label,
                                                               dispatch_queue_attr_t kind);

/// Gives the queue of the main thread: its run loop runs the blocks in its common modes, one after
/// the other. (If a block runs the run loop itself, the next ones run within it.) From any thread.
[[nodiscard]] NS_EXPORT const dispatch_queue_t& dispatch_get_main_queue();

/// Runs the block on a thread of the queue at some time and returns at once. A block that is moved
/// in belongs to the queue alone, so that what it captures dies where it ran. A nil queue or block
/// raises `NSInvalidArgumentException`, a system that gives the queues no thread at all
/// `NSGenericException`: then the block is not kept.
template <class F>
void dispatch_async(const dispatch_queue_t& queue, F&& block) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_async");
  queue->submit(NSOnceClosure(std::forward<F>(block)));
}

/// Submits the block like `dispatch_async`, when the delay has passed by that clock; nil is the
/// system's. Those of the same time come in the order of the calls. A manual clock that dies drops
/// what is not due yet.
template <class F>
void dispatch_after(NSDelay delay, const dispatch_queue_t& queue, F&& block,
                    const NSRef<NSManualClock>& clock = nullptr) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_after");
  queue->submitAfter(delay, NSOnceClosure(std::forward<F>(block)), clock);
}

/// Runs the block and returns when it has run: on a serial queue after all that came before it. It
/// runs on the calling thread, for the main queue on the main thread. A nil queue or block raises
/// `NSInvalidArgumentException`.
///
/// Some waits would never end: for a serial queue from one of its blocks, for the main queue from
/// the main thread, and for a queue whose block waits for the calling thread. They raise
/// `NSInternalInconsistencyException`, and the block does not run.
template <class F>
void dispatch_sync(const dispatch_queue_t& queue, F&& block) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_sync");
  queue->performAndWait(NSOnceClosure([&block] { block(); }));
}
