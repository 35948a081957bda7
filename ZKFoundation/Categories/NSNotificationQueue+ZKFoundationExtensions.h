#pragma once

#include <cstdint>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNotificationQueue.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// Notifications put into a queue by name and object, and from any thread into the main thread's.
// Styles, masks, modes and nil arguments mean what they mean to `NSNotificationQueue`. A nil
// receiver raises `NSInvalidArgumentException`, as does a nil name, also where the mask is of the
// sender alone: any name will do there.

namespace ZKFoundationExtensions {

/// Has the main thread enqueue the notification into its default queue, coalesced by name and
/// sender, in a later pass of its run loop, also when called on the main thread. From any thread;
/// notifications arrive in the order of the calls, and one that is moved in is released there. Nil
/// and an unknown style raise `NSInvalidArgumentException` there, which ends the program.
ZK_EXPORT void enqueueNotificationInMainThread_postingStyle(NSRef<NSNotification> notification,
                                                            NSUInteger postingStyle);

/// Enqueues the first element of the pair, a notification, with the `intValue` of the second as its
/// style into the calling thread's default queue: for callers that can pass one object only. A
/// shorter array raises `NSRangeException`.
ZK_EXPORT void _mainThreadEnqueue(const NSRef<NSArray>& pair);

/// Makes and enqueues the notification, coalesced by name and sender, in the default mode.
ZK_EXPORT void enqueueNotificationName_object_postingStyle(const NSRef<NSNotificationQueue>& queue,
                                                           const NSRef<NSString>& name,
                                                           const NSRef<NSObject>& object,
                                                           NSUInteger postingStyle);
/// Makes the notification and enqueues it, coalesced by name and sender, in the default mode.
ZK_EXPORT void enqueueNotificationName_object_userInfo_postingStyle(
    const NSRef<NSNotificationQueue>& queue, const NSRef<NSString>& name,
    const NSRef<NSObject>& object, const NSRef<NSDictionary>& userInfo, NSUInteger postingStyle);
/// Makes the notification and enqueues it, coalesced as the mask says, in those modes.
ZK_EXPORT void enqueueNotificationName_object_userInfo_postingStyle_coalesceMask_forModes(
    const NSRef<NSNotificationQueue>& queue, const NSRef<NSString>& name,
    const NSRef<NSObject>& object, const NSRef<NSDictionary>& userInfo, NSUInteger postingStyle,
    std::uint32_t coalesceMask, const NSRef<NSArray>& modes);

/// Removes the queued notifications of that name, about that object, or both, by the mask's bits.
ZK_EXPORT void dequeueNotificationsMatching_object_coalesceMask(
    const NSRef<NSNotificationQueue>& queue, const NSRef<NSString>& name,
    const NSRef<NSObject>& object, std::uint32_t coalesceMask);

/// Makes the calling thread's run loop do one pass without waiting, in the mode that it runs in or
/// else in the default mode. This posts what waits for its end. The queue plays no part.
ZK_EXPORT void firePendingNotifications(const NSRef<NSNotificationQueue>& queue);

}  // namespace ZKFoundationExtensions
