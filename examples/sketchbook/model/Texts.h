#pragma once

#include <ZKFoundation/ZKFoundation.h>

namespace sketchbook {

/// Gives the text in the user's language: what the program's tables say, or else the text itself.
inline NSRef<NSString> localized(const NSRef<NSString>& text) {
  return NSBundle::mainBundle()->localizedStringForKey_value_table(text, nullptr, nullptr);
}

/// Gives the text between the quotation marks of the user's language.
inline NSRef<NSString> quoted(const NSRef<NSString>& text) {
  return ZKFoundationExtensions::stringByQuotingAtLevel_forLocaleIdentifier(
      text, 0, NSLocale::currentLocale()->localeIdentifier());
}

}  // namespace sketchbook
