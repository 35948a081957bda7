#include "Foundation/Threads/WorkerPool.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

#include <pthread.h>
#include <unistd.h>

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/Threads/PendingWork.h>
#include <Foundation/Threads/SystemThreads.h>

namespace {

using namespace std::chrono_literals;

constexpr auto idleTime = 5s;
// Long for a block that only computes a little, short for one who waits.
constexpr auto watchInterval = 2ms;
// There will be a thread when a block ends, of which nobody need look.
constexpr auto starvedInterval = 100ms;
// Of so many that are all blocked, one more at a time, so that thousands do not need as many looks.
constexpr std::size_t blockedForOneMore = 8;

std::size_t processorCount() {
  static const std::size_t count = std::max(1U, std::thread::hardware_concurrency());
  return count;
}

std::int64_t nanoseconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

// In one piece, whoever else writes there.
void tell(const std::string& what) {
  const std::string line = what + '\n';
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

std::string nameOf(const dispatch_queue& queue) { return queue.description()->utf8(); }

}  // namespace

NSWorkerPool& NSWorkerPool::shared() {
  static NSNeverDestroyed<NSWorkerPool> pool;
  return *pool;
}

bool NSWorkerPool::hasPendingWork() {
  const std::lock_guard lock(_mutex);
  return !_pending.empty();
}

NSRef<NSArray> NSWorkerPool::pendingWork(const dispatch_queue& queue) {
  NSPendingWork pending;
  const std::lock_guard lock(_mutex);
  for (const Pending& work : _pending) {
    if (work.queue == &queue) pending.add(work.work);
  }
  return pending.lines();
}

void NSWorkerPool::makeWorker(const char* operation) {
  const std::lock_guard lock(_mutex);
  requireWorkerLocked(operation);
}

void NSWorkerPool::requireWorkerLocked(const char* operation) {
  if (!_workers.empty()) return;
  if (const auto error = addWorker()) NSRaiseSystemError(error, operation);
}

void NSWorkerPool::submit(NSOnceClosure work, dispatch_queue& queue, const char* operation) {
  std::unique_lock lock(_mutex);
  const bool hasIdle = _pending.size() < _idle;
  std::error_code refusal;
  if (!hasIdle) {
    requireWorkerLocked(operation);
    // Where a thread is refused, others will do the work.
    const bool isFull = _workers.size() >= processorCount() || addWorker();
    if (isFull && !_isWatched) refusal = startWatching();
  }
  _pending.push_back({std::move(work), &queue});
  if (queue._pendingWorks++ == 0) queue.retain();
  const bool isNews = refusal && !std::exchange(_isWatchRefused, true);
  lock.unlock();
  if (hasIdle) _hasWork.notify_one();
  if (isNews) {
    tell(nameOf(queue) + " may starve: the system gives no more threads: " + refusal.message());
  }
}

// With the lock.
std::error_code NSWorkerPool::addWorker() {
  const auto self = _workers.emplace(_workers.end());
  const auto error = NSDetachThread([this, self] { run(self); });
  if (error) {
    _workers.erase(self);
  } else {
    _hasWorker = true;
  }
  return error;
}

// With the lock.
std::error_code NSWorkerPool::startWatching() {
  const auto error = NSDetachThread([this] { watch(); });
  _isWatched = !error;
  if (_isWatched) _isWatchRefused = false;
  return error;
}

void NSWorkerPool::run(std::list<Worker>::iterator self) {
  std::unique_lock lock(_mutex);
  self->thread = NSThreadNumber();
  pthread_getcpuclockid(pthread_self(), &self->clock);
  while (awaitWork(lock)) {
    self->isBusy = true;
    self->wasAsleep = false;
    performFirst(lock);
    self->isBusy = false;
  }
  _workers.erase(self);
}

// Whether there is any.
bool NSWorkerPool::awaitWork(std::unique_lock<std::mutex>& lock) {
  const auto hasWork = [this] { return !_pending.empty(); };
  while (!hasWork()) {
    ++_idle;
    if (_workers.size() == 1) {
      _hasWork.wait(lock, hasWork);
    } else {
      _hasWork.wait_for(lock, idleTime, hasWork);
    }
    --_idle;
    if (!hasWork() && _workers.size() > 1) return false;
  }
  return true;
}

void NSWorkerPool::performFirst(std::unique_lock<std::mutex>& lock) {
  Pending first = std::move(_pending.front());
  _pending.pop_front();
  ++_taken;
  if (_isWatchRefused && !_pending.empty() && !_isWatched) startWatching();
  NSRef<dispatch_queue> queue;
  if (--first.queue->_pendingWorks == 0) queue = NSRef<dispatch_queue>::adopt(first.queue);
  lock.unlock();
  {
    const NSAutoreleasePool pool;
    first.work.perform();
    queue = nullptr;
  }
  lock.lock();
}

// With the lock. Whether it sleeps again, or, where the system does not tell, has had no processor
// time since the last look. One that is about to take work is not blocked.
bool NSWorkerPool::Worker::isBlocked() {
  if (!isBusy) return false;
  const std::int64_t time = nanoseconds(clock);
  const bool isStill = std::exchange(processorTime, time) == time;
  const auto isAsleep = NSIsThreadAsleep(thread);
  if (!isAsleep) return isStill;
  return std::exchange(wasAsleep, *isAsleep) && *isAsleep;
}

// Adds workers while work waits and there is nobody who gets on. Ends when there is nothing to
// watch.
void NSWorkerPool::watch() {
  std::unique_lock lock(_mutex);
  std::uint64_t taken = _taken;
  bool isTold = false;
  for (auto interval = watchInterval; !_pending.empty();) {
    lock.unlock();
    std::this_thread::sleep_for(interval);
    lock.lock();
    interval = watchInterval;
    if (std::exchange(taken, _taken) != _taken || _pending.empty()) continue;
    const std::string reason = grow();
    if (reason.empty()) continue;
    interval = starvedInterval;
    if (std::exchange(isTold, true)) continue;
    std::string line = nameOf(*_pending.front().queue);
    line.append(" starves: ").append(reason);
    lock.unlock();
    tell(line);
    lock.lock();
  }
  _isWatched = false;
}

// With the lock. Adds workers for those that are blocked; the result is why it cannot.
std::string NSWorkerPool::grow() {
  std::size_t blocked = 0;
  for (Worker& worker : _workers) blocked += worker.isBlocked() ? 1U : 0U;
  const std::size_t running = _workers.size() - blocked;
  if (running >= processorCount()) return {};
  std::size_t missing = processorCount() - running;
  if (running == 0) missing = std::max(missing, blocked / blockedForOneMore);
  missing = std::min(missing, _pending.size());
  const std::size_t most = std::max(NSMostThreads(), processorCount());
  for (; missing > 0; --missing) {
    std::string reason = std::to_string(blocked) + " threads are blocked, and the system ";
    if (_workers.size() >= most) return reason + "allows no more";
    if (const auto error = addWorker()) return reason + "gives no more: " + error.message();
  }
  return {};
}
