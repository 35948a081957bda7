#include "Foundation/Threads/RunLoopInbox.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include <Foundation/NSDelay.h>
#include <Foundation/Threads/SystemThreads.h>

NSRunLoopInbox::~NSRunLoopInbox() {
  if (_descriptor >= 0) ::close(_descriptor);
}

void NSRunLoopInbox::post(Item&& item) {
  std::unique_lock lock(_mutex);
  if (_isClosed) return;
  _items.push_back(std::move(item));
  signalLocked();
  if (std::exchange(_isWaiting, false)) {
    lock.unlock();
    _hasItems.notify_one();
  }
}

void NSRunLoopInbox::takeInto(std::vector<Item>& items) {
  const std::lock_guard lock(_mutex);
  _items.swap(items);
  if (std::exchange(_isSignalled, false)) {
    eventfd_t count = 0;
    eventfd_read(_descriptor, &count);
  }
}

void NSRunLoopInbox::wait(std::chrono::nanoseconds longest) {
  if (longest <= std::chrono::nanoseconds::zero()) return;
  std::unique_lock lock(_mutex);
  const auto hasItems = [this] {
    _isWaiting = _items.empty();
    return !_isWaiting;
  };
  if (longest >= NSDelay::longest / 2) {
    // A wait that needs no clock costs less.
    _hasItems.wait(lock, hasItems);
  } else {
    _hasItems.wait_for(lock, longest, hasItems);
  }
  _isWaiting = false;
}

void NSRunLoopInbox::signal() {
  const std::lock_guard lock(_mutex);
  signalLocked();
}

void NSRunLoopInbox::signalLocked() {
  if (_descriptor >= 0 && !std::exchange(_isSignalled, true)) eventfd_write(_descriptor, 1);
}

int NSRunLoopInbox::descriptor() {
  const std::lock_guard lock(_mutex);
  if (_descriptor < 0) {
    _descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (_descriptor < 0) {
      NSRaiseSystemError({errno, std::generic_category()}, "wakeUpDescriptor");
    }
    // There may be work from before.
    signalLocked();
  }
  return _descriptor;
}

void NSRunLoopInbox::close() {
  std::vector<Item> dropped;
  const std::lock_guard lock(_mutex);
  _isClosed = true;
  dropped.swap(_items);
}
