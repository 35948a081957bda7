#include "Foundation/NSWorkerPool.h"

#include "Foundation/NSAutoreleasePool.h"
#include "Foundation/NSNeverDestroyed.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

#include <pthread.h>

namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostBlocked = 64;
constexpr auto idleTime = 5s;
// Long for a block that only computes a little, short for one who waits.
constexpr auto watchInterval = 2ms;

std::size_t processorCount() {
  static const std::size_t count = std::max(1U, std::thread::hardware_concurrency());
  return count;
}

std::int64_t nanoseconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

}  // namespace

NSWorkerPool& NSWorkerPool::shared() {
  static NSNeverDestroyed<NSWorkerPool> pool;
  return *pool;
}

bool NSWorkerPool::hasPendingWork() {
  const std::lock_guard lock(_mutex);
  return !_pending.empty();
}

void NSWorkerPool::submit(NSWork work) {
  std::unique_lock lock(_mutex);
  _pending.push_back(std::move(work));
  if (_pending.size() <= _idle) {
    lock.unlock();
    _hasWork.notify_one();
  } else if (_workers.size() < processorCount()) {
    addWorker();
  } else if (!_isWatched) {
    startWatching();
  }
}

// With the lock.
void NSWorkerPool::addWorker() {
  const auto self = _workers.emplace(_workers.end());
  try {
    std::thread(&NSWorkerPool::run, this, self).detach();
  } catch (...) {
    _workers.erase(self);
    // Others will do the work, if there are any.
    if (_workers.empty()) throw;
  }
}

// With the lock.
void NSWorkerPool::startWatching() {
  try {
    std::thread(&NSWorkerPool::watch, this).detach();
    _isWatched = true;
  } catch (const std::system_error&) {
    // The workers will come to it; the next call tries again.
  }
}

void NSWorkerPool::run(std::list<Worker>::iterator self) {
  std::unique_lock lock(_mutex);
  pthread_getcpuclockid(pthread_self(), &self->clock);
  for (;;) {
    if (_pending.empty()) {
      ++_idle;
      _hasWork.wait_for(lock, idleTime, [&] { return !_pending.empty(); });
      --_idle;
      if (_pending.empty()) break;
    }
    NSWork work = std::move(_pending.front());
    _pending.pop_front();
    ++_taken;
    self->isBusy = true;
    lock.unlock();
    {
      const NSAutoreleasePool pool;
      work.perform();
    }
    lock.lock();
    self->isBusy = false;
  }
  _workers.erase(self);
}

// With the lock. Those whose processor time has gone on since the last call, and those that are
// about to take work.
std::size_t NSWorkerPool::runningWorkers() {
  std::size_t running = 0;
  for (Worker& worker : _workers) {
    if (!worker.isBusy) {
      ++running;
      continue;
    }
    const std::int64_t time = nanoseconds(worker.clock);
    if (std::exchange(worker.processorTime, time) != time) ++running;
  }
  return running;
}

// Adds workers while work waits and there is nobody who gets on. Ends when there is nothing to
// watch.
void NSWorkerPool::watch() {
  std::unique_lock lock(_mutex);
  std::uint64_t taken = _taken;
  while (!_pending.empty()) {
    lock.unlock();
    std::this_thread::sleep_for(watchInterval);
    lock.lock();
    if (std::exchange(taken, _taken) != _taken) continue;
    const std::size_t running = runningWorkers();
    const std::size_t blocked = _workers.size() - running;
    if (_pending.empty() || running >= processorCount() || blocked > mostBlocked) continue;
    try {
      addWorker();
    } catch (const std::system_error&) {
      // There is nobody at all; perhaps there will be a thread next time.
    }
  }
  _isWatched = false;
}
