#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Passkey.h>

/// The object that stands for nil in collections. There is one, as long as the process lives.
class NS_EXPORT NSNull : public NSObject {
 public:
  [[nodiscard]] static const NSRef<NSNull>& null();

  /// Gives "<null>".
  [[nodiscard]] NSRef<NSString> description() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

  explicit NSNull(NSPasskey<NSNull> /*key*/) noexcept {}
  NSNull(const NSNull&) = delete;
};
