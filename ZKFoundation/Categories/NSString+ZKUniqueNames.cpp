#include "ZKFoundation/Categories/NSString+ZKUniqueNames.h"

#include <Foundation/NSException.h>
#include <ZKFoundation/Categories/ZKNumberedName.h>

namespace ZKFoundationExtensions {

NSRef<NSString> uniqueStringWithString_forStringArray(const NSRef<NSString>& string,
                                                      const NSRef<NSArray>& strings) {
  NSCheckArgument("uniqueStringWithString:forStringArray:", "string", string);
  const auto taken = strings ? strings.get()->objects() : std::span<const NSRef<NSObject>>();
  ZKNumberedName name(string->view(), taken.size());
  for (const auto& object : taken) {
    if (const auto* const other = object.cast<NSString>()) name.take(other->view());
  }
  return NSMake<NSString>(name.freeName());
}

}  // namespace ZKFoundationExtensions
