#pragma once

#include <variant>

#include <Foundation/NSExport.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>

/// A boxed point, size, rectangle or range. Immutable.
///
/// Asking for another kind than the value holds raises `NSInvalidArgumentException`.
class NS_EXPORT NSValue : public NSObject {
 public:
  explicit NSValue(NSPoint value) noexcept : _value(value) {}
  explicit NSValue(NSSize value) noexcept : _value(value) {}
  explicit NSValue(NSRect value) noexcept : _value(value) {}
  explicit NSValue(NSRange value) noexcept : _value(value) {}

  NSPoint pointValue() const;
  NSSize sizeValue() const;
  NSRect rectValue() const;
  NSRange rangeValue() const;

  /// The value as a `T`, or null when it is of another kind.
  template <class T>
  const T* get() const noexcept {
    return std::get_if<T>(&_value);
  }

  /// The same kind with equal members; a value with a NaN member equals only itself.
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// As `operator<<` prints the value.
  NSRef<NSString> description() const override;
  /// The value itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  template <class T>
  T checked(const char* operation) const;

  std::variant<NSPoint, NSSize, NSRect, NSRange> _value;
};
