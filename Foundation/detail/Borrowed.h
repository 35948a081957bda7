#pragma once

#include <memory>

#include <Foundation/NSRef.h>

/// A reference without a count of its own, to an object that somebody else keeps alive: as cheap to
/// copy as a pointer, and to be passed on as an `NSRef`.
template <class T>
class NSBorrowed {
 public:
  explicit NSBorrowed(T* object = nullptr) noexcept { set(object); }
  NSBorrowed(const NSBorrowed& other) noexcept : NSBorrowed(other._reference.get()) {}
  NSBorrowed& operator=(const NSBorrowed& other) noexcept {
    set(other._reference.get());
    return *this;
  }
  ~NSBorrowed() {}  // NOLINT(modernize-use-equals-default): a member of a union needs it.

  const NSRef<T>& operator*() const noexcept { return _reference; }

 private:
  void set(T* object) noexcept { std::construct_at(&_reference, NSRef<T>::adopt(object)); }

  // Never destroyed, which would count.
  union {
    NSRef<T> _reference;
  };
};
