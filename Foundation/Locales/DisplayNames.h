#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <unicode/uldnames.h>

#include <Foundation/NSRef.h>

class NSString;

/// What locales, languages, scripts and regions are called in the language of one locale.
class NSDisplayNames {
 public:
  /// The nearest locale that ICU can read counts.
  explicit NSDisplayNames(const std::string& locale);

  /// One of ICU's functions for names, as `uldn_localeDisplayName`.
  using Function = std::int32_t (*)(const ULocaleDisplayNames* names, const char* code,
                                    char16_t* text, std::int32_t room, UErrorCode* status);
  /// The name of what a locale identifier stands for; nil where ICU has none.
  NSRef<NSString> nameOf(Function function, std::u16string_view code) const;

 private:
  struct Closer {
    void operator()(ULocaleDisplayNames* names) const noexcept { uldn_close(names); }
  };
  std::unique_ptr<ULocaleDisplayNames, Closer> _names;
};
