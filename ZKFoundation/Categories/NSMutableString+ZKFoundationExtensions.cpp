#include "ZKFoundation/Categories/NSMutableString+ZKFoundationExtensions.h"

#include <algorithm>
#include <span>

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

void appendStrings(const NSRef<NSMutableString>& string, std::span<const NSRef<NSString>> strings) {
  NSCheckArgument("appendStrings:", "string", string);
  const std::span listed(strings.begin(), std::ranges::find(strings, nullptr));
  NSUInteger length = string->length();
  for (const auto& next : listed) length += next->length();
  string->reserve(length);
  for (const auto& next : listed) string->appendString(next);
}

}  // namespace ZKFoundationExtensions
