#include "Foundation/NSNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <Foundation/NSString.h>

namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 2 * twoTo63;

NSComparisonResult order(auto a, auto b) {
  return a < b ? NSOrderedAscending : b < a ? NSOrderedDescending : NSOrderedSame;
}

NSComparisonResult reversed(NSComparisonResult result) {
  return static_cast<NSComparisonResult>(-result);
}

NSComparisonResult compareIntegers(auto a, auto b) {
  if (std::cmp_less(a, b)) return NSOrderedAscending;
  return std::cmp_less(b, a) ? NSOrderedDescending : NSOrderedSame;
}

// Compares without rounding the integer to a double: the whole part of the double is an integer of
// the same kind once it lies within that kind's limits.
NSComparisonResult compareMixed(auto integer, double number) {
  using Integer = decltype(integer);
  if (std::isnan(number)) return NSOrderedDescending;
  const double limit = std::is_signed_v<Integer> ? twoTo63 : twoTo64;
  if (number >= limit) return NSOrderedAscending;
  if (number < (std::is_signed_v<Integer> ? -twoTo63 : 0.0)) return NSOrderedDescending;
  const double whole = std::trunc(number);
  const NSComparisonResult result = order(integer, static_cast<Integer>(whole));
  return result == NSOrderedSame ? order(0.0, number - whole) : result;
}

NSComparisonResult compareDoubles(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return order(!std::isnan(a), !std::isnan(b));
  return order(a, b);
}

template <class T>
T saturate(double value) {
  if (std::isnan(value)) return 0;
  // Both bounds are exact as doubles: the least value, and the first one past the greatest.
  const auto low = static_cast<double>(std::numeric_limits<T>::min());
  const double high = std::ldexp(1.0, std::numeric_limits<T>::digits);
  if (value < low) return std::numeric_limits<T>::min();
  if (value >= high) return std::numeric_limits<T>::max();
  return static_cast<T>(value);
}

std::size_t countDigits(std::u16string_view text) {
  std::size_t count = 0;
  while (count < text.size() && text[count] >= u'0' && text[count] <= u'9') ++count;
  return count;
}

std::size_t countSign(std::u16string_view text) { return text.starts_with(u'-') ? 1 : 0; }

// How many units may belong to a double, so that no more of a long text is looked at.
std::size_t countUnitsOfDouble(std::u16string_view text) {
  constexpr std::size_t longestWord = std::string_view("-infinity").size();
  std::size_t at = countSign(text);
  const auto isAt = [&](std::u16string_view units) {
    return at < text.size() && units.find(text[at]) != std::u16string_view::npos;
  };
  if (!isAt(u".0123456789")) return std::min(text.size(), longestWord);
  at += countDigits(text.substr(at));
  if (isAt(u".")) at += 1 + countDigits(text.substr(at + 1));
  if (!isAt(u"eE")) return at;
  ++at;
  if (isAt(u"+-")) ++at;
  return at + countDigits(text.substr(at));
}

// Takes what `std::from_chars` reads of the first units, which are copied as bytes.
template <class T>
std::optional<T> take(std::u16string_view& text, std::size_t count) {
  std::string bytes(count, '\0');
  std::ranges::transform(text.substr(0, count), bytes.begin(), [](char16_t unit) {
    return unit < 0x80 ? static_cast<char>(unit) : '\0';
  });
  T value{};
  const auto read = std::from_chars(bytes.data(), bytes.data() + bytes.size(), value);
  if (read.ec != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(read.ptr - bytes.data()));
  return value;
}

}  // namespace

std::optional<NSInteger> NSTakeInteger(std::u16string_view& text) {
  const std::size_t sign = countSign(text);
  return take<NSInteger>(text, sign + countDigits(text.substr(sign)));
}

std::optional<double> NSTakeDouble(std::u16string_view& text) {
  return take<double>(text, countUnitsOfDouble(text));
}

template <class T>
T NSNumber::convert() const noexcept {
  const double* const floating = std::get_if<double>(&_value);
  if (floating != nullptr) return saturate<T>(*floating);
  return std::visit([](auto value) { return static_cast<T>(value); }, _value);
}

template int NSNumber::convert<int>() const noexcept;
template NSInteger NSNumber::convert<NSInteger>() const noexcept;
template NSUInteger NSNumber::convert<NSUInteger>() const noexcept;

bool NSNumber::boolValue() const noexcept {
  return std::visit([](auto value) { return value != 0; }, _value);
}

double NSNumber::doubleValue() const noexcept {
  return std::visit([](auto value) { return static_cast<double>(value); }, _value);
}

NSComparisonResult NSNumber::compare(const NSRef<NSNumber>& other) const {
  const auto compareValues = []<class A, class B>(A a, B b) {
    // Booleans count as 0 and 1.
    const auto number = [](auto value) {
      if constexpr (std::same_as<decltype(value), bool>) {
        return static_cast<NSInteger>(value);
      } else {
        return value;
      }
    };
    if constexpr (std::same_as<A, double> && std::same_as<B, double>) {
      return compareDoubles(a, b);
    } else if constexpr (std::same_as<A, double>) {
      return reversed(compareMixed(number(b), a));
    } else if constexpr (std::same_as<B, double>) {
      return compareMixed(number(a), b);
    } else {
      return compareIntegers(number(a), number(b));
    }
  };
  return std::visit(compareValues, _value, other->_value);
}

bool NSNumber::isEqualToNumber(const NSRef<NSNumber>& other) const {
  return other && compare(other) == NSOrderedSame;
}

bool NSNumber::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToNumber(other.as<NSNumber>());
}

// Equal numbers of different types hash alike: integral doubles as the integers that they are.
NSUInteger NSNumber::hash() const {
  const auto hashValue = [](auto value) -> NSUInteger {
    if constexpr (std::is_floating_point_v<decltype(value)>) {
      if (value >= -twoTo63 && value < twoTo63 && std::trunc(value) == value) {
        return static_cast<NSUInteger>(static_cast<std::int64_t>(value));
      }
      if (value >= twoTo63 && value < twoTo64) return static_cast<NSUInteger>(value);
      return std::isnan(value) ? 0 : std::hash<double>{}(value);
    } else {
      return static_cast<NSUInteger>(value);
    }
  };
  return std::visit(hashValue, _value);
}

NSRef<NSString> NSNumber::stringValue() const {
  // Room for the longest shortest form of a double (24 characters) and any 64-bit integer.
  std::array<char, 32> text;
  const auto print = [&](auto value) {
    if constexpr (std::same_as<decltype(value), bool>) {
      text[0] = value ? '1' : '0';
      return text.data() + 1;
    } else if constexpr (std::is_floating_point_v<decltype(value)>) {
      const double magnitude = std::abs(value);
      const bool isPlain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
      const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
      return std::to_chars(text.data(), text.data() + text.size(), value, format).ptr;
    } else {
      return std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    }
  };
  const char* const end = std::visit(print, _value);
  return NSMake<NSString>(
      std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
}

NSRef<NSString> NSNumber::description() const { return stringValue(); }
