#include "Foundation/NSArray.h"

#include <algorithm>
#include <utility>

#include <Foundation/Collections/CollectionWalks.h>
#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSException.h>
#include <Foundation/NSIndexSet.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSPredicate.h>
#include <Foundation/NSString.h>

namespace {

// Elements that are handed in, of which none may be nil.
template <class Objects>
NSObjectVector checkedElements(Objects&& objects) {
  if (std::ranges::find(objects, nullptr) != objects.end()) {
    NSRaiseNilArgument("an element", "initWithObjects:");
  }
  return NSObjectVector(std::forward<Objects>(objects));
}

template <class Predicate>
NSUInteger indexWhere(std::span<const NSRef<NSObject>> objects, Predicate predicate) {
  const auto found = std::ranges::find_if(objects, predicate);
  return found == objects.end() ? NSNotFound : static_cast<NSUInteger>(found - objects.begin());
}

void checkIndexes(const char* operation, const NSRef<NSIndexSet>& indexes, NSUInteger count) {
  if (!indexes) NSRaiseNilArgument("indexes", operation);
  if (indexes->count() != 0) NSCheckIndex(operation, indexes->lastIndex(), count);
}

}  // namespace

NSArray::NSArray(std::span<const NSRef<NSObject>> elements)
    : _elements(checkedElements(elements)) {}

NSArray::NSArray(std::vector<NSRef<NSObject>>&& elements)
    : _elements(checkedElements(std::move(elements))) {}

NSRef<NSObject> NSArray::objectAtIndex(NSUInteger index) const {
  NSCheckIndex("objectAtIndex:", index, count());
  return _elements[index];
}

NSRef<NSArray> NSArray::subarrayWithRange(NSRange range) const {
  NSCheckRange("subarrayWithRange:", range, count());
  return NSMake<NSArray>(NSObjectVector(objects().subspan(range.location, range.length)));
}

NSRef<NSArray> NSArray::objectsAtIndexes(const NSRef<NSIndexSet>& indexes) const {
  checkIndexes("objectsAtIndexes:", indexes, count());
  NSObjectVector result;
  result.reserve(indexes->count());
  for (const NSUInteger index : indexes) result.append(_elements[index]);
  return NSMake<NSArray>(std::move(result));
}

NSUInteger NSArray::indexOfObject(const NSRef<NSObject>& object) const {
  if (!object) return NSNotFound;
  const NSObjectVector held = _elements;
  return indexWhere(held.view(), [&](const auto& element) { return element == object; });
}

NSUInteger NSArray::indexOfObjectIdenticalTo(const NSRef<NSObject>& object) const noexcept {
  return indexWhere(objects(), [&](const auto& element) { return element.is(object); });
}

NSRef<NSString> NSArray::componentsJoinedByString(const NSRef<NSString>& separator) const {
  NSUnitBuffer text;
  // Of its own: what an element answers may change the separator.
  const auto between = separator ? separator->copy() : nullptr;
  NSAppendDescriptions(text, *this, NSViewOf(between));
  return NSMake<NSString>(std::move(text));
}

bool NSArray::isEqualToArray(const NSRef<NSArray>& other) const {
  if (!other || other->count() != count()) return false;
  const NSObjectVector theirs = other->_elements;
  return NSCompareCollections(*this, other, [&](const auto& /*other*/) {
    return std::ranges::equal(*this, theirs.view());
  });
}

bool NSArray::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToArray(other.as<NSArray>());
}

NSUInteger NSArray::hash() const { return NSHashSequence(NSObjectVector(_elements)); }

NSRef<NSString> NSArray::description() const { return NSDescribeObjects(u"(", *this, u")"); }

NSRef<NSObject> NSArray::valueForKey(const NSRef<NSString>& key) const {
  NSObjectVector values;
  values.reserve(count());
  for (const auto& object : *this) {
    auto value = object->valueForKey(key);
    values.append(value ? std::move(value) : NSNull::null());
  }
  return NSMake<NSArray>(std::move(values));
}

void NSArray::enumerateObjectsUsingBlock(
    NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const {
  NSEnumerateWithIndexes(*this, aBlock);
}

NSRef<NSArray> NSArray::filteredArrayUsingPredicate(const NSRef<NSPredicate>& predicate) const {
  if (!predicate) NSRaiseNilArgument("predicate", "filteredArrayUsingPredicate:");
  NSObjectVector filtered;
  for (const auto& object : *this) {
    if (predicate->evaluateWithObject(object)) filtered.append(object);
  }
  return NSMake<NSArray>(std::move(filtered));
}

NSRef<NSMutableArray> NSArray::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableArray>();
}

NSRef<NSObject> NSArray::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableArray>(_elements);
}

void NSMutableArray::addObject(const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", "addObject:");
  changing().append(anObject);
}

void NSMutableArray::addObjectsFromArray(const NSRef<NSArray>& other) {
  if (other) insertElements_atIndex(other->elements(), count());
}

void NSMutableArray::insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index) {
  if (!anObject) NSRaiseNilArgument("anObject", "insertObject:atIndex:");
  if (index > count()) NSRaiseIndexOutOfBounds("insertObject:atIndex:", index, count());
  changing().insert(index, anObject);
}

void NSMutableArray::insertElements_atIndex(NSObjectVector elements, NSUInteger index) {
  if (index > count()) NSRaiseIndexOutOfBounds("insertElements:atIndex:", index, count());
  if (elements.size() != 0) changing().insert(index, std::move(elements));
}

void NSMutableArray::replaceObjectAtIndex_withObject(NSUInteger index,
                                                     const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", "replaceObjectAtIndex:withObject:");
  NSCheckIndex("replaceObjectAtIndex:withObject:", index, count());
  const auto replaced = changing().replace(index, anObject);
}

void NSMutableArray::replaceObjectsAtIndexes_withObjects(const NSRef<NSIndexSet>& indexes,
                                                         const NSRef<NSArray>& objects) {
  constexpr const char* operation = "replaceObjectsAtIndexes:withObjects:";
  checkIndexes(operation, indexes, count());
  if (!objects || objects->count() != indexes->count()) {
    NSException::raise(
        NSInvalidArgumentException,
        std::string("there is not one object for each index (in '") + operation + "')");
  }
  // What is replaced dies when all are in their places.
  const NSObjectVector former = elements();
  const NSObjectVector others = objects->elements();
  std::size_t next = 0;
  for (const NSUInteger index : indexes) {
    const auto replaced = changing().replace(index, others[next++]);
  }
}

void NSMutableArray::removeObjectAtIndex(NSUInteger index) {
  NSCheckIndex("removeObjectAtIndex:", index, count());
  const auto removed = changing().remove(index);
}

void NSMutableArray::removeObjectsAtIndexes(const NSRef<NSIndexSet>& indexes) {
  checkIndexes("removeObjectsAtIndexes:", indexes, count());
  if (indexes->count() == 0) return;
  std::vector<bool> marks(count());
  for (const NSUInteger index : indexes) marks[index] = true;
  const auto removed = changing().removeMarked(marks);
}

void NSMutableArray::removeObject(const NSRef<NSObject>& anObject) {
  removeObjectsWhere([&](const auto& object) { return object == anObject; });
}

void NSMutableArray::removeObjectsWhere(NSBlockRef<bool(const NSRef<NSObject>&)> isRemoved) {
  const auto held = self();
  std::vector<bool> marks;
  marks.reserve(count());
  for (const auto& object : *this) marks.push_back(isRemoved(object));
  if (std::ranges::find(marks, true) == marks.end()) return;
  const auto removed = changing().removeMarked(marks);
}

void NSMutableArray::filterUsingPredicate(const NSRef<NSPredicate>& predicate) {
  if (!predicate) NSRaiseNilArgument("predicate", "filterUsingPredicate:");
  removeObjectsWhere([&](const auto& object) { return !predicate->evaluateWithObject(object); });
}

void NSMutableArray::arrangeElements(
    NSBlockRef<std::vector<std::size_t>(std::span<const NSRef<NSObject>>)> list) {
  const auto held = self();
  const auto places = [&] {
    const auto walk = begin();
    const NSObjectVector lent = elements();
    auto listed = list(lent.view());
    static_cast<void>(walk == end());  // Raises when the array has changed.
    return listed;
  }();
  changing().arrange(places);
}

void NSMutableArray::removeLastObject() {
  if (count() == 0) return;
  const auto removed = changing().remove(count() - 1);
}

void NSMutableArray::removeAllObjects() noexcept {
  if (count() == 0) return;
  const auto removed = std::exchange(changing(), {});
}

NSRef<NSObject> NSMutableArray::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSArray>(elements());
}
