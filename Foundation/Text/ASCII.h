#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
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

/// Counts the units with which both texts begin.
[[nodiscard]] inline std::size_t NSCountShared(std::u16string_view a, std::u16string_view b) {
  const std::size_t count = std::min(a.size(), b.size());
  std::size_t at = 0;
  for (std::uint64_t wordA = 0, wordB = 0; at + 4 <= count; at += 4) {
    std::memcpy(&wordA, a.data() + at, sizeof(wordA));
    std::memcpy(&wordB, b.data() + at, sizeof(wordB));
    if (wordA != wordB) break;
  }
  while (at < count && a[at] == b[at]) ++at;
  return at;
}

/// Gives the bytes of a text that is ASCII.
[[nodiscard]] inline std::string NSASCIIOf(std::u16string_view text) {
  return {text.begin(), text.end()};
}

/// Gives the small letter of one of A to Z; every other unit as it is.
[[nodiscard]] constexpr char16_t NSLowerASCII(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
}
