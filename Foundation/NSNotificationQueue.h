#pragma once

#include <memory>

#include <Foundation/NSExport.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/Passkey.h>

class NSArray;
class NSQueuedNotifications;
class NSRunLoopCore;

/// When a queued notification is posted.
enum NSPostingStyle : NSUInteger {
  /// When the run loop has nothing else to do, before it waits.
  NSPostWhenIdle = 1,
  /// At the end of a pass of the run loop.
  NSPostASAP = 2,
  /// At once.
  NSPostNow = 3,
};

/// Which notifications count as the same; together, both must be.
enum NSNotificationCoalescing : std::uint32_t {
  /// None do.
  NSNotificationNoCoalescing = 0,
  /// Those of equal name.
  NSNotificationCoalescingOnName = 1,
  /// Those about the very same object.
  NSNotificationCoalescingOnSender = 2,
};

/// A thread's notifications that are not posted yet. Its run loop posts them to the default centre,
/// in their order; what is queued meanwhile waits for its next occasion. What an observer throws
/// there ends the program. Used by its own thread alone, with which it ends: then it takes no more.
class NS_EXPORT NSNotificationQueue : public NSObject {
 public:
  NSNotificationQueue(NSPasskey<NSRunLoopCore> key, NSRunLoopCore& runLoop);
  ~NSNotificationQueue() override;

  /// Gives the calling thread's.
  [[nodiscard]] static NSRef<NSNotificationQueue> defaultQueue();

  /// Removes the notifications of the same name and sender, then puts this one at the end, to be
  /// posted in a pass in the default mode. Otherwise like the longer form.
  void enqueueNotification_postingStyle(const NSRef<NSNotification>& notification,
                                        NSUInteger postingStyle);
  /// Removes the notifications that are the same by the mask's bits, then puts this one at the end,
  /// to be posted in a pass in one of the modes; nil or no modes is the default mode. `NSPostNow`
  /// posts it instead, whatever the modes. Nil and an unknown style raise
  /// `NSInvalidArgumentException`.
  void enqueueNotification_postingStyle_coalesceMask_forModes(
      const NSRef<NSNotification>& notification, NSUInteger postingStyle,
      std::uint32_t coalesceMask, const NSRef<NSArray>& modes);
  /// Removes the notifications that are the same by the mask's bits; without bits, none. Nil raises
  /// `NSInvalidArgumentException`.
  void dequeueNotificationsMatching_coalesceMask(const NSRef<NSNotification>& notification,
                                                 std::uint32_t coalesceMask);

 private:
  friend struct NSAccess;

  const std::unique_ptr<NSQueuedNotifications> _core;
};
