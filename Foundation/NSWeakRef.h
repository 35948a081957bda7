#pragma once

#include <concepts>
#include <cstddef>
#include <functional>

#include <Foundation/NSRef.h>
#include <Foundation/detail/WeakAnchor.h>

/// The weak reference to an object: it does not keep the object alive, and gives nil as soon as the
/// last strong reference has gone, even while the object is still being destroyed.
///
/// `==` asks whether both refer to the same object, nil and dead ones too, and `std::hash` agrees,
/// so that weak references stay where they are in a table. A weak reference belongs to one thread
/// at a time; any number of threads may have their own, and the object may die on yet another one.
/// An object without weak references does not pay for them.
template <class T>
class NSWeakRef {
 public:
  using element_type = T;

  constexpr NSWeakRef() noexcept = default;
  constexpr NSWeakRef(std::nullptr_t) noexcept {}

  /// Refers to the object, not from within its destructor.
  template <class U>
  requires std::convertible_to<U*, T*> NSWeakRef(const NSRef<U>& object) : _object(object.get()) {
    if (object) _anchor = NSWeakAnchor::of(*object);
  }
  /// Refers to the same object; a dead one becomes nil, as where its base stands is not known.
  template <class U>
  requires(std::convertible_to<U*, T*> && !std::same_as<U, T>) NSWeakRef(const NSWeakRef<U>& other)
      : NSWeakRef(other.lock()) {}

  /// Gives a strong reference to the object; nil when it has died.
  [[nodiscard]] NSRef<T> lock() const noexcept {
    return _anchor && _anchor->retainObject() ? NSRef<T>::adopt(_object) : NSRef<T>();
  }

  /// Whether the object has died. One that lives may die before the caller knows.
  [[nodiscard]] bool isNil() const noexcept { return !_anchor || !_anchor->isObjectAlive(); }

  /// Whether both refer, or have referred, to the same object, or both to none.
  template <class U>
  friend bool operator==(const NSWeakRef& a, const NSWeakRef<U>& b) noexcept {
    return a.anchor().is(b.anchor());
  }
  /// Would not tell a dead object from none: `isNil` does.
  friend bool operator==(const NSWeakRef& a, std::nullptr_t) = delete;

  /// Gives what the weak references to one object share, for `==` and `std::hash`.
  [[nodiscard]] const NSRef<NSWeakAnchor>& anchor() const noexcept { return _anchor; }

 private:
  NSRef<NSWeakAnchor> _anchor;
  T* _object = nullptr;
};

template <class T>
NSWeakRef(const NSRef<T>&) -> NSWeakRef<T>;

/// Hashes which object it refers, or has referred, to.
template <class T>
struct std::hash<NSWeakRef<T>> {
  std::size_t operator()(const NSWeakRef<T>& ref) const noexcept {
    return std::hash<const NSObject*>()(ref.anchor().get());
  }
};
