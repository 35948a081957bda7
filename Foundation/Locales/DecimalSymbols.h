#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <Foundation/NSUnitBuffer.h>

/// How a locale writes decimal numbers: the values that ICU has for it, kept in a form that takes
/// no call to write a number.
class NSDecimalSymbols {
 public:
  explicit NSDecimalSymbols(const std::string& locale);

  /// Gives the locale under which ICU writes its numbers: without keywords if they ask for what it
  /// does not know.
  [[nodiscard]] const std::string& locale() const noexcept { return _locale; }

  /// Appends a number of the form "-12345.67", in ASCII digits, as the locale writes it. What is
  /// neither digit, "-" in front nor "." stays as it is.
  void append(std::string_view decimal, bool isGrouped, NSUnitBuffer& text) const;

 private:
  std::string _locale;
  std::array<char32_t, 10> _digits{};
  std::u16string _minus;
  std::u16string _point;
  std::u16string _separator;
  // Digits of the last group, of each one before it, and what must stand before the last one for
  // there to be any groups; no groups at all when the first is 0.
  std::size_t _lastGroup = 0;
  std::size_t _otherGroups = 0;
  std::size_t _leastBeforeLastGroup = 1;
};
