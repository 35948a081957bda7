#pragma once

#include <cerrno>

#include <sched.h>
#include <semaphore.h>

/// A thread that waits to be woken once. It may be gone as soon as it is woken, which a POSIX
/// semaphore allows and a condition variable only under its lock.
class NSWaiter {
 public:
  NSWaiter() { sem_init(&_semaphore, 0, 0); }
  NSWaiter(const NSWaiter&) = delete;
  ~NSWaiter() { sem_destroy(&_semaphore); }

  void wait() {
    // What is done in a moment is not worth sleeping for.
    constexpr int shortWait = 16;
    for (int k = 0; k < shortWait; ++k) {
      if (sem_trywait(&_semaphore) == 0) return;
      sched_yield();
    }
    while (sem_wait(&_semaphore) != 0 && errno == EINTR) {
    }
  }
  void wake() { sem_post(&_semaphore); }

 private:
  sem_t _semaphore{};
};
