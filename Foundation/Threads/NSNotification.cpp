#include "Foundation/NSNotification.h"

#include <utility>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

NSNotification::NSNotification(const NSRef<NSString>& name, NSRef<NSObject> object,
                               NSRef<NSDictionary> userInfo)
    : _object(std::move(object)),
      _userInfo(userInfo ? std::exchange(userInfo, nullptr)->copy() : nullptr) {
  if (!name) NSRaiseNilArgument("name", "notificationWithName:object:userInfo:");
  _name = name->copy();
}

NSNotification::~NSNotification() = default;

NSRef<NSNotification> NSNotification::notificationWithName_object(const NSRef<NSString>& name,
                                                                  NSRef<NSObject> object) {
  return NSMake<NSNotification>(name, std::move(object), nullptr);
}

NSRef<NSNotification> NSNotification::notificationWithName_object_userInfo(
    const NSRef<NSString>& name, NSRef<NSObject> object, NSRef<NSDictionary> userInfo) {
  return NSMake<NSNotification>(name, std::move(object), std::move(userInfo));
}

NSRef<NSString> NSNotification::name() const noexcept { return _name; }
NSRef<NSObject> NSNotification::object() const noexcept { return _object; }
NSRef<NSDictionary> NSNotification::userInfo() const noexcept { return _userInfo; }

NSRef<NSString> NSNotification::description() const {
  return u"NSNotification "_ns->stringByAppendingString(_name);
}
