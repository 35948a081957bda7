#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Whether all units are below a power of two.
[[nodiscard]] inline bool NSIsBelow(std::u16string_view text, char16_t bound) {
  // Without an early end the loop becomes vector code.
  constexpr std::size_t block = 256;
  for (std::size_t at = 0; at < text.size(); at += block) {
    char16_t bits = 0;
    for (const char16_t unit : text.substr(at, block)) bits |= unit;
    if (bits >= bound) return false;
  }
  return true;
}

[[nodiscard]] inline bool NSIsASCII(std::u16string_view text) { return NSIsBelow(text, 0x80); }

/// Gives the bytes of a text that is ASCII.
[[nodiscard]] inline std::string NSASCIIOf(std::u16string_view text) {
  return {text.begin(), text.end()};
}

/// Gives the small letter of one of A to Z; every other unit as it is.
[[nodiscard]] constexpr char16_t NSLowerASCII(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
}
