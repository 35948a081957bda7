#include "Foundation/NSArray.h"

#include "Foundation/NSException.h"
#include "Foundation/NSNull.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <utility>

NSArray::NSArray(std::vector<NSRef<NSObject>> elements) : _objects(std::move(elements)) {
  if (std::ranges::find(_objects, nullptr) != _objects.end()) {
    NSRaiseNilArgument("an element", "initWithObjects:");
  }
}

NSRef<NSObject> NSArray::objectAtIndex(NSUInteger index) const {
  NSCheckIndex("objectAtIndex:", index, count());
  return _objects[index];
}

NSUInteger NSArray::indexOfObject(const NSRef<NSObject>& object) const {
  if (!object) return NSNotFound;
  const auto isEqual = [&](const auto& element) { return NSEqualObjects{}(element, object); };
  const auto found = std::ranges::find_if(_objects, isEqual);
  return found == _objects.end() ? NSNotFound : static_cast<NSUInteger>(found - _objects.begin());
}

NSRef<NSString> NSArray::componentsJoinedByString(const NSRef<NSString>& separator) const {
  NSUnitBuffer text;
  for (const auto& object : _objects) {
    if (&object != _objects.data()) text.append(NSViewOf(separator));
    const auto* const string = dynamic_cast<const NSString*>(object.get());
    text.append(string != nullptr ? string->view() : NSViewOf(object->description()));
  }
  return NSMake<NSString>(std::move(text));
}

bool NSArray::isEqualToArray(const NSRef<NSArray>& other) const {
  return other && std::ranges::equal(_objects, other->_objects, NSEqualObjects{});
}

bool NSArray::isEqual(const NSRef<NSObject>& other) const {
  return other.get() == this || isEqualToArray(other.as<NSArray>());
}

// Equal arrays need equal hashes and nothing more; the ends and the count tell most arrays apart at
// a cost that does not grow with them.
NSUInteger NSArray::hash() const {
  if (_objects.empty()) return 0;
  return count() + 31 * (_objects.front()->hash() + 31 * _objects.back()->hash());
}

NSRef<NSString> NSArray::description() const {
  NSUnitBuffer text(u"(");
  text.append(componentsJoinedByString(u", "_ns)->view());
  text.append(u")");
  return NSMake<NSString>(std::move(text));
}

NSRef<NSObject> NSArray::valueForKey(const NSRef<NSString>& key) const {
  // Of its own: what an element answers may change the array.
  const auto snapshot = copy();
  std::vector<NSRef<NSObject>> values;
  values.reserve(snapshot->count());
  for (const auto& object : *snapshot) {
    auto value = object->valueForKey(key);
    values.push_back(value ? std::move(value) : NSNull::null());
  }
  return NSMake<NSArray>(std::move(values));
}

NSRef<NSArray> NSArray::copy() const { return copyWithZone(nullptr).as<NSArray>(); }

NSRef<NSObject> NSArray::copyWithZone(NSZone* /*zone*/) const { return self(); }

NSRef<NSMutableArray> NSArray::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableArray>();
}

NSRef<NSObject> NSArray::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableArray>(_objects);
}

void NSMutableArray::addObject(const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", "addObject:");
  elements().push_back(anObject);
}

void NSMutableArray::insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index) {
  if (!anObject) NSRaiseNilArgument("anObject", "insertObject:atIndex:");
  if (index > count()) NSRaiseIndexOutOfBounds("insertObject:atIndex:", index, count());
  elements().insert(elements().begin() + static_cast<std::ptrdiff_t>(index), anObject);
}

void NSMutableArray::replaceObjectAtIndex_withObject(NSUInteger index,
                                                     const NSRef<NSObject>& anObject) {
  if (!anObject) NSRaiseNilArgument("anObject", "replaceObjectAtIndex:withObject:");
  NSCheckIndex("replaceObjectAtIndex:withObject:", index, count());
  elements()[index] = anObject;
}

void NSMutableArray::removeObjectAtIndex(NSUInteger index) {
  NSCheckIndex("removeObjectAtIndex:", index, count());
  // Dies when the array is in order again: its destructor may look at it.
  const NSRef<NSObject> removed = std::move(elements()[index]);
  elements().erase(elements().begin() + static_cast<std::ptrdiff_t>(index));
}

void NSMutableArray::removeLastObject() noexcept {
  if (elements().empty()) return;
  const NSRef<NSObject> removed = std::move(elements().back());
  elements().pop_back();
}

void NSMutableArray::removeAllObjects() noexcept {
  const auto removed = std::exchange(elements(), {});
}

NSRef<NSObject> NSMutableArray::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSArray>(std::vector(begin(), end()));
}
