#include "Foundation/NSObject.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ostream>

#include <pthread.h>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSWeakRef.h>

namespace {

// Where the calling thread's stack begins; it grows downwards.
const void* beginOfStack() noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return nullptr;
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return static_cast<const std::byte*>(lowest) + size;
}

bool isOnStack(const void* object) noexcept {
  thread_local const void* const begin = beginOfStack();
  return std::less_equal<>()(__builtin_frame_address(0), object) && std::less<>()(object, begin);
}

[[noreturn]] void stop(const NSObject& object, const char* what, const char* when) noexcept {
  std::fprintf(stderr, "%s %p was %s %s\n", object.objectClass().name()->utf8().c_str(),
               static_cast<const void*>(&object), what, when);
  std::abort();
}

[[noreturn]] void raiseNotCopyable(NSClass aClass, const char* operation) {
  NSException::raise(NSInvalidArgumentException,
                     aClass.name()->utf8() + " does not support copying (in '" + operation + "')");
}

}  // namespace

void NSObject::die() const noexcept {
  if (_count.isWatched()) {
    NSWeakAnchor::forget(*this);
    NSLiveObjects::forget(*this);
  }
  delete this;
}

void NSObject::checkIsAlive(const char* use) const noexcept {
  if (_count.value() == 0) stop(*this, use, "after its last release");
  if (isOnStack(this)) stop(*this, use, "although it stands on the stack");
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
