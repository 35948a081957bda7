#include "ZKFoundation/Categories/NSNotificationQueue+ZKFoundationExtensions.h"

#include <utility>

#include <Foundation/NSDate.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSOperationQueue.h>
#include <Foundation/NSRunLoop.h>

namespace ZKFoundationExtensions {

void enqueueNotificationInMainThread_postingStyle(NSRef<NSNotification> notification,
                                                  NSUInteger postingStyle) {
  NSOperationQueue::mainQueue()->addOperationWithBlock(
      [notification = std::move(notification), postingStyle] {
        NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(notification,
                                                                              postingStyle);
      });
}

void _mainThreadEnqueue(const NSRef<NSArray>& pair) {
  const auto notification = pair->objectAtIndex(0).as<NSNotification>();
  const NSInteger style = pair->objectAtIndex(1).as<NSNumber>()->intValue();
  NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
      notification, static_cast<NSUInteger>(style));
}

void enqueueNotificationName_object_postingStyle(const NSRef<NSNotificationQueue>& queue,
                                                 const NSRef<NSString>& name,
                                                 const NSRef<NSObject>& object,
                                                 NSUInteger postingStyle) {
  NSCheckArgument("enqueueNotificationName:object:postingStyle:", "queue", queue);
  queue->enqueueNotification_postingStyle(NSNotification::notificationWithName_object(name, object),
                                          postingStyle);
}

void enqueueNotificationName_object_userInfo_postingStyle(const NSRef<NSNotificationQueue>& queue,
                                                          const NSRef<NSString>& name,
                                                          const NSRef<NSObject>& object,
                                                          const NSRef<NSDictionary>& userInfo,
                                                          NSUInteger postingStyle) {
  NSCheckArgument("enqueueNotificationName:object:userInfo:postingStyle:", "queue", queue);
  queue->enqueueNotification_postingStyle(
      NSNotification::notificationWithName_object_userInfo(name, object, userInfo), postingStyle);
}

void enqueueNotificationName_object_userInfo_postingStyle_coalesceMask_forModes(
    const NSRef<NSNotificationQueue>& queue, const NSRef<NSString>& name,
    const NSRef<NSObject>& object, const NSRef<NSDictionary>& userInfo, NSUInteger postingStyle,
    std::uint32_t coalesceMask, const NSRef<NSArray>& modes) {
  NSCheckArgument("enqueueNotificationName:object:userInfo:postingStyle:coalesceMask:forModes:",
                  "queue", queue);
  queue->enqueueNotification_postingStyle_coalesceMask_forModes(
      NSNotification::notificationWithName_object_userInfo(name, object, userInfo), postingStyle,
      coalesceMask, modes);
}

void dequeueNotificationsMatching_object_coalesceMask(const NSRef<NSNotificationQueue>& queue,
                                                      const NSRef<NSString>& name,
                                                      const NSRef<NSObject>& object,
                                                      std::uint32_t coalesceMask) {
  NSCheckArgument("dequeueNotificationsMatching:object:coalesceMask:", "queue", queue);
  queue->dequeueNotificationsMatching_coalesceMask(
      NSNotification::notificationWithName_object(name, object), coalesceMask);
}

void firePendingNotifications(const NSRef<NSNotificationQueue>& queue) {
  NSCheckArgument("firePendingNotifications", "queue", queue);
  const auto runLoop = NSRunLoop::currentRunLoop();
  const auto mode = runLoop->currentMode();
  runLoop->limitDateForMode(mode ? mode : NSDefaultRunLoopMode());
}

}  // namespace ZKFoundationExtensions
