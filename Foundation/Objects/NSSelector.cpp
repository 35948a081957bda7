#include "Foundation/NSSelector.h"

#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace {

std::string classOf(const NSRef<NSObject>& object) {
  return object ? object->objectClass().name()->utf8() : "nil";
}

}  // namespace

NSRef<NSString> NSStringFromSelector(NSSelector aSelector) {
  return NSMake<NSString>(aSelector.name());
}

void NSRaiseUnknownSelector(const char* selector, const NSRef<NSObject>& receiver) {
  NSException::raise(NSInvalidArgumentException,
                     classOf(receiver) + " does not respond to '" + selector + "'");
}

void NSRaiseWrongArgument(const char* selector, const NSRef<NSObject>& argument) {
  NSException::raise(NSInvalidArgumentException,
                     std::string("'") + selector + "' does not take a " + classOf(argument));
}
