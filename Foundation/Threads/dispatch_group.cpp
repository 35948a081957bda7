#include "Foundation/dispatch_group.h"

#include <Foundation/Threads/ManualTime.h>

dispatch_group_t dispatch_group_create() { return NSMake<dispatch_group>(); }

void dispatch_group::enter() {
  const std::lock_guard lock(_mutex);
  ++_count;
}

void dispatch_group::leave() {
  std::vector<Notice> notices;
  {
    const std::lock_guard lock(_mutex);
    if (_count == 0) {
      NSException::raise(NSInternalInconsistencyException,
                         "more has left the group than entered it (in 'dispatch_group_leave')");
    }
    if (--_count > 0) return;
    notices.swap(_notices);
    _isEmpty.notify_all();
  }
  for (Notice& notice : notices) notice.queue->submit(std::move(notice.work));
}

void dispatch_group::notify(const dispatch_queue_t& queue, NSOnceClosure work) {
  {
    const std::lock_guard lock(_mutex);
    if (_count > 0) {
      _notices.push_back({queue, std::move(work)});
      return;
    }
  }
  queue->submit(std::move(work));
}

void dispatch_group::wait() {
  std::unique_lock lock(_mutex);
  _isEmpty.wait(lock, [this] { return _count == 0; });
}

bool dispatch_group::wait(NSDelay delay, const NSRef<NSManualClock>& clock) {
  const auto isEmpty = [this] { return _count == 0; };
  if (!clock) {
    std::unique_lock lock(_mutex);
    return _isEmpty.wait_for(lock, delay.duration(), isEmpty);
  }
  // The alarm may come when nobody waits any more.
  const auto hasCome = std::make_shared<bool>(false);
  NSPerformAfter(delay, NSOnceClosure([group = share(this), hasCome] {
                   const std::lock_guard lock(group->_mutex);
                   *hasCome = true;
                   group->_isEmpty.notify_all();
                 }),
                 clock, "dispatch_group_wait");
  std::unique_lock lock(_mutex);
  _isEmpty.wait(lock, [&] { return isEmpty() || *hasCome; });
  return isEmpty();
}
