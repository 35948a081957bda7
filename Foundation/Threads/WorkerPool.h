#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <system_error>

#include <sys/types.h>

#include <Foundation/detail/OnceClosure.h>
#include <Foundation/dispatch.h>

/// The threads that all queues of the process share. They are made when there is work and end when
/// there has been none for a while; the first one stays.
///
/// There are as many as processors, and more while some of them are blocked: asleep whenever one
/// looks, or, where the system does not tell, without processor time. `NSMostThreads` bounds them.
/// When work waits even then, a line on standard error names its queue.
class NSWorkerPool {
 public:
  [[nodiscard]] static NSWorkerPool& shared();

  NSWorkerPool() = default;
  NSWorkerPool(const NSWorkerPool&) = delete;

  /// Has the work performed. Works begin in the order of the calls. The queue is held while it has
  /// work here. Raises `NSGenericException`, which names the operation, when the system gives no
  /// thread at all.
  void submit(NSOnceClosure work, dispatch_queue& queue, const char* operation);
  /// Makes sure that what is submitted later will have a thread, or raises as `submit` does.
  void requireWorker(const char* operation) {
    if (!_hasWorker.load(std::memory_order_relaxed)) makeWorker(operation);
  }
  /// Tells what waits for a thread from that queue.
  [[nodiscard]] NSRef<NSArray> pendingWork(const dispatch_queue& queue);
  /// Whether work waits for a thread.
  [[nodiscard]] bool hasPendingWork();

 private:
  struct Worker {
    bool isBlocked();

    pid_t thread = 0;
    clockid_t clock{};
    bool isBusy = false;
    // At the last look.
    bool wasAsleep = false;
    std::int64_t processorTime = 0;
  };
  struct Pending {
    NSOnceClosure work;
    dispatch_queue* queue;
  };
  std::error_code addWorker();
  void makeWorker(const char* operation);
  void requireWorkerLocked(const char* operation);
  std::error_code startWatching();
  void run(std::list<Worker>::iterator self);
  bool awaitWork(std::unique_lock<std::mutex>& lock);
  void performFirst(std::unique_lock<std::mutex>& lock);
  void watch();
  std::string grow();

  std::mutex _mutex;
  std::condition_variable _hasWork;
  std::deque<Pending> _pending;
  std::list<Worker> _workers;
  std::size_t _idle = 0;
  std::uint64_t _taken = 0;
  bool _isWatched = false;
  bool _isWatchRefused = false;
  // Once there is a worker, there always is one.
  std::atomic<bool> _hasWorker = false;
};
