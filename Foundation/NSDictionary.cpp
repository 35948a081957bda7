#include "Foundation/NSDictionary.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSException.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <vector>

NSDictionary::NSDictionary(Elements entries) {
  for (const auto& [key, object] : entries) setEntry("initWithObjects:forKeys:", object, key);
}

NSDictionary::NSDictionary(const NSRef<NSDictionary>& other) {
  if (other) _map = other->_map;
}

void NSDictionary::setEntry(const char* operation, const NSRef<NSObject>& anObject,
                            const NSRef<NSObject>& aKey) {
  if (!anObject) NSRaiseNilArgument("anObject", operation);
  if (!aKey) NSRaiseNilArgument("aKey", operation);
  const auto found = _map.find(aKey);
  if (found != _map.end()) {
    found->second = anObject;
  } else {
    _map.emplace(aKey->copy(), anObject);
  }
}

NSRef<NSObject> NSDictionary::objectForKey(const NSRef<NSObject>& key) const {
  const auto found = _map.find(key);
  return found == _map.end() ? nullptr : found->second;
}

NSRef<NSArray> NSDictionary::allKeys() const {
  std::vector<NSRef<NSObject>> keys;
  keys.reserve(count());
  for (const auto& [key, object] : _map) keys.push_back(key);
  return NSMake<NSArray>(std::move(keys));
}

NSRef<NSArray> NSDictionary::allValues() const {
  std::vector<NSRef<NSObject>> values;
  values.reserve(count());
  for (const auto& [key, object] : _map) values.push_back(object);
  return NSMake<NSArray>(std::move(values));
}

bool NSDictionary::isEqualToDictionary(const NSRef<NSDictionary>& other) const {
  if (!other || other->count() != count()) return false;
  return std::ranges::all_of(_map, [&](const auto& entry) {
    const auto found = other->_map.find(entry.first);
    return found != other->_map.end() && NSEqualObjects{}(entry.second, found->second);
  });
}

bool NSDictionary::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToDictionary(other.as<NSDictionary>());
}

NSUInteger NSDictionary::hash() const { return count(); }

NSRef<NSString> NSDictionary::description() const {
  NSUnitBuffer text(u"{");
  for (const auto& [key, object] : _map) {
    if (text.size() > 1) text.append(u"; ");
    text.append(key->description()->view());
    text.append(u" = ");
    text.append(object->description()->view());
  }
  text.append(u"}");
  return NSMake<NSString>(std::move(text));
}

NSRef<NSObject> NSDictionary::valueForKey(const NSRef<NSString>& key) const {
  return objectForKey(key);
}

NSRef<NSDictionary> NSDictionary::copy() const { return copyWithZone(nullptr).as<NSDictionary>(); }

NSRef<NSObject> NSDictionary::copyWithZone(NSZone* /*zone*/) const { return self(); }

NSRef<NSMutableDictionary> NSDictionary::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableDictionary>();
}

NSRef<NSObject> NSDictionary::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableDictionary>(share(this));
}

void NSMutableDictionary::removeObjectForKey(const NSRef<NSObject>& key) {
  // Dies when the dictionary is in order again.
  const auto removed = map().extract(key);
}

NSRef<NSObject> NSMutableDictionary::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSDictionary>(NSRef<NSDictionary>(share(this)));
}
