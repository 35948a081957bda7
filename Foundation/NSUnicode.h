#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSUnitBuffer.h>

// Conversions between UTF-8 and UTF-16. Neither fails: what is not well-formed becomes U+FFFD, one
// for every maximal part of a broken UTF-8 sequence (the practice that Unicode recommends) and one
// for every surrogate half that stands alone.

/// Gives the text of UTF-8 bytes.
[[nodiscard]] NS_EXPORT NSUnitBuffer NSUnitsFromUTF8(std::string_view utf8);
/// Appends the text of UTF-8 bytes, and gives where the first broken sequence begins: at their end
/// if there is none. Needs room for as many units as there are bytes.
NS_EXPORT std::size_t NSAppendUTF8(std::string_view utf8, NSUnitBuffer& text);
/// Appends a character; a surrogate half as it is.
NS_EXPORT void NSAppendCharacter(char32_t character, NSUnitBuffer& text);

/// Gives the UTF-8 bytes of a text.
[[nodiscard]] NS_EXPORT std::string NSUTF8FromUnits(std::u16string_view text);

/// Whether the bytes are UTF-8, so that nothing of them becomes U+FFFD.
[[nodiscard]] NS_EXPORT bool NSIsWellFormedUTF8(std::string_view utf8) noexcept;
/// Counts the units before the first surrogate half that stands alone: all, if none does.
[[nodiscard]] NS_EXPORT std::size_t NSCountWellFormedUnits(std::u16string_view text) noexcept;
/// Whether no surrogate half of the text stands alone.
[[nodiscard]] NS_EXPORT bool NSIsWellFormed(std::u16string_view text) noexcept;

[[nodiscard]] constexpr bool NSIsSurrogate(char32_t unit) {
  return (unit & 0xFFFFF800U) == 0xD800U;
}
[[nodiscard]] constexpr bool NSIsHighSurrogate(char32_t unit) {
  return (unit & 0xFFFFFC00U) == 0xD800U;
}
[[nodiscard]] constexpr bool NSIsLowSurrogate(char32_t unit) {
  return (unit & 0xFFFFFC00U) == 0xDC00U;
}

/// Whether a place in a text lies between the halves of a surrogate pair.
[[nodiscard]] constexpr bool NSSplitsPair(std::u16string_view text, std::size_t at) {
  return at > 0 && at < text.size() && NSIsHighSurrogate(text[at - 1]) &&
         NSIsLowSurrogate(text[at]);
}

/// Takes the first character off a text that is not empty; a surrogate half that stands alone is
/// given as it is.
constexpr char32_t NSTakeCharacter(std::u16string_view& text) {
  const char32_t unit = text[0];
  text.remove_prefix(1);
  if (!NSIsHighSurrogate(unit) || text.empty() || !NSIsLowSurrogate(text[0])) return unit;
  const char32_t character = (unit << 10U) + text[0] - ((0xD800U << 10U) + 0xDC00U - 0x10000U);
  text.remove_prefix(1);
  return character;
}

/// Gives the value of a decimal digit of any script; -1 for every other character.
[[nodiscard]] NS_EXPORT int NSDecimalDigitValue(char32_t character) noexcept;
