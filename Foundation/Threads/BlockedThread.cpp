#include "Foundation/Threads/BlockedThread.h"

#include <cerrno>
#include <mutex>

#include <sched.h>

#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/Threads/SystemThreads.h>

namespace {

// The threads that wait, by their numbers. A thread leaves what it serves, and wakes whom it has
// served, before it comes here to wait itself. So under the lock every server that waits is seen
// with what it serves.
struct Waiters {
  std::mutex mutex;
  NSIntrusiveHashTable<NSBlockedThread> byThread;

  static Waiters& shared() {
    static NSNeverDestroyed<Waiters> waiters;
    return *waiters;
  }
};

NSUInteger hashOf(pid_t thread) { return static_cast<NSUInteger>(thread); }

}  // namespace

NSBlockedThread::NSBlockedThread(const NSServingThread& server) : _server(&server) {
  sem_init(&_semaphore, 0, 0);
  const pid_t self = NSThreadNumber();
  auto& waiters = Waiters::shared();
  const std::lock_guard lock(waiters.mutex);
  _isEndless = leadsTo(self);
  if (!_isEndless) waiters.byThread.add(*this, hashOf(self));
}

NSBlockedThread::~NSBlockedThread() {
  if (!_isEndless) {
    auto& waiters = Waiters::shared();
    const std::lock_guard lock(waiters.mutex);
    waiters.byThread.remove(*this);
  }
  sem_destroy(&_semaphore);
}

// With the lock. There is no circle without that thread: whoever would have closed it has not come
// to wait.
bool NSBlockedThread::leadsTo(pid_t thread) const {
  for (const NSBlockedThread* waiter = this; waiter != nullptr;) {
    const pid_t server = waiter->_server->get();
    if (server == thread) return true;
    waiter = nullptr;
    if (server == 0) break;
    Waiters::shared().byThread.forEach(hashOf(server), [&](const NSBlockedThread& other) {
      if (!other._isWoken.load(std::memory_order_relaxed)) waiter = &other;
    });
  }
  return false;
}

void NSBlockedThread::wait() {
  // What is done in a moment is not worth sleeping for.
  constexpr int shortWait = 16;
  for (int k = 0; k < shortWait; ++k) {
    if (sem_trywait(&_semaphore) == 0) return;
    sched_yield();
  }
  while (sem_wait(&_semaphore) != 0 && errno == EINTR) {
  }
}

void NSRaiseEndlessWait(const std::string& server, const char* operation) {
  NSException::raise(NSInternalInconsistencyException,
                     "waiting for " + server +
                         " would never end, as it waits for the calling thread (in '" + operation +
                         "')");
}
