#include "Foundation/Text/PercentEncoding.h"

#include <charconv>

#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSString.h>

std::optional<std::string> NSPercentDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find('%'), text.size());
    bytes.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    unsigned value = 0;
    const std::string_view digits = text.substr(1, 2);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc() || digits.size() != 2 || end != digits.data() + 2) return std::nullopt;
    bytes.push_back(static_cast<char>(value));
    text.remove_prefix(3);
  }
  return bytes;
}

std::string NSPercentEncoded(std::string_view bytes, const NSCharacterSet& allowed) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size());
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    if (byte < 0x80 && allowed.characterIsMember(byte)) {
      text.push_back(each);
    } else {
      text.append({'%', digits[byte / 16U], digits[byte % 16U]});
    }
  }
  return text;
}

NSRef<NSString> NSString::stringByRemovingPercentEncoding() const {
  const auto bytes = NSPercentDecoded(utf8());
  if (!bytes || !NSIsWellFormedUTF8(*bytes)) return nullptr;
  return NSMake<NSString>(std::string_view(*bytes));
}

NSRef<NSString> NSString::stringByAddingPercentEncodingWithAllowedCharacters(
    const NSRef<NSCharacterSet>& allowedCharacters) const {
  if (!NSIsWellFormed(view())) return nullptr;
  const NSCharacterSet none;
  const auto& allowed = allowedCharacters ? *allowedCharacters : none;
  return NSMake<NSString>(std::string_view(NSPercentEncoded(utf8(), allowed)));
}
