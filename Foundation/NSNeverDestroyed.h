#pragma once

#include <memory>
#include <utility>

/// Holds a constant that is made once and never destroyed, so that code which runs while the
/// process ends may still use it. As a function-local static it is made safely from any thread.
template <class T>
class NSNeverDestroyed {
 public:
  template <class... Arguments>
  explicit NSNeverDestroyed(Arguments&&... arguments) {
    std::construct_at(&_value, std::forward<Arguments>(arguments)...);
  }
  NSNeverDestroyed(const NSNeverDestroyed&) = delete;
  NSNeverDestroyed& operator=(const NSNeverDestroyed&) = delete;
  ~NSNeverDestroyed() {}  // NOLINT(modernize-use-equals-default): a default would destroy _value.

  T& operator*() noexcept { return _value; }
  const T& operator*() const noexcept { return _value; }

 private:
  union {
    T _value;
  };
};
