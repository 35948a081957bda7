#include "Foundation/dispatch.h"

#include "Foundation/NSAutoreleasePool.h"
#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSString.h"
#include "Foundation/NSWaiter.h"
#include "Foundation/NSWorkerPool.h"

#include <deque>
#include <mutex>

namespace {

class ConcurrentQueue final : public dispatch_queue {
 public:
  explicit ConcurrentQueue(const char* label) : dispatch_queue(label) {}

  void submit(NSWork work) override { NSWorkerPool::shared().submit(std::move(work)); }
  void performAndWait(NSWork work) override { work.perform(); }
};

class MainQueue final : public dispatch_queue {
 public:
  MainQueue() : dispatch_queue("main") {}

  void submit(NSWork work) override { NSRunLoop::mainRunLoop()->post(std::move(work), nullptr); }
  void performAndWait(NSWork work) override {
    NSRunLoop::mainRunLoop()->postAndWait(std::move(work), nullptr);
  }
};

// Who runs its blocks, a worker or somebody who waits, owns it meanwhile, with the batch that is at
// hand.
class SerialQueue final : public dispatch_queue {
 public:
  explicit SerialQueue(const char* label) : dispatch_queue(label) {}

  void submit(NSWork work) override;
  void performAndWait(NSWork work) override;

 private:
  void schedule();
  void drain() noexcept;
  void passOn();

  std::mutex _mutex;
  bool _isOwned = false;
  std::deque<NSWork> _works;
  std::deque<NSWork> _batch;
  NSWaiter* _nextOwner = nullptr;
};

void SerialQueue::schedule() {
  NSWorkerPool::shared().submit(NSWork([queue = share(this)] { queue.get()->drain(); }));
}

void SerialQueue::submit(NSWork work) {
  {
    const std::lock_guard lock(_mutex);
    _works.push_back(std::move(work));
    if (std::exchange(_isOwned, true)) return;
  }
  schedule();
}

void SerialQueue::performAndWait(NSWork work) {
  const auto alive = share(this);
  NSWaiter waiter;
  std::unique_lock lock(_mutex);
  if (!_isOwned) {
    _isOwned = true;
    lock.unlock();
  } else {
    _works.emplace_back([this, &waiter] { _nextOwner = &waiter; });
    lock.unlock();
    waiter.wait();
  }
  work.perform();
  passOn();
}

// By the owner, when it has done its own.
void SerialQueue::passOn() {
  if (_batch.empty()) {
    const std::lock_guard lock(_mutex);
    _isOwned = !_works.empty();
    if (!_isOwned) return;
  }
  schedule();
}

// By a worker as the owner. Whoever waits becomes the owner when its turn comes.
void SerialQueue::drain() noexcept {
  do {
    if (_batch.empty()) {
      const std::lock_guard lock(_mutex);
      _batch.swap(_works);
      _isOwned = !_batch.empty();
      if (!_isOwned) return;
    }
    while (!_batch.empty()) {
      const NSAutoreleasePool pool;
      _batch.front().perform();
      _batch.pop_front();
      if (auto* const owner = std::exchange(_nextOwner, nullptr)) return owner->wake();
    }
    // A worker does not stay while others wait for one.
  } while (!NSWorkerPool::shared().hasPendingWork());
  passOn();
}

}  // namespace

NSRef<NSString> dispatch_queue::description() const {
  return NSMake<NSString>("dispatch_queue " + _label);
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t kind) {
  if (kind == DISPATCH_QUEUE_CONCURRENT) return NSMake<ConcurrentQueue>(label);
  return NSMake<SerialQueue>(label);
}

const dispatch_queue_t& dispatch_get_main_queue() {
  static const NSNeverDestroyed<dispatch_queue_t> queue(NSMake<MainQueue>());
  return *queue;
}
