#pragma once

#include <mutex>

#include <Foundation/NSObject.h>

/// What the weak references to one object share: it knows whether the object is alive. An object
/// has one at most, from its first weak reference on, in a table by its address.
class NS_EXPORT NSWeakAnchor final : public NSObject {
 public:
  explicit NSWeakAnchor(const NSObject& object) noexcept : _object(&object) {}

  /// Gives the anchor of an object to which the caller holds a reference.
  [[nodiscard]] static NSRef<NSWeakAnchor> of(const NSObject& object);
  /// Has the weak references to an object give nil, before it is destroyed.
  static void forget(const NSObject& object) noexcept;

  /// Counts a reference to the object for the caller; false when it has died.
  [[nodiscard]] bool retainObject() const noexcept;
  [[nodiscard]] bool isObjectAlive() const noexcept;
  /// Describes the object, for debuggers; "nil" when it has died.
  [[nodiscard]] NSRef<NSString> description() const override;

 private:
  mutable std::mutex _mutex;
  // Null when it has died.
  const NSObject* _object;
};
