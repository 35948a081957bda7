#pragma once

#include <initializer_list>

#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Appends the strings in their order, up to the first nil.
ZK_EXPORT void appendStrings(const NSRef<NSMutableString>& string,
                             std::initializer_list<NSRef<NSString>> strings);

}  // namespace ZKFoundationExtensions
