#pragma once

#include <concepts>
#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSLocale;
class NSString;

/// A boxed number: a boolean, a signed or unsigned 64-bit integer, or a double. Immutable.
///
/// Numbers are equal when their values are, exactly and whatever their types (2^63 as an integer is
/// not 2^63 + 1, though both are the same double). Converting to an integer type keeps the low bits
/// of an integer; a double is cut towards zero and saturates, and NaN gives 0.
class NS_EXPORT NSNumber : public NSObject {
 public:
  template <class T>
  requires std::is_arithmetic_v<T>
  explicit NSNumber(T value) noexcept : _value(widen(value)) {}

  [[nodiscard]] bool boolValue() const noexcept;
  [[nodiscard]] int intValue() const noexcept { return convert<int>(); }
  [[nodiscard]] NSInteger integerValue() const noexcept { return convert<NSInteger>(); }
  [[nodiscard]] NSUInteger unsignedIntegerValue() const noexcept { return convert<NSUInteger>(); }
  [[nodiscard]] long long longLongValue() const noexcept { return integerValue(); }
  [[nodiscard]] unsigned long unsignedLongValue() const noexcept { return unsignedIntegerValue(); }
  [[nodiscard]] unsigned long long unsignedLongLongValue() const noexcept {
    return unsignedIntegerValue();
  }
  [[nodiscard]] float floatValue() const noexcept { return static_cast<float>(doubleValue()); }
  [[nodiscard]] double doubleValue() const noexcept;

  /// Whether the number holds a double, not an integer or a boolean.
  [[nodiscard]] bool isFloatingPoint() const noexcept {
    return std::holds_alternative<double>(_value);
  }
  [[nodiscard]] bool isBoolean() const noexcept { return std::holds_alternative<bool>(_value); }

  /// Compares the exact values. NaN comes before every other number and equals itself. Nil raises
  /// `NSInvalidArgumentException`.
  [[nodiscard]] NSComparisonResult compare(const NSRef<NSNumber>& other) const;
  [[nodiscard]] bool isEqualToNumber(const NSRef<NSNumber>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;

  /// Writes decimal digits: of a double the shortest that read back as the same, with an exponent
  /// below 1e-4 and from 1e16 on ("100000", "1e+16"); "1" or "0" for a boolean.
  [[nodiscard]] NSRef<NSString> stringValue() const;
  [[nodiscard]] NSRef<NSString> description() const override;
  /// Writes the digits of `stringValue` with the locale's digits, sign and decimal separator,
  /// without groups. Nil gives `stringValue`.
  [[nodiscard]] NSRef<NSString> descriptionWithLocale(const NSRef<NSLocale>& locale) const;

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  using Value = std::variant<bool, NSInteger, NSUInteger, double>;

  template <class T>
  [[nodiscard]] static Value widen(T value) noexcept {
    if constexpr (std::same_as<T, bool>) {
      return value;
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<double>(value);
    } else if constexpr (std::is_signed_v<T>) {
      return static_cast<NSInteger>(value);
    } else {
      return static_cast<NSUInteger>(value);
    }
  }
  template <class T>
  [[nodiscard]] T convert() const noexcept;

  Value _value;
};

// Numbers of files and programs, whatever the locale; `NSNumberFormatter::takeNumber` reads those
// that people write. Digits are ASCII, and neither blanks nor "+" stand before them.

/// Takes a whole number off the start of the text and gives it; nothing, with the text as it was,
/// when there is none or it does not fit: "-12 pages" gives -12 and leaves " pages".
[[nodiscard]] NS_EXPORT std::optional<NSInteger> NSTakeInteger(std::u16string_view& text);
/// Takes a number with "." and an exponent, either of which may be missing, as
/// `NSNumber::stringValue` writes it, or "inf", "infinity" or "nan" in any letter case. Gives the
/// nearest double; nothing, with the text as it was, when there is none or it is too large or too
/// small: "1e3e" gives 1000 and leaves "e".
[[nodiscard]] NS_EXPORT std::optional<double> NSTakeDouble(std::u16string_view& text);
