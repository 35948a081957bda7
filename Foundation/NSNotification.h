#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSDictionary;
class NSString;

/// Something that has happened: its name, the object that it happened to, and what else there is to
/// say. Immutable.
class NS_EXPORT NSNotification : public NSObject {
 public:
  /// Object and user information may be nil; a nil name raises `NSInvalidArgumentException`.
  NSNotification(const NSRef<NSString>& name, NSRef<NSObject> object, NSRef<NSDictionary> userInfo);
  ~NSNotification() override;

  static NSRef<NSNotification> notificationWithName_object(const NSRef<NSString>& name,
                                                           NSRef<NSObject> object);
  static NSRef<NSNotification> notificationWithName_object_userInfo(const NSRef<NSString>& name,
                                                                    NSRef<NSObject> object,
                                                                    NSRef<NSDictionary> userInfo);

  NSRef<NSString> name() const noexcept;
  NSRef<NSObject> object() const noexcept;
  NSRef<NSDictionary> userInfo() const noexcept;

  /// "NSNotification DocumentDidChange"
  NSRef<NSString> description() const override;
  /// The notification itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSRef<NSString> _name;
  NSRef<NSObject> _object;
  NSRef<NSDictionary> _userInfo;
};
