#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <Foundation/NSRef.h>

class NSString;
struct ULocaleDisplayNames;

/// What locales, languages, scripts and regions are called in the language of one locale.
class NSDisplayNames {
 public:
  explicit NSDisplayNames(const std::string& locale);

  enum class Kind { locale, language, script, country, variant };
  /// The name of what a locale identifier stands for; a code that nobody knows stands for itself.
  NSRef<NSString> nameOf(Kind kind, std::u16string_view code) const;

 private:
  struct Closer {
    void operator()(ULocaleDisplayNames* names) const noexcept;
  };
  std::unique_ptr<ULocaleDisplayNames, Closer> _names;
};
