#pragma once

#include <vector>

#include <Foundation/NSSelector.h>
#include <Foundation/Threads/IntrusiveHashTable.h>
#include <Foundation/Threads/Schedule.h>

class NSDelayedPerform;

/// The delayed requests of a run loop that have neither happened nor been cancelled, as they are
/// found for cancelling. The run loop's schedule holds them.
class NSDelayedPerforms {
 public:
  NSDelayedPerforms();
  NSDelayedPerforms(const NSDelayedPerforms&) = delete;
  ~NSDelayedPerforms();

  /// A request that performs the selector when it happens.
  NSRef<NSScheduledEvent> make(NSRef<NSObject> target, NSSelector selector,
                               NSRef<NSObject> argument);
  /// Cancels those for this very target with an equal selector and argument. An argument whose
  /// contents have changed meanwhile is found by itself alone.
  void cancel(const NSRef<NSObject>& target, NSSelector selector, const NSRef<NSObject>& argument);

  /// How the chains tell themselves apart.
  struct ByIdentity {};
  struct ByContents {};

 private:
  friend class NSDelayedPerform;
  struct Hashes;

  void remove(NSDelayedPerform& request) noexcept;

  NSIntrusiveHashTable<NSDelayedPerform, ByIdentity> _byIdentity;
  NSIntrusiveHashTable<NSDelayedPerform, ByContents> _byContents;
  // Room for those that may be cancelled.
  std::vector<NSRef<NSDelayedPerform>> _candidates;
};
