#include "Foundation/Locales/DisplayNames.h"

#include <array>

#include <Foundation/NSString.h>

NSDisplayNames::NSDisplayNames(const std::string& locale) {
  for (const std::string& name : {locale, locale.substr(0, locale.find('@')), std::string()}) {
    UErrorCode status = U_ZERO_ERROR;
    _names.reset(uldn_open(name.c_str(), ULDN_STANDARD_NAMES, &status));
    if (U_SUCCESS(status)) return;
    if (name.empty()) NSCheckICU(status);
  }
}

NSRef<NSString> NSDisplayNames::nameOf(Function function, std::u16string_view code) const {
  const std::string text(code.begin(), code.end());
  // Names are seldom longer.
  std::array<char16_t, 128> units;
  UErrorCode status = U_ZERO_ERROR;
  const auto length = function(_names.get(), text.c_str(), units.data(), units.size(), &status);
  if (U_SUCCESS(status) && length == 0) return nullptr;
  if (U_SUCCESS(status)) {
    return NSMake<NSString>(std::u16string_view(units.data(), static_cast<std::size_t>(length)));
  }
  if (status != U_BUFFER_OVERFLOW_ERROR) return nullptr;
  std::u16string longer(static_cast<std::size_t>(length), u'\0');
  status = U_ZERO_ERROR;
  function(_names.get(), text.c_str(), longer.data(), length, &status);
  NSCheckICU(status);
  return NSMake<NSString>(longer);
}
