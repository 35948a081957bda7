#include "Foundation/detail/ObjectMap.h"

#include <utility>

NSRef<NSObject> NSObjectMap::find(const NSRef<NSObject>& key) const {
  const std::size_t position = _keys.find(key);
  return position == NSObjectSet::notFound ? nullptr : _objects[position];
}

bool NSObjectMap::replace(const NSRef<NSObject>& key, NSUInteger hash,
                          const NSRef<NSObject>& object) {
  const std::size_t position = _keys.find(key, hash);
  if (position == NSObjectSet::notFound) return false;
  const auto former = _objects.replace(position, object);
  _keys.noteMutation();
  return true;
}

void NSObjectMap::append(NSRef<NSObject> key, NSUInteger hash, const NSRef<NSObject>& object) {
  _objects.reserve(size() + 1);
  _keys.appendNew(std::move(key), hash);
  _objects.append(object);
}

void NSObjectMap::remove(const NSRef<NSObject>& key) {
  const std::size_t position = _keys.find(key);
  if (position == NSObjectSet::notFound) return;
  _objects.makeOwn();
  _keys.makeOwn();
  auto object = _objects.remove(size() - 1);
  if (position != _objects.size()) object = _objects.replace(position, std::move(object));
  const auto removedKey = _keys.replaceByLast(position);
}

bool NSObjectMap::isEqual(const NSObjectMap& other) const {
  if (size() != other.size()) return false;
  const NSEntryList entries = list();
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const auto theirs = other.find(entries.keys[k]);
    if (!theirs || entries.objects[k] != theirs) return false;
  }
  return true;
}

void NSObjectMap::removeAll() noexcept {
  const auto removedKeys = _keys.removeAll();
  const auto removedObjects = std::exchange(_objects, {});
}
