#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <thread>

#include <Foundation/NSWork.h>

/// The threads that all queues of the process share. They come when there is work and go when there
/// has been none for a while.
///
/// There are as many as processors, and more while some of them are blocked, that is while their
/// processor time stands still: up to 64 blocked ones beside those that run.
class NSWorkerPool {
 public:
  static NSWorkerPool& shared();

  NSWorkerPool() = default;
  NSWorkerPool(const NSWorkerPool&) = delete;

  /// Begun in the order of the calls.
  void submit(NSWork work);
  /// Whether work waits for a thread.
  bool hasPendingWork();

 private:
  struct Worker {
    std::int64_t processorTime = 0;
    clockid_t clock{};
    bool isBusy = false;
  };

  void addWorker();
  void run(std::list<Worker>::iterator self);
  void startWatching();
  void watch();
  std::size_t runningWorkers();

  std::mutex _mutex;
  std::condition_variable _hasWork;
  std::deque<NSWork> _pending;
  std::list<Worker> _workers;
  std::size_t _idle = 0;
  std::uint64_t _taken = 0;
  bool _isWatched = false;
};
