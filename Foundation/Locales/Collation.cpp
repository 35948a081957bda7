#include "Foundation/Locales/Collation.h"

NSCollation::NSCollation(const std::string& locale) {
  for (const std::string& name : {locale, locale.substr(0, locale.find('@')), std::string()}) {
    UErrorCode status = U_ZERO_ERROR;
    _collator.reset(ucol_open(name.c_str(), &status));
    if (U_SUCCESS(status)) return;
    if (name.empty()) NSCheckICU(status);
  }
}

std::vector<std::byte> NSCollation::keyOf(std::u16string_view text) const {
  std::vector<std::byte> key(text.size() * 3 + 16);  // Of most texts.
  for (;;) {
    const auto length = static_cast<std::size_t>(ucol_getSortKey(
        _collator.get(), NSICUText(text), NSICULength(text),
        reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size())));
    const bool fits = length <= key.size();
    key.resize(length);
    if (fits) break;
  }
  if (!key.empty()) key.pop_back();  // A zero.
  return key;
}
