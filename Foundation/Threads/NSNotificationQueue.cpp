#include "Foundation/NSNotificationQueue.h"

#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/QueuedNotifications.h>
#include <Foundation/Threads/RunLoopCore.h>

NSNotificationQueue::NSNotificationQueue(NSPasskey<NSRunLoopCore> /*key*/, NSRunLoopCore& runLoop)
    : _core(std::make_unique<NSQueuedNotifications>(runLoop)) {}

NSNotificationQueue::~NSNotificationQueue() = default;

NSRef<NSNotificationQueue> NSNotificationQueue::defaultQueue() {
  if (auto* const runLoop = NSRunLoopCore::current()) return runLoop->notificationQueue();
  return NSAccess::core(*NSRunLoop::currentRunLoop()).notificationQueue();
}

void NSNotificationQueue::enqueueNotification_postingStyle(
    const NSRef<NSNotification>& notification, NSUInteger postingStyle) {
  enqueueNotification_postingStyle_coalesceMask_forModes(
      notification, postingStyle, NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender,
      nullptr);
}

void NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes(
    const NSRef<NSNotification>& notification, NSUInteger postingStyle, std::uint32_t coalesceMask,
    const NSRef<NSArray>& modes) {
  constexpr auto operation = "enqueueNotification:postingStyle:coalesceMask:forModes:";
  if (!notification) NSRaiseNilArgument("notification", operation);
  if (postingStyle < NSPostWhenIdle || postingStyle > NSPostNow) {
    NSException::raise(NSInvalidArgumentException,
                       "there is no posting style " +
                           std::to_string(static_cast<NSInteger>(postingStyle)) + " (in '" +
                           operation + "')");
  }
  if (postingStyle == NSPostNow) {
    // What is removed may change the caller's own reference.
    const auto held = NSRef<NSNotification>::share(notification.get());
    _core->remove(*held, coalesceMask);
    NSNotificationCenter::defaultCenter()->postNotification(held);
  } else {
    const bool hasModes = modes && modes->count() > 0;
    _core->add(notification, static_cast<NSPostingStyle>(postingStyle), coalesceMask,
               hasModes ? modes : NSDefaultRunLoopModes());
  }
}

void NSNotificationQueue::dequeueNotificationsMatching_coalesceMask(
    const NSRef<NSNotification>& notification, std::uint32_t coalesceMask) {
  if (!notification) {
    NSRaiseNilArgument("notification", "dequeueNotificationsMatching:coalesceMask:");
  }
  _core->remove(*notification, coalesceMask);
}
