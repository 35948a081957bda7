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

void NSRunLoopInbox::post(NSOnceClosure&& work, NSRef<NSArray> modes) {
  std::unique_lock lock(_mutex);
  if (_isClosed) return;
  if (modes) {
    _others.emplace_back(std::move(work), _nextTurn, std::move(modes));
  } else {
    _common.emplace_back(std::move(work), _nextTurn);
  }
  ++_nextTurn;
  signalLocked();
  if (std::exchange(_isWaiting, false)) {
    lock.unlock();
    _hasRequests.notify_one();
  }
}

std::uint64_t NSRunLoopInbox::takeInto(Requests& common, NSChunkedQueue<RequestInModes>& others) {
  const std::lock_guard lock(_mutex);
  common.append(_common);
  others.append(_others);
  if (std::exchange(_isSignalled, false)) {
    eventfd_t count = 0;
    eventfd_read(_descriptor, &count);
  }
  return _nextTurn;
}

void NSRunLoopInbox::wait(std::chrono::nanoseconds longest) {
  if (longest <= std::chrono::nanoseconds::zero()) return;
  std::unique_lock lock(_mutex);
  const auto hasRequests = [this] {
    _isWaiting = _common.empty() && _others.empty() && !_isWoken;
    return !_isWaiting;
  };
  if (longest >= NSDelay::longest / 2) {
    // A wait that needs no clock costs less.
    _hasRequests.wait(lock, hasRequests);
  } else {
    _hasRequests.wait_for(lock, longest, hasRequests);
  }
  _isWaiting = false;
  _isWoken = false;
}

void NSRunLoopInbox::wait(std::chrono::nanoseconds longest, std::vector<pollfd> watched) {
  if (longest <= std::chrono::nanoseconds::zero()) return;
  {
    const std::lock_guard lock(_mutex);
    if (std::exchange(_isWoken, false) || !_common.empty() || !_others.empty()) return;
    watched.push_back({_descriptor, POLLIN, 0});
  }
  const auto whole = std::chrono::floor<std::chrono::seconds>(longest);
  const timespec timeout{whole.count(), (longest - whole).count()};
  ::ppoll(watched.data(), watched.size(), &timeout, nullptr);
  const std::lock_guard lock(_mutex);
  _isWoken = false;
}

void NSRunLoopInbox::wake() {
  {
    const std::lock_guard lock(_mutex);
    _isWoken = true;
    signalLocked();
  }
  _hasRequests.notify_one();
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
  }
  return _descriptor;
}

void NSRunLoopInbox::close() {
  const std::lock_guard lock(_mutex);
  _isClosed = true;
}
