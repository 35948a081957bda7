#include "Foundation/NSString.h"

#include <Foundation/NSCharacterSet.h>
#include <Foundation/Text/PercentEncoding.h>

NSRef<NSString> NSString::stringByRemovingPercentEncoding() const {
  const auto bytes = NSPercentDecoded(utf8());
  if (!bytes) return nullptr;
  auto text = NSMake<NSString>(std::string_view(*bytes));
  return text->utf8() == *bytes ? text : nullptr;
}

NSRef<NSString> NSString::stringByAddingPercentEncodingWithAllowedCharacters(
    const NSRef<NSCharacterSet>& allowedCharacters) const {
  const std::string bytes = utf8();
  // A half of a pair became U+FFFD.
  if (NSUnitsFromUTF8(bytes).view() != view()) return nullptr;
  const NSCharacterSet none;
  const auto& allowed = allowedCharacters ? *allowedCharacters : none;
  return NSMake<NSString>(std::string_view(NSPercentEncoded(bytes, allowed)));
}
