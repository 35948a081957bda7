#pragma once

#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSWeakRef.h>

/// Removes an observer from its centre when it goes out of scope; hold it where the observer's
/// block has its data:
///
///     NSObservation _observation{DocumentDidChange(), document, [this] { update(); }};
///
/// A block that another thread calls meanwhile may still be running afterwards. Holds the observer,
/// not the centre.
class NS_EXPORT NSObservation {
 public:
  NSObservation() noexcept = default;
  /// Takes what the centre gave for the observer; nil for either observes nothing.
  NSObservation(const NSRef<NSNotificationCenter>& center, NSRef<NSObject> observer)
      : _center(center), _observer(std::move(observer)) {}
  /// Calls the block with each notification of that name about that very object in the default
  /// centre, while it is posted; nil is any name or any object. A block takes the notification or
  /// nothing; a nil block raises `NSInvalidArgumentException`.
  template <class F>
  NSObservation(const NSRef<NSString>& name, const NSRef<NSObject>& object, F&& block)
      : NSObservation(
            NSNotificationCenter::defaultCenter(),
            NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
                name, object, nullptr, std::forward<F>(block))) {}
  NSObservation(NSObservation&& other) noexcept = default;
  /// Removes its own observer and takes over the other's.
  NSObservation& operator=(NSObservation other) noexcept;
  ~NSObservation() { remove(); }

  /// Removes the observer now.
  void remove();
  /// Leaves the observer in place for good, and gives it.
  NSRef<NSObject> detach() noexcept { return std::exchange(_observer, nullptr); }

 private:
  NSWeakRef<NSNotificationCenter> _center;
  NSRef<NSObject> _observer;
};
