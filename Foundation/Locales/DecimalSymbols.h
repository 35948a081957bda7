#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <Foundation/NSUnitBuffer.h>

/// How a locale writes decimal numbers, by ICU's values: no number needs a call of ICU.
class NSDecimalSymbols {
 public:
  explicit NSDecimalSymbols(const std::string& locale);

  /// Gives the locale under which ICU writes its numbers: without keywords that it does not know.
  [[nodiscard]] const std::string& locale() const noexcept { return _locale; }

  /// Appends a number of the form "-12345.67", in ASCII digits, as the locale writes it. What is
  /// neither digit, "-" in front nor "." stays as it is.
  void append(std::string_view decimal, bool isGrouped, NSUnitBuffer& text) const;

  /// Takes a number off the start of the text and gives it as `append` takes it, or nothing when
  /// there is none. Besides what that writes it knows the digits of every script, "-", and for
  /// separators that are spaces or apostrophes others of their kind. Groups may be left out; a
  /// separator that has no whole group after it ends the number.
  [[nodiscard]] std::string take(std::u16string_view& text) const;

 private:
  [[nodiscard]] int valueOfDigit(char32_t character) const;
  std::size_t takeDigits(std::u16string_view& text, std::string& decimal) const;
  [[nodiscard]] bool takeSeparator(std::u16string_view& text) const;
  void takeWholeDigits(std::u16string_view& text, std::string& decimal) const;

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
