#include "Foundation/NSString.h"

#include <Foundation/NSCharacterSet.h>
#include <Foundation/Text/PercentEncoding.h>

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
