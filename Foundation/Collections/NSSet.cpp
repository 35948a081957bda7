#include "Foundation/NSSet.h"

#include <algorithm>

#include <Foundation/Collections/CollectionWalks.h>
#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>
#include <Foundation/NSPredicate.h>
#include <Foundation/NSString.h>

NSSet::NSSet(Elements elements) {
  for (const auto& object : elements) insert("initWithObjects:", object);
}

NSSet::NSSet(const NSRef<NSArray>& array) {
  if (!array) return;
  for (const auto& object : *array) insert("initWithArray:", object);
}

NSSet::NSSet(const NSRef<NSSet>& other) : _members(other ? other->_members : NSObjectSet()) {}

void NSSet::insert(const char* operation, const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", operation);
  _members.append(anObject);
}

NSRef<NSObject> NSSet::member(const NSRef<NSObject>& object) const {
  const std::size_t position = _members.find(object);
  return position == NSObjectSet::notFound ? nullptr : _members[position];
}

NSRef<NSArray> NSSet::allObjects() const { return NSMake<NSArray>(_members.elements()); }

bool NSSet::isSubsetOfSet(const NSRef<NSSet>& other) const {
  return std::ranges::all_of(
      *this, [&](const auto& object) { return other && other->containsObject(object); });
}

void NSSet::enumerateObjectsUsingBlock(
    NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock) const {
  if (!aBlock) NSRaiseNilArgument("aBlock", "enumerateObjectsUsingBlock:");
  bool stop = false;
  for (const auto& object : *this) {
    aBlock(object, stop);
    if (stop) return;
  }
}

NSRef<NSSet> NSSet::filteredSetUsingPredicate(const NSRef<NSPredicate>& predicate) const {
  if (!predicate) NSRaiseNilArgument("predicate", "filteredSetUsingPredicate:");
  auto filtered = NSMake<NSSet>();
  for (const auto& object : *this) {
    if (predicate->evaluateWithObject(object)) filtered->_members.append(object);
  }
  return filtered;
}

bool NSSet::isEqualToSet(const NSRef<NSSet>& other) const {
  return other && other->count() == count() &&
         NSCompareCollections(*this, other,
                              [&](const auto& /*other*/) { return isSubsetOfSet(other); });
}

bool NSSet::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToSet(other.as<NSSet>());
}

NSUInteger NSSet::hash() const { return NSHashSet(NSObjectVector(_members.elements())); }

NSRef<NSString> NSSet::description() const { return NSDescribeObjects(u"{(", *this, u")}"); }

NSRef<NSObject> NSSet::valueForKey(const NSRef<NSString>& key) const {
  auto values = NSMake<NSMutableSet>(count());
  for (const auto& object : *this) {
    if (const auto value = object->valueForKey(key)) values->addObject(value);
  }
  return values;
}

NSRef<NSMutableSet> NSSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableSet>();
}

NSRef<NSObject> NSSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableSet>(_members);
}

void NSMutableSet::removeObject(const NSRef<NSObject>& object) {
  const std::size_t position = members().find(object);
  if (position == NSObjectSet::notFound) return;
  const auto removed = members().replaceByLast(position);
}

void NSMutableSet::removeAllObjects() noexcept { const auto removed = members().removeAll(); }

void NSMutableSet::unionSet(const NSRef<NSSet>& other) {
  if (!other || other.get() == this) return;
  for (const auto& object : *other) members().append(object);
}

NSRef<NSObject> NSMutableSet::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSSet>(members());
}
