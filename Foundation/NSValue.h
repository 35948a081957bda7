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

  [[nodiscard]] NSPoint pointValue() const;
  [[nodiscard]] NSSize sizeValue() const;
  [[nodiscard]] NSRect rectValue() const;
  [[nodiscard]] NSRange rangeValue() const;

  /// Gives the value as a `T`, or null when it is of another kind.
  template <class T>
  [[nodiscard]] const T* get() const noexcept {
    return std::get_if<T>(&_value);
  }

  /// Whether the kind and the members are equal; a value with a NaN member equals itself alone.
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives the value as `operator<<` prints it.
  [[nodiscard]] NSRef<NSString> description() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  template <class T>
  [[nodiscard]] T checked(const char* operation) const;

  std::variant<NSPoint, NSSize, NSRect, NSRange> _value;
};
