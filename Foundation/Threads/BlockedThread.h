#pragma once

#include <atomic>
#include <string>

#include <semaphore.h>
#include <sys/types.h>

#include <Foundation/Threads/IntrusiveHashTable.h>

/// Which thread serves what others wait for: runs a serial queue's blocks, or a run loop.
class NSServingThread {
 public:
  void set(pid_t thread) noexcept { _thread.store(thread, std::memory_order_relaxed); }
  void clear() noexcept { set(0); }
  /// 0 while there is none.
  pid_t get() const noexcept { return _thread.load(std::memory_order_relaxed); }

 private:
  std::atomic<pid_t> _thread = 0;
};

/// A thread that waits to be woken once. It may be gone as soon as it is woken, which a POSIX
/// semaphore allows and a condition variable only under its lock.
class NSBlockedThread : public NSIntrusiveHashLink<NSBlockedThread> {
 public:
  /// The calling thread, which is about to wait for the server.
  explicit NSBlockedThread(const NSServingThread& server);
  NSBlockedThread(const NSBlockedThread&) = delete;
  ~NSBlockedThread();

  /// Whether nobody would ever wake it: the server is the calling thread, or waits for it, perhaps
  /// through others.
  bool isEndless() const noexcept { return _isEndless; }
  void wait();
  void wake() {
    _isWoken.store(true, std::memory_order_relaxed);
    sem_post(&_semaphore);
  }

 private:
  bool leadsTo(pid_t thread) const;

  const NSServingThread* const _server;
  bool _isEndless = false;
  std::atomic<bool> _isWoken = false;
  sem_t _semaphore{};
};

/// Raises `NSInternalInconsistencyException`: "waiting for dispatch_queue main would never end, as
/// it waits for the calling thread (in 'dispatch_sync')".
[[noreturn]] void NSRaiseEndlessWait(const std::string& server, const char* operation);
