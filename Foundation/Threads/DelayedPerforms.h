#pragma once

#include <vector>

#include <Foundation/NSSelector.h>
#include <Foundation/Threads/IntrusiveHashTable.h>
#include <Foundation/Threads/Schedule.h>

class NSDelayedPerform;
class NSEqualDelayedPerform;

/// Finds the delayed requests of a run loop, for cancelling, as long as they have neither happened
/// nor been cancelled. The run loop's schedule holds them.
class NSDelayedPerforms {
 public:
  NSDelayedPerforms();
  NSDelayedPerforms(const NSDelayedPerforms&) = delete;
  ~NSDelayedPerforms();

  /// Makes a request that performs the selector when it happens.
  [[nodiscard]] NSRef<NSScheduledEvent> make(NSRef<NSObject> target, NSSelector selector,
                                             NSRef<NSObject> argument);
  /// Cancels the requests for this very target with an equal selector and argument, and gives their
  /// number. Where the argument's contents have changed meanwhile, only the very object is found.
  NSUInteger cancel(const NSRef<NSObject>& target, NSSelector selector,
                    const NSRef<NSObject>& argument);

 private:
  friend class NSDelayedPerform;
  friend class NSEqualDelayedPerform;
  struct Hashes;

  // By the argument itself, and by what it is equal to.
  NSIntrusiveHashTable<NSDelayedPerform> _byIdentity;
  NSIntrusiveHashTable<NSEqualDelayedPerform> _byContents;
  // Room for those that may be cancelled.
  std::vector<NSRef<NSDelayedPerform>> _candidates;
};
