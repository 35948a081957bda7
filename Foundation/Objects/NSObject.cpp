#include "Foundation/NSObject.h"

#include <array>
#include <cstdio>
#include <ostream>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSWeakRef.h>

namespace {

[[noreturn]] void raiseNotCopyable(NSClass aClass, const char* operation) {
  NSException::raise(NSInvalidArgumentException,
                     aClass.name()->utf8() + " does not support copying (in '" + operation + "')");
}

}  // namespace

void NSObject::die() const noexcept {
  if (_count.isWatched()) NSWeakAnchor::forget(*this);
  delete this;
}

bool NSObject::isKindOfClass(NSClass aClass) const {
  return objectClass().isSubclassOfClass(aClass);
}

bool NSObject::isEqual(const NSRef<NSObject>& other) const { return other.get() == this; }

NSUInteger NSObject::hash() const { return std::hash<const NSObject*>{}(this); }

NSRef<NSString> NSObject::description() const {
  std::array<char, 24> address;
  std::snprintf(address.data(), address.size(), "%p", static_cast<const void*>(this));
  return NSMake<NSString>('<' + objectClass().name()->utf8() + ": " + address.data() + '>');
}

NSRef<NSObject> NSObject::copyWithZone(NSZone* /*zone*/) const {
  raiseNotCopyable(objectClass(), "copyWithZone:");
}

NSRef<NSObject> NSObject::mutableCopyWithZone(NSZone* /*zone*/) const {
  raiseNotCopyable(objectClass(), "mutableCopyWithZone:");
}

std::ostream& operator<<(std::ostream& out, const NSRef<NSObject>& object) {
  return out << (object ? object->description()->utf8() : "(null)");
}
