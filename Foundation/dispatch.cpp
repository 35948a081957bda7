#include "Foundation/dispatch.h"

#include "Foundation/NSString.h"
#include "Foundation/NSWorkerPool.h"

#include <condition_variable>

// Somebody who waits for the queue to become theirs.
struct dispatch_queue::Waiter {
  void wait() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isReady; });
  }
  void wake() {
    // Within the lock, as the waiter is gone as soon as it knows.
    const std::lock_guard lock(mutex);
    isReady = true;
    changed.notify_one();
  }

  std::mutex mutex;
  std::condition_variable changed;
  bool isReady = false;
};

dispatch_queue::dispatch_queue(const char* label, dispatch_queue_attr_t kind)
    : _label(label == nullptr ? "" : label), _kind(kind) {}

NSRef<NSString> dispatch_queue::description() const {
  return NSMake<NSString>("dispatch_queue " + _label);
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t kind) {
  return NSMake<dispatch_queue>(label, kind);
}

void dispatch_queue::schedule() {
  NSWorkerPool::shared().submit(NSWork([queue = share(this)] { queue.get()->drain(); }));
}

void dispatch_queue::submit(NSWork work) {
  if (_kind == DISPATCH_QUEUE_CONCURRENT) return NSWorkerPool::shared().submit(std::move(work));
  {
    const std::lock_guard lock(_mutex);
    _works.push_back(std::move(work));
    if (std::exchange(_isOwned, true)) return;
  }
  schedule();
}

void dispatch_queue::performAndWait(NSWork work) {
  if (_kind == DISPATCH_QUEUE_CONCURRENT) return work.perform();
  const auto alive = share(this);
  Waiter waiter;
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
void dispatch_queue::passOn() {
  if (_batch.empty()) {
    const std::lock_guard lock(_mutex);
    _isOwned = !_works.empty();
    if (!_isOwned) return;
  }
  schedule();
}

// By a worker as the owner. Whoever waits becomes the owner when its turn comes.
void dispatch_queue::drain() noexcept {
  do {
    if (_batch.empty()) {
      const std::lock_guard lock(_mutex);
      _batch.swap(_works);
      _isOwned = !_batch.empty();
      if (!_isOwned) return;
    }
    while (!_batch.empty()) {
      _batch.front().perform();
      _batch.pop_front();
      if (auto* const owner = std::exchange(_nextOwner, nullptr)) return owner->wake();
    }
    // A worker does not stay while others wait for one.
  } while (!NSWorkerPool::shared().hasPendingWork());
  passOn();
}
