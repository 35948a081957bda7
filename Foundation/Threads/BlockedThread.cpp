#include "Foundation/Threads/BlockedThread.h"

#include <cerrno>
#include <mutex>

#include <sched.h>

#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/NSThread.h>
#include <Foundation/Threads/SystemThreads.h>
#include <Foundation/dispatch.h>

namespace {

// The blocked threads, by their numbers. A thread leaves what it serves, and wakes those whom it
// has served, before it blocks itself. So under the lock every serving thread that is blocked is
// seen with what it serves.
struct BlockedThreads {
  std::mutex mutex;
  NSIntrusiveHashTable<NSBlockedThread> byThread;

  static BlockedThreads& shared() {
    static NSNeverDestroyed<BlockedThreads> threads;
    return *threads;
  }
};

NSUInteger hashOf(pid_t thread) { return static_cast<NSUInteger>(thread); }

}  // namespace

NSBlockedThread::NSBlockedThread(const NSServingThread& serving) : _serving(&serving) {
  sem_init(&_semaphore, 0, 0);
  const pid_t self = NSThreadNumber();
  auto& blocked = BlockedThreads::shared();
  const std::lock_guard lock(blocked.mutex);
  _isEndless = leadsTo(self);
  if (!_isEndless) blocked.byThread.add(*this, hashOf(self));
}

NSBlockedThread::~NSBlockedThread() {
  if (!_isEndless) {
    auto& blocked = BlockedThreads::shared();
    const std::lock_guard lock(blocked.mutex);
    blocked.byThread.remove(*this);
  }
  sem_destroy(&_semaphore);
}

// With the lock. There is no circle without that thread: whoever would have closed one has not been
// blocked.
bool NSBlockedThread::leadsTo(pid_t thread) const {
  for (const NSBlockedThread* blocked = this; blocked != nullptr;) {
    const pid_t serving = blocked->_serving->get();
    if (serving == thread) return true;
    blocked = nullptr;
    if (serving == 0) break;
    BlockedThreads::shared().byThread.forEach(hashOf(serving), [&](const NSBlockedThread& other) {
      if (!other._isWoken.load(std::memory_order_relaxed)) blocked = &other;
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

void NSRaiseEndlessWait(const std::string& awaited, const char* operation) {
  const auto* const queue = NSServedQueue::current();
  const auto caller =
      queue != nullptr ? queue->description() : NSThread::currentThread()->description();
  NSException::raise(NSInternalInconsistencyException,
                     "waiting for " + awaited +
                         " would never end, as it waits for the calling thread, " + caller->utf8() +
                         " (in '" + operation + "')");
}
