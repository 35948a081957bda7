#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSDictionary;
class NSString;

/// Something that has happened: its name, the object that it happened to, and more. Immutable.
class NS_EXPORT NSNotification : public NSObject {
 public:
  /// Object and user information may be nil; a nil name raises `NSInvalidArgumentException`.
  NSNotification(const NSRef<NSString>& name, NSRef<NSObject> object, NSRef<NSDictionary> userInfo);
  ~NSNotification() override;

  [[nodiscard]] static NSRef<NSNotification> notificationWithName_object(
      const NSRef<NSString>& name, NSRef<NSObject> object);
  [[nodiscard]] static NSRef<NSNotification> notificationWithName_object_userInfo(
      const NSRef<NSString>& name, NSRef<NSObject> object, NSRef<NSDictionary> userInfo);

  [[nodiscard]] NSRef<NSString> name() const noexcept;
  [[nodiscard]] NSRef<NSObject> object() const noexcept;
  [[nodiscard]] NSRef<NSDictionary> userInfo() const noexcept;

  /// "NSNotification DocumentDidChange"
  [[nodiscard]] NSRef<NSString> description() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  friend struct NSAccess;

  NSRef<NSString> _name;
  NSRef<NSObject> _object;
  NSRef<NSDictionary> _userInfo;
};
