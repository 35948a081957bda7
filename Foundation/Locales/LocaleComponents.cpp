#include "Foundation/Locales/LocaleComponents.h"

#include <algorithm>
#include <array>

#include <unicode/uloc.h>

namespace {

constexpr std::size_t maxIdentifierLength = 150;  // ICU's own bound is 157, with the zero.

bool isLetter(char16_t unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool isScript(std::u16string_view part) {
  return part.size() == 4 && std::ranges::all_of(part, isLetter);
}

bool isCountry(std::u16string_view part) {
  return (part.size() == 2 && std::ranges::all_of(part, isLetter)) ||
         (part.size() == 3 && std::ranges::all_of(part, isDigit));
}

// Removes the first part and the separator after it.
std::u16string_view takePart(std::u16string_view& text) {
  std::size_t end = 0;
  while (end < text.size() && text[end] != u'_' && text[end] != u'-') ++end;
  const std::u16string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

}  // namespace

NSLocaleComponents::NSLocaleComponents(std::u16string_view identifier) noexcept {
  std::u16string_view rest = NSWithoutKeywords(identifier);
  language = takePart(rest);
  variant = rest;
  std::u16string_view part = takePart(rest);
  if (isScript(part)) {
    script = part;
    variant = rest;
    part = takePart(rest);
  }
  if (isCountry(part)) {
    country = part;
    variant = rest;
  }
}

bool NSIsLocaleIdentifier(std::u16string_view text) noexcept {
  return !text.empty() && text.size() <= maxIdentifierLength &&
         std::ranges::all_of(text, [](char16_t unit) {
           return isLetter(unit) || isDigit(unit) ||
                  std::u16string_view(u"_-@=;+.").find(unit) != std::u16string_view::npos;
         });
}

std::string NSLanguageTag(const std::string& identifier) {
  if (identifier.empty()) return {};
  std::array<char, ULOC_FULLNAME_CAPACITY> tag{};
  UErrorCode status = U_ZERO_ERROR;
  const auto length =
      uloc_toLanguageTag(identifier.c_str(), tag.data(), tag.size(), /*strict=*/1, &status);
  if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) return {};
  return {tag.data(), static_cast<std::size_t>(length)};
}
