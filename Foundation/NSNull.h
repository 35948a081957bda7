#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Passkey.h>

/// The object that stands for nil in collections. There is one, and it lives as long as the
/// process.
class NS_EXPORT NSNull : public NSObject {
 public:
  static const NSRef<NSNull>& null();

  /// "<null>".
  NSRef<NSString> description() const override;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

  explicit NSNull(NSPasskey<NSNull> /*key*/) noexcept {}
  NSNull(const NSNull&) = delete;
};
