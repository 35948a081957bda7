#include "Foundation/NSCoder.h"

#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace {

[[noreturn]] void raiseWrongDirection(const NSObject& coder, const char* operation) {
  NSException::raise(NSInvalidArgumentException, std::string("an ") +
                                                     coder.objectClass().name()->utf8() +
                                                     " cannot do it (in '" + operation + "')");
}

}  // namespace

NSCoding::~NSCoding() = default;

void NSCoder::encodeBool_forKey(bool /*value*/, const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "encodeBool:forKey:");
}
void NSCoder::encodeInteger_forKey(NSInteger /*value*/, const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "encodeInteger:forKey:");
}
void NSCoder::encodeDouble_forKey(double /*value*/, const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "encodeDouble:forKey:");
}
void NSCoder::encodeObject_forKey(const NSRef<NSObject>& /*object*/,
                                  const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "encodeObject:forKey:");
}
bool NSCoder::containsValueForKey(const NSRef<NSString>& /*key*/) const {
  raiseWrongDirection(*this, "containsValueForKey:");
}
bool NSCoder::decodeBoolForKey(const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "decodeBoolForKey:");
}
NSInteger NSCoder::decodeIntegerForKey(const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "decodeIntegerForKey:");
}
double NSCoder::decodeDoubleForKey(const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "decodeDoubleForKey:");
}
NSRef<NSObject> NSCoder::decodeObjectForKey(const NSRef<NSString>& /*key*/) {
  raiseWrongDirection(*this, "decodeObjectForKey:");
}

void NSCoder::raiseWrongClass(const NSObject& object, NSClass wanted, const NSRef<NSString>& key) {
  std::string reason = "value for key '";
  reason.append(key->utf8()).append("' is a ").append(object.objectClass().name()->utf8());
  reason.append(", not a ").append(wanted.name()->utf8());
  NSException::raise(NSInvalidUnarchiveOperationException, reason);
}
