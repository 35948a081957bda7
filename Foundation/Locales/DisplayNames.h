#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <unicode/uldnames.h>

#include <Foundation/NSRef.h>
#include <Foundation/Text/ICU.h>

class NSString;

/// The names of locales, languages, scripts and regions in the language of one locale.
class NSDisplayNames {
 public:
  /// Takes the nearest locale that ICU can read.
  explicit NSDisplayNames(const std::string& locale);

  /// One of ICU's functions for names, as `uldn_localeDisplayName`.
  using Function = std::int32_t (*)(const ULocaleDisplayNames* names, const char* code,
                                    char16_t* text, std::int32_t room, UErrorCode* status);
  /// Gives the name of what a code stands for; nil where ICU has none.
  [[nodiscard]] NSRef<NSString> nameOf(Function function, std::u16string_view code) const;

 private:
  NSICUHandle<ULocaleDisplayNames, uldn_close> _names;
};
