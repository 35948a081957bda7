#pragma once

#include <atomic>
#include <string>
#include <utility>

#include <semaphore.h>
#include <sys/types.h>

#include <Foundation/Threads/IntrusiveHashTable.h>

/// The thread that serves a serial queue, by running its blocks, or a run loop. Others wait for it.
class NSServingThread {
 public:
  void set(pid_t thread) noexcept { _thread.store(thread, std::memory_order_relaxed); }
  void clear() noexcept { set(0); }
  /// Gives the thread's number; 0 while there is none.
  [[nodiscard]] pid_t get() const noexcept { return _thread.load(std::memory_order_relaxed); }

 private:
  std::atomic<pid_t> _thread = 0;
};

/// The calling thread while it is blocked, waiting to be woken once. It may be gone as soon as it
/// is woken, which a POSIX semaphore allows and a condition variable only under its lock.
class NSBlockedThread : public NSIntrusiveHashLink<NSBlockedThread> {
 public:
  /// Notes that the calling thread is about to wait for the serving one.
  explicit NSBlockedThread(const NSServingThread& serving);
  NSBlockedThread(const NSBlockedThread&) = delete;
  ~NSBlockedThread();

  /// Whether nobody would ever wake it: the serving thread is the calling one, or waits for it,
  /// perhaps through others.
  [[nodiscard]] bool isEndless() const noexcept { return _isEndless; }
  /// Returns when it has been woken.
  void wait();
  /// Lets it go on; from any thread.
  void wake() {
    _isWoken.store(true, std::memory_order_relaxed);
    sem_post(&_semaphore);
  }

 private:
  [[nodiscard]] bool leadsTo(pid_t thread) const;

  const NSServingThread* const _serving;
  bool _isEndless = false;
  std::atomic<bool> _isWoken = false;
  sem_t _semaphore{};
};

class dispatch_queue;

/// Notes which serial queue's blocks the calling thread runs, for people. It does not hold it.
class NSServedQueue {
 public:
  explicit NSServedQueue(const dispatch_queue& queue) noexcept
      : _former(std::exchange(_current, &queue)) {}
  NSServedQueue(const NSServedQueue&) = delete;
  ~NSServedQueue() { _current = _former; }

  /// Gives the innermost one; null outside of all.
  [[nodiscard]] static const dispatch_queue* current() noexcept { return _current; }

 private:
  static inline thread_local const dispatch_queue* _current = nullptr;
  const dispatch_queue* const _former;
};

/// Raises `NSInternalInconsistencyException`: "waiting for dispatch_queue main would never end, as
/// it waits for the calling thread, dispatch_queue index (in 'dispatch_sync')".
[[noreturn]] void NSRaiseEndlessWait(const std::string& awaited, const char* operation);
