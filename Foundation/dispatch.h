#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSWork.h>

// Queues of blocks that the process's shared threads run. A block is any callable without
// arguments. An exception that leaves a block ends the program; nobody who waits gets it.

enum dispatch_queue_attr_t {
  /// One block at a time, in the order in which they came.
  DISPATCH_QUEUE_SERIAL,
  /// Begun in that order, many at a time.
  DISPATCH_QUEUE_CONCURRENT,
};

/// A queue; made by `dispatch_queue_create`. It lives until its last block has run.
class NS_EXPORT dispatch_queue : public NSObject {
 public:
  dispatch_queue(const char* label, dispatch_queue_attr_t kind);

  const std::string& label() const noexcept { return _label; }
  /// "dispatch_queue com.example.queue"
  NSRef<NSString> description() const override;

  /// Runs it some time. `dispatch_async` and `dispatch_sync` lead here.
  void submit(NSWork work);
  /// Runs it on the calling thread, when its turn has come.
  void performAndWait(NSWork work);

 private:
  struct Waiter;

  void schedule();
  void drain() noexcept;
  void passOn();

  const std::string _label;
  const dispatch_queue_attr_t _kind;

  // Of a serial queue. Who runs its blocks, a worker or somebody who waits, owns it meanwhile, with
  // the batch that is at hand.
  std::mutex _mutex;
  bool _isOwned = false;
  std::deque<NSWork> _works;
  std::deque<NSWork> _batch;
  Waiter* _nextOwner = nullptr;
};

using dispatch_queue_t = NSRef<dispatch_queue>;

/// A new queue; the label, which may be null, is for people.
NS_EXPORT dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t kind);

/// Runs the block on a thread of the pool some time and returns at once. A nil queue or block
/// raises `NSInvalidArgumentException`.
template <class F>
void dispatch_async(const dispatch_queue_t& queue, F&& block) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_async");
  queue->submit(NSWork(std::forward<F>(block)));
}

/// Runs the block on the calling thread when all that came before it on a serial queue has run, and
/// returns when it has. From a block of the same serial queue that never comes. A nil queue or
/// block raises `NSInvalidArgumentException`.
template <class F>
void dispatch_sync(const dispatch_queue_t& queue, F&& block) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_sync");
  queue->performAndWait(NSWork([&block] { block(); }));
}
