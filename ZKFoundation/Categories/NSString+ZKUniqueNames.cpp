#include "ZKFoundation/Categories/NSString+ZKUniqueNames.h"

#include <Foundation/NSException.h>
#include <ZKFoundation/Categories/ZKNumberedName.h>
#include <ZKFoundation/Categories/ZKStyledName.h>

namespace {

// Finds a free name beside those of the array.
template <class Name, class... Options>
NSRef<NSString> freeName(const NSRef<NSString>& string, const NSRef<NSArray>& strings,
                         const Options&... options) {
  const auto taken = strings ? strings.get()->objects() : std::span<const NSRef<NSObject>>();
  Name name(string->view(), options..., taken.size());
  for (const auto& object : taken) {
    if (const auto* const other = object.template cast<NSString>()) name.take(other->view());
  }
  return NSMake<NSString>(name.freeName());
}

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSString> uniqueStringWithString_forStringArray(const NSRef<NSString>& string,
                                                      const NSRef<NSArray>& strings) {
  NSCheckArgument("uniqueStringWithString:forStringArray:", "string", string);
  return freeName<ZKNumberedName>(string, strings);
}

NSRef<NSString> uniqueStringWithString_forStringArray_options(const NSRef<NSString>& string,
                                                              const NSRef<NSArray>& strings,
                                                              const ZKNamingOptions& options) {
  NSCheckArgument("uniqueStringWithString:forStringArray:options:", "string", string);
  return freeName<ZKStyledName>(string, strings, options);
}

}  // namespace ZKFoundationExtensions
