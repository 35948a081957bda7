#include "Foundation/NSDisplayNames.h"

#include "Foundation/NSICU.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <array>

#include <unicode/uldnames.h>

namespace {

using Function = std::int32_t (*)(const ULocaleDisplayNames*, const char*, char16_t*, std::int32_t,
                                  UErrorCode*);

constexpr std::array<Function, 5> functions = {uldn_localeDisplayName, uldn_languageDisplayName,
                                               uldn_scriptDisplayName, uldn_regionDisplayName,
                                               uldn_variantDisplayName};

}  // namespace

void NSDisplayNames::Closer::operator()(ULocaleDisplayNames* names) const noexcept {
  uldn_close(names);
}

NSDisplayNames::NSDisplayNames(const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  _names.reset(uldn_open(locale.c_str(), ULDN_STANDARD_NAMES, &status));
  NSCheckICU(status);
}

NSRef<NSString> NSDisplayNames::nameOf(Kind kind, std::u16string_view code) const {
  // No identifier is longer than this, and names are seldom.
  std::array<char, 160> text{};
  for (std::size_t k = 0; k < std::min(code.size(), text.size() - 1); ++k) {
    text[k] = static_cast<char>(code[k]);
  }
  const Function write = functions[static_cast<std::size_t>(kind)];
  std::array<char16_t, 128> units;
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length = write(_names.get(), text.data(), units.data(),
                                    static_cast<std::int32_t>(units.size()), &status);
  if (status != U_BUFFER_OVERFLOW_ERROR) {
    NSCheckICU(status);
    return NSMake<NSString>(std::u16string_view(units.data(), static_cast<std::size_t>(length)));
  }
  std::u16string longer(static_cast<std::size_t>(length), u'\0');
  status = U_ZERO_ERROR;
  write(_names.get(), text.data(), longer.data(), length, &status);
  NSCheckICU(status);
  return NSMake<NSString>(longer);
}
