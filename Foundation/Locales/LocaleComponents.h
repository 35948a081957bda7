#pragma once

#include <string>
#include <string_view>

#include <Foundation/NSExport.h>

/// The parts of a locale identifier, in place. What does not occur is empty.
struct NSLocaleComponents {
  std::u16string_view language;
  /// Four letters.
  std::u16string_view script;
  /// Two letters or three digits.
  std::u16string_view country;
  /// What follows them, without its first separator.
  std::u16string_view variant;

  /// Splits at "_" and "-"; what follows "@" does not count.
  NS_EXPORT explicit NSLocaleComponents(std::u16string_view identifier) noexcept;
};

/// Gives the identifier up to the first "@".
[[nodiscard]] constexpr std::u16string_view NSWithoutKeywords(
    std::u16string_view identifier) noexcept {
  return identifier.substr(0, identifier.find(u'@'));
}

/// Whether `NSLocale::localeWithLocaleIdentifier` takes the text.
[[nodiscard]] bool NSIsLocaleIdentifier(std::u16string_view text) noexcept;

/// Gives "de-CH" for "de_CH"; nothing for what names no language.
[[nodiscard]] std::string NSLanguageTag(const std::string& identifier);
