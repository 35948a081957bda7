#include "Foundation/dispatch_group.h"

#include <Foundation/Objects/Access.h>
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
    ++_emptied;
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

// Whoever waits may see the group again only when it has been entered anew.
void dispatch_group::wait() {
  std::unique_lock lock(_mutex);
  _isEmpty.wait(lock, [this, before = _emptied] { return _count == 0 || _emptied != before; });
}

bool dispatch_group::wait(NSDelay delay, const NSRef<NSManualClock>& clock) {
  std::unique_lock lock(_mutex);
  const auto wasEmpty = [this, before = _emptied] { return _count == 0 || _emptied != before; };
  if (!clock) return _isEmpty.wait_for(lock, delay.duration(), wasEmpty);
  lock.unlock();
  const auto held = NSRef<NSManualClock>::share(clock.get());
  auto& time = NSAccess::core(*held);
  // The alarm may be coming while it is removed.
  const auto hasCome = std::make_shared<bool>(false);
  const auto alarm = time.addAlarm(delay, NSOnceClosure([group = share(this), hasCome] {
                                     const std::lock_guard own(group->_mutex);
                                     *hasCome = true;
                                     group->_isEmpty.notify_all();
                                   }));
  lock.lock();
  _isEmpty.wait(lock, [&] { return wasEmpty() || *hasCome; });
  const bool result = wasEmpty();
  lock.unlock();
  time.removeAlarm(alarm);
  return result;
}
