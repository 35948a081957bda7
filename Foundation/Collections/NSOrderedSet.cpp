#include "Foundation/NSOrderedSet.h"

#include <Foundation/Collections/CollectionWalks.h>
#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>

NSOrderedSet::NSOrderedSet(std::span<const NSRef<NSObject>> elements) {
  // Of its own: an element may change, when it is asked for its hash, what they stand in.
  const NSObjectVector held(elements);
  for (const auto& object : held.view()) {
    if (!object) NSRaiseNilArgument("an element", "initWithObjects:");
    _members.append(object);
  }
}

NSOrderedSet::NSOrderedSet(const NSRef<NSArray>& array) {
  if (!array) return;
  for (const auto& object : *array) _members.append(object);
}

NSRef<NSObject> NSOrderedSet::objectAtIndex(NSUInteger index) const {
  NSCheckIndex("objectAtIndex:", index, count());
  return _members[index];
}

NSUInteger NSOrderedSet::indexOfObject(const NSRef<NSObject>& object) const {
  const std::size_t position = _members.find(object);
  return position == NSObjectSet::notFound ? NSNotFound : position;
}

NSRef<NSArray> NSOrderedSet::array() const { return NSMake<NSArray>(_members.elements()); }

NSRef<NSSet> NSOrderedSet::set() const { return NSMake<NSSet>(_members); }

void NSOrderedSet::enumerateObjectsUsingBlock(
    NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const {
  NSEnumerateWithIndexes(*this, aBlock);
}

bool NSOrderedSet::isEqualToOrderedSet(const NSRef<NSOrderedSet>& other) const {
  return other && NSCompareCollections(*this, other, [&](const auto& /*other*/) {
           return array()->isEqualToArray(other->array());
         });
}

bool NSOrderedSet::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToOrderedSet(other.as<NSOrderedSet>());
}

NSUInteger NSOrderedSet::hash() const {
  return NSHashSequence(NSObjectVector(_members.elements()));
}

NSRef<NSString> NSOrderedSet::description() const { return NSDescribeObjects(u"{(", *this, u")}"); }

NSRef<NSObject> NSOrderedSet::valueForKey(const NSRef<NSString>& key) const {
  return NSMake<NSOrderedSet>(array()->valueForKey(key).as<NSArray>());
}

NSRef<NSMutableOrderedSet> NSOrderedSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableOrderedSet>();
}

NSRef<NSObject> NSOrderedSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableOrderedSet>(_members);
}

void NSMutableOrderedSet::addObject(const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", "addObject:");
  members().append(anObject);
}

void NSMutableOrderedSet::insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index) {
  if (!anObject) NSRaiseNilArgument("anObject", "insertObject:atIndex:");
  if (index > count()) NSRaiseIndexOutOfBounds("insertObject:atIndex:", index, count());
  members().insert(index, anObject);
}

void NSMutableOrderedSet::removeObjectAtIndex(NSUInteger index) {
  NSCheckIndex("removeObjectAtIndex:", index, count());
  const auto removed = members().remove(index);
}

void NSMutableOrderedSet::removeObject(const NSRef<NSObject>& object) {
  const std::size_t position = members().find(object);
  if (position == NSObjectSet::notFound) return;
  const auto removed = members().remove(position);
}

void NSMutableOrderedSet::removeAllObjects() noexcept {
  const auto removed = members().removeAll();
}

NSRef<NSObject> NSMutableOrderedSet::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSOrderedSet>(members());
}
