#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include <Foundation/NSExport.h>
#include <Foundation/NSRef.h>
#include <Foundation/NSUnitBuffer.h>

class NSObject;

/// One value for a format, borrowed for the call: an object or nil, an integer, a boolean or an
/// enumerator, a floating-point number, or text in UTF-8 or UTF-16.
class NSFormatArgument {
 public:
  struct Integer {
    std::int64_t value;  ///< as it is, for signed types
    std::uint64_t bits;  ///< the type's own bits, as "%u" and "%x" show them
    bool isSigned;
  };
  using Value =
      std::variant<const NSObject*, Integer, double, std::string_view, std::u16string_view>;

  template <class T>
  requires std::convertible_to<T*, const NSObject*> NSFormatArgument(const NSRef<T>& object)
  noexcept : _value(static_cast<const NSObject*>(object.get())) {}
  NSFormatArgument(std::nullptr_t) noexcept : _value(static_cast<const NSObject*>(nullptr)) {}
  template <std::floating_point T>
  NSFormatArgument(T number) noexcept : _value(static_cast<double>(number)) {}
  template <class T>
  requires std::integral<T> || std::is_enum_v<T> NSFormatArgument(T number)
  noexcept : _value(integer(number)) {}
  NSFormatArgument(std::string_view utf8) noexcept : _value(utf8) {}
  NSFormatArgument(std::u16string_view units) noexcept : _value(units) {}
  NSFormatArgument(const char* utf8) noexcept
      : _value(utf8 == nullptr ? std::string_view("(null)") : std::string_view(utf8)) {}

  [[nodiscard]] const Value& value() const noexcept { return _value; }

 private:
  template <class T>
  [[nodiscard]] static Integer integer(T number) noexcept {
    if constexpr (std::is_enum_v<T>) {
      return integer(static_cast<std::underlying_type_t<T>>(number));
    } else if constexpr (std::same_as<T, bool>) {
      return integer(static_cast<int>(number));
    } else {
      return {static_cast<std::int64_t>(number),
              static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<T>>(number)),
              std::is_signed_v<T>};
    }
  }

  Value _value;
};

/// Appends the format with its conversions replaced; `NSString::stringWithFormat` tells how.
NS_EXPORT void NSAppendFormat(std::u16string_view format,
                              std::span<const NSFormatArgument> arguments, NSUnitBuffer& text);
