#include "Foundation/dispatch.h"

#include <mutex>

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/BlockedThread.h>
#include <Foundation/Threads/ChunkedQueue.h>
#include <Foundation/Threads/ManualTime.h>
#include <Foundation/Threads/PendingWork.h>
#include <Foundation/Threads/RunLoopCore.h>
#include <Foundation/Threads/SystemThreads.h>
#include <Foundation/Threads/WorkerPool.h>

namespace {

class ConcurrentQueue final : public dispatch_queue {
 public:
  explicit ConcurrentQueue(const char* label) : dispatch_queue(label) {}

  void submit(NSOnceClosure work) override {
    _pool.submit(std::move(work), *this, "dispatch_async");
  }
  void performAndWait(NSOnceClosure work) override { work.perform(); }
  NSRef<NSArray> pendingWork() const override { return _pool.pendingWork(*this); }

 private:
  NSWorkerPool& _pool = NSWorkerPool::shared();
};

class MainQueue final : public dispatch_queue {
 public:
  MainQueue() : dispatch_queue("main") {}

  void submit(NSOnceClosure work) override { mainLoop().post(std::move(work), nullptr); }
  void performAndWait(NSOnceClosure work) override {
    if (mainLoop().postAndWait(std::move(work), nullptr)) return;
    NSRaiseEndlessWait(description()->utf8(), "dispatch_sync");
  }
  NSRef<NSArray> pendingWork() const override { return NSRunLoop::mainRunLoop()->pendingWork(); }

 private:
  static NSRunLoopCore& mainLoop() {
    // It lives as long as the program.
    static NSRunLoopCore& core = NSAccess::core(*NSRunLoop::mainRunLoop());
    return core;
  }
};

// Whoever runs the blocks, a worker or a thread in `dispatch_sync`, owns the queue and `_batch`.
class SerialQueue final : public dispatch_queue {
 public:
  explicit SerialQueue(const char* label) : dispatch_queue(label) {}

  void submit(NSOnceClosure work) override;
  void performAndWait(NSOnceClosure work) override;
  NSRef<NSArray> pendingWork() const override;

 private:
  void schedule(const char* operation);
  void own();
  void drain() noexcept;
  void passOn() noexcept;
  bool takeBatch();
  void takeBack();

  NSWorkerPool& _pool = NSWorkerPool::shared();
  mutable std::mutex _mutex;
  bool _isOwned = false;
  // The thread of the owner, as soon as it is known.
  NSServingThread _server;
  NSChunkedQueue<NSOnceClosure> _works;
  NSChunkedQueue<NSOnceClosure> _batch;
  NSBlockedThread* _nextOwner = nullptr;
};

void SerialQueue::schedule(const char* operation) {
  _pool.submit(NSOnceClosure([queue = share(this)] { queue.get()->drain(); }), *this, operation);
}

void SerialQueue::submit(NSOnceClosure work) {
  constexpr auto operation = "dispatch_async";
  _pool.requireWorker(operation);
  {
    const std::lock_guard lock(_mutex);
    _works.emplace_back(std::move(work));
    if (std::exchange(_isOwned, true)) return;
  }
  try {
    schedule(operation);
  } catch (...) {
    takeBack();
    throw;
  }
}

// When the pool has no memory or thread for the first work. What has come after it waits for the
// next call.
void SerialQueue::takeBack() {
  std::unique_lock lock(_mutex);
  const NSOnceClosure first = std::move(_works.front());
  _works.pop_front();
  _isOwned = false;
  lock.unlock();
}

void SerialQueue::performAndWait(NSOnceClosure work) {
  const auto alive = share(this);
  own();
  _server.set(NSThreadNumber());
  {
    const NSServedQueue served(*this);
    work.perform();
  }
  passOn();
}

NSRef<NSArray> SerialQueue::pendingWork() const {
  NSPendingWork pending;
  const std::lock_guard lock(_mutex);
  _works.forEach([&](const NSOnceClosure& work) { pending.add(work); });
  return pending.lines();
}

// Returns when the calling thread is the owner.
void SerialQueue::own() {
  constexpr auto operation = "dispatch_sync";
  std::unique_lock lock(_mutex);
  if (!std::exchange(_isOwned, true)) return;
  NSBlockedThread waiter(_server);
  if (waiter.isEndless()) NSRaiseEndlessWait(description()->utf8(), operation);
  _pool.requireWorker(operation);
  _works.emplace_back([this, &waiter] { _nextOwner = &waiter; });
  lock.unlock();
  waiter.wait();
}

// By the owner. Without any work, nobody owns the queue any more.
bool SerialQueue::takeBatch() {
  if (!_batch.empty()) return true;
  const std::lock_guard lock(_mutex);
  _batch.append(_works);
  _isOwned = !_batch.empty();
  if (!_isOwned) _server.clear();
  return _isOwned;
}

// By the owner, when it has done its own.
void SerialQueue::passOn() noexcept {
  _server.clear();
  if (takeBatch()) schedule("dispatch_async");
}

// By a worker as the owner. Whoever waits becomes the owner when its turn comes.
void SerialQueue::drain() noexcept {
  const NSServedQueue served(*this);
  _server.set(NSThreadNumber());
  do {
    if (!takeBatch()) return;
    while (!_batch.empty()) {
      const NSAutoreleasePool pool;
      _batch.front().perform();
      _batch.pop_front();
      if (auto* const owner = std::exchange(_nextOwner, nullptr)) {
        _server.clear();
        return owner->wake();
      }
    }
    // A worker does not stay while others wait for one.
  } while (!_pool.hasPendingWork());
  passOn();
}

}  // namespace

NSRef<NSString> dispatch_queue::description() const {
  return NSMake<NSString>("dispatch_queue " + _label);
}

void dispatch_queue::submitAfter(NSDelay delay, NSOnceClosure work,
                                 const NSRef<NSManualClock>& clock) {
  constexpr auto operation = "dispatch_after";
  // Nobody could be told later that there is no thread.
  if (this != dispatch_get_main_queue().get()) NSWorkerPool::shared().requireWorker(operation);
  NSPerformAfter(delay, NSOnceClosure([queue = share(this), work = std::move(work)]() mutable {
                   queue->submit(std::move(work));
                 }),
                 clock, operation);
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t kind) {
  if (kind == DISPATCH_QUEUE_CONCURRENT) return NSMake<ConcurrentQueue>(label);
  return NSMake<SerialQueue>(label);
}

const dispatch_queue_t& dispatch_get_main_queue() {
  static const NSNeverDestroyed<dispatch_queue_t> queue(NSMake<MainQueue>());
  return *queue;
}
