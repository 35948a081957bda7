#pragma once

#include <concepts>
#include <type_traits>

#include <Foundation/NSTypes.h>

/// Whether the values of an enumeration are bits, which "|" joins to another value of it. An
/// enumeration says so by a specialisation. The bits of two enumerations cannot be joined.
template <class Enum>
inline constexpr bool NSIsBitSet = false;

template <class Enum>
concept NSBitSet = std::is_enum_v<Enum> && NSIsBitSet<Enum>;

template <NSBitSet Enum>
[[nodiscard]] constexpr Enum operator|(Enum a, Enum b) noexcept {
  return static_cast<Enum>(static_cast<NSUInteger>(a) | static_cast<NSUInteger>(b));
}
template <NSBitSet Enum>
[[nodiscard]] constexpr Enum operator&(Enum a, Enum b) noexcept {
  return static_cast<Enum>(static_cast<NSUInteger>(a) & static_cast<NSUInteger>(b));
}
template <NSBitSet Enum>
[[nodiscard]] constexpr Enum operator~(Enum a) noexcept {
  return static_cast<Enum>(~static_cast<NSUInteger>(a));
}
template <NSBitSet Enum>
constexpr Enum& operator|=(Enum& a, Enum b) noexcept {
  return a = a | b;
}
template <NSBitSet Enum>
constexpr Enum& operator&=(Enum& a, Enum b) noexcept {
  return a = a & b;
}
template <NSBitSet Enum, NSBitSet Other>
requires(!std::same_as<Enum, Other>) void operator|(Enum, Other) = delete;

/// A parameter for the values of an enumeration, or for any number in their place. A value of
/// another enumeration does not compile.
template <class Enum>
class NSOptions {
 public:
  constexpr NSOptions() noexcept = default;
  constexpr NSOptions(Enum value) noexcept : _value(static_cast<NSUInteger>(value)) {}
  template <std::integral Integer>
  constexpr NSOptions(Integer value) noexcept : _value(static_cast<NSUInteger>(value)) {}

  constexpr operator NSUInteger() const noexcept { return _value; }

 private:
  NSUInteger _value = 0;
};
