#include "Foundation/NSDictionary.h"

#include <utility>

#include <Foundation/Collections/CollectionWalks.h>
#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

NSDictionary::NSDictionary(Elements entries) {
  for (const auto& [key, object] : entries) setEntry("initWithObjects:forKeys:", object, key);
}

NSDictionary::NSDictionary(const NSRef<NSDictionary>& other)
    : _entries(other ? other->_entries : NSObjectMap()) {}

void NSDictionary::setEntry(const char* operation, const NSRef<NSObject>& anObject,
                            const NSRef<NSObject>& aKey) {
  if (!anObject) NSRaiseNilArgument("anObject", operation);
  if (!aKey) NSRaiseNilArgument("aKey", operation);
  const NSUInteger hash = _entries.hashOf(aKey);
  if (_entries.replace(aKey, hash, anObject)) return;
  const NSUInteger before = _entries.mutations().value();
  auto key = aKey->copy();
  const NSUInteger keyHash = key.is(aKey) ? hash : _entries.hashOf(key);
  // A key that enters itself while it is copied is there now.
  const bool isNew =
      _entries.mutations().value() == before || !_entries.replace(key, keyHash, anObject);
  if (isNew) _entries.append(std::move(key), keyHash, anObject);
}

NSRef<NSArray> NSDictionary::allKeys() const { return NSMake<NSArray>(_entries.keys()); }

NSRef<NSArray> NSDictionary::allValues() const { return NSMake<NSArray>(_entries.objects()); }

void NSDictionary::enumerateKeysAndObjectsUsingBlock(
    NSBlockRef<void(const NSRef<NSObject>&, const NSRef<NSObject>&, bool&)> aBlock) const {
  if (!aBlock) NSRaiseNilArgument("aBlock", "enumerateKeysAndObjectsUsingBlock:");
  bool stop = false;
  for (const auto& [key, object] : *this) {
    aBlock(key, object, stop);
    if (stop) return;
  }
}

bool NSDictionary::isEqualToDictionary(const NSRef<NSDictionary>& other) const {
  return other && NSCompareCollections(*this, other, [&](const auto& /*other*/) {
           return _entries.isEqual(other->_entries);
         });
}

bool NSDictionary::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToDictionary(other.as<NSDictionary>());
}

NSUInteger NSDictionary::hash() const { return NSHashEntries(_entries.list()); }

NSRef<NSString> NSDictionary::description() const { return NSDescribeEntries(*this); }

NSRef<NSObject> NSDictionary::valueForKey(const NSRef<NSString>& key) const {
  return objectForKey(key);
}

NSRef<NSMutableDictionary> NSDictionary::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableDictionary>();
}

NSRef<NSObject> NSDictionary::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableDictionary>(share(this));
}

NSRef<NSObject> NSMutableDictionary::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSDictionary>(NSRef<NSDictionary>(share(this)));
}
