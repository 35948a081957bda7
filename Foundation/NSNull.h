#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// The object that stands for nil in collections. There is one, and it lives as long as the
/// process.
class NS_EXPORT NSNull : public NSObject {
 public:
  static const NSRef<NSNull>& null();

  /// "<null>".
  NSRef<NSString> description() const override;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

  /// Only for `null()`.
  class Key {
    friend class NSNull;
    Key() = default;
  };
  explicit NSNull(Key /*key*/) noexcept {}
  NSNull(const NSNull&) = delete;
};
