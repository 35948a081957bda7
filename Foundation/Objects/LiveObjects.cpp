#include "Foundation/detail/LiveObjects.h"

#include <mutex>
#include <typeindex>
#include <unordered_map>
#include <utility>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

namespace {

// The classes are noted when the objects are complete: an object that dies is no longer of its own.
struct Noted {
  std::mutex mutex;
  std::unordered_map<const NSObject*, NSClass> classes;
};

Noted& noted() {
  static NSNeverDestroyed<Noted> result;
  return *result;
}

}  // namespace

std::atomic<bool> NSLiveObjects::_isOn = false;

void NSLiveObjects::add(const NSObject& object) {
  const std::lock_guard lock(noted().mutex);
  noted().classes.insert_or_assign(&object, object.objectClass());
  object._count.watch();
}

void NSLiveObjects::forget(const NSObject& object) noexcept {
  const std::lock_guard lock(noted().mutex);
  noted().classes.erase(&object);
}

void NSObject::setCountsLiveObjects(bool counts) noexcept { NSLiveObjects::setIsOn(counts); }

NSRef<NSDictionary> NSObject::liveObjectCounts() {
  std::unordered_map<std::type_index, std::pair<NSClass, NSUInteger>> counts;
  {
    const std::lock_guard lock(noted().mutex);
    for (const auto& [object, aClass] : noted().classes) {
      ++counts.try_emplace(aClass.typeInfo(), aClass, 0).first->second.second;
    }
  }
  const auto result = NSMake<NSMutableDictionary>();
  for (const auto& [type, counted] : counts) {
    const auto name = counted.first.name();
    // Classes within functions and unnamed namespaces may have the same one.
    const auto others = result->objectForKey(name).as<NSNumber>();
    const NSUInteger before = others ? others->unsignedIntegerValue() : 0;
    result->setObject_forKey(NSMake<NSNumber>(before + counted.second), name);
  }
  return result;
}
