#include "Foundation/NSSet.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSException.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <vector>

NSSet::NSSet(Elements elements) {
  for (const auto& object : elements) insert("initWithObjects:", object);
}

NSSet::NSSet(const NSRef<NSArray>& array) {
  if (!array) return;
  for (const auto& object : *array) insert("initWithArray:", object);
}

void NSSet::insert(const char* operation, const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", operation);
  _members.insert(anObject);
}

NSRef<NSObject> NSSet::member(const NSRef<NSObject>& object) const {
  const auto found = _members.find(object);
  return found == _members.end() ? nullptr : *found;
}

NSRef<NSArray> NSSet::allObjects() const {
  return NSMake<NSArray>(std::vector<NSRef<NSObject>>(begin(), end()));
}

bool NSSet::isSubsetOfSet(const NSRef<NSSet>& other) const {
  return std::ranges::all_of(
      _members, [&](const auto& object) { return other && other->containsObject(object); });
}

bool NSSet::isEqualToSet(const NSRef<NSSet>& other) const {
  return other && other->count() == count() && isSubsetOfSet(other);
}

bool NSSet::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToSet(other.as<NSSet>());
}

NSUInteger NSSet::hash() const { return count(); }

NSRef<NSString> NSSet::description() const {
  const std::string members = allObjects()->description()->utf8();
  return NSMake<NSString>("{" + members + "}");
}

NSRef<NSObject> NSSet::valueForKey(const NSRef<NSString>& key) const {
  // Of its own: what a member answers may change the set.
  const auto snapshot = copy();
  auto values = NSMake<NSMutableSet>(snapshot->count());
  for (const auto& object : *snapshot) {
    if (const auto value = object->valueForKey(key)) values->addObject(value);
  }
  return values;
}

NSRef<NSSet> NSSet::copy() const { return copyWithZone(nullptr).as<NSSet>(); }

NSRef<NSObject> NSSet::copyWithZone(NSZone* /*zone*/) const { return self(); }

NSRef<NSMutableSet> NSSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableSet>();
}

NSRef<NSObject> NSSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableSet>(allObjects());
}

void NSMutableSet::unionSet(const NSRef<NSSet>& other) {
  if (other && other.get() != this) members().insert(other->begin(), other->end());
}

NSRef<NSObject> NSMutableSet::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSSet>(allObjects());
}
