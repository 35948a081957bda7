#include "Foundation/NSWeakRef.h"

#include <array>
#include <unordered_map>

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace {

// One of many, so that threads whose objects die rarely meet.
struct Shard {
  std::mutex mutex;
  std::unordered_map<const NSObject*, NSRef<NSWeakAnchor>> anchors;
};

Shard& shardOf(const NSObject& object) noexcept {
  static NSNeverDestroyed<std::array<Shard, 64>> shards;
  return (*shards)[std::hash<const NSObject*>()(&object) / alignof(std::max_align_t) % 64];
}

}  // namespace

NSRef<NSWeakAnchor> NSWeakAnchor::of(const NSObject& object) {
  Shard& shard = shardOf(object);
  const std::lock_guard lock(shard.mutex);
  const auto place = shard.anchors.find(&object);
  if (place != shard.anchors.end()) return place->second;
  auto anchor = NSMake<NSWeakAnchor>(object);
  shard.anchors.emplace(&object, anchor);
  object._count.watch();
  return anchor;
}

void NSWeakAnchor::forget(const NSObject& object) noexcept {
  Shard& shard = shardOf(object);
  std::unique_lock lock(shard.mutex);
  const auto place = shard.anchors.find(&object);
  if (place == shard.anchors.end()) return;
  const auto anchor = std::move(place->second);
  shard.anchors.erase(place);
  lock.unlock();
  // A reference that is being counted now finds the count at zero; no later one finds the object.
  const std::lock_guard anchorLock(anchor->_mutex);
  anchor->_object = nullptr;
}

bool NSWeakAnchor::retainObject() const noexcept {
  const std::lock_guard lock(_mutex);
  return _object != nullptr && _object->_count.retainIfAlive();
}

bool NSWeakAnchor::isObjectAlive() const noexcept {
  const std::lock_guard lock(_mutex);
  return _object != nullptr && _object->_count.value() != 0;
}

NSRef<NSString> NSWeakAnchor::description() const {
  if (!retainObject()) return NSMake<NSString>("nil");
  // Objects are never defined const.
  return NSRef<NSObject>::adopt(const_cast<NSObject*>(_object))->description();
}
