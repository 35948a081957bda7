#include "ZKFoundation/Categories/NSObject+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>
#include <Foundation/NSLog.h>

namespace {

NSRef<NSObject> logUndefinedKey(const NSObject& object, const NSRef<NSString>& key) {
  auto text = NSMake<NSMutableString>(u"KVO/Undefined Key: ");
  text->appendString(key ? key : u"(null)"_ns);
  text->appendUnits(u" class:");
  text->appendString(object.objectClass().name());
  NSLog(text);
  return nullptr;
}

// The handler is a plain pointer in the platform's memory: setting it needs nothing that another
// initialiser would have to make first.
[[gnu::constructor]] void registerExtensions() { NSSetUndefinedKeyHandler(&logUndefinedKey); }

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSBundle> bundle(NSClass aClass) { return NSBundle::bundleForClass(aClass); }

NSRef<NSBundle> bundle(const NSRef<NSObject>& object) {
  NSCheckArgument("bundle", "object", object);
  return bundle(object->objectClass());
}

NSRef<NSObject> valueForUndefinedKey(const NSRef<NSObject>& object, const NSRef<NSString>& key) {
  NSCheckArgument("valueForUndefinedKey:", "object", object);
  return object->valueForUndefinedKey(key);
}

}  // namespace ZKFoundationExtensions
