#pragma once

#include <Foundation/NSMapTable.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Sets the object unless there is one for the key. When one has to be set, a nil key or object
/// raises `NSInvalidArgumentException`.
ZK_EXPORT void setObjectIfAbsent_forKey(const NSRef<NSMapTable>& table,
                                        const NSRef<NSObject>& anObject,
                                        const NSRef<NSObject>& aKey);

}  // namespace ZKFoundationExtensions
