#include "ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <typeinfo>
#include <utility>
#include <vector>

#include <Foundation/NSException.h>
#include <Foundation/NSPredicate.h>
#include <Foundation/NSString.h>
#include <Foundation/detail/HashIndex.h>
#include <ZKFoundation/Categories/ZKMappedCollection.h>

namespace {

// Tells whether objects are kind of a class. Classes recur: the answers for some are kept.
auto isKindOfClass(NSClass aClass) {
  using Answer = std::pair<const std::type_info*, bool>;
  return [aClass, answers = std::array<Answer, 16>{}](const NSRef<NSObject>& object) mutable {
    const NSClass objectClass = object->objectClass();
    const std::type_info* const type = &objectClass.typeInfo();
    const auto place = reinterpret_cast<std::uintptr_t>(type) / alignof(std::type_info);
    Answer& answer = answers[place % answers.size()];
    if (answer.first != type) answer = {type, objectClass.isSubclassOfClass(aClass)};
    return answer.second;
  };
}

// Objects by their hashes. Unlike in a set, equals of different classes stay apart, and it is the
// others that are asked whether they are equal to these: as `removeObject` asks.
class RemovedObjects {
 public:
  void add(const NSRef<NSObject>& object) {
    const NSUInteger hash = object->hash();
    const auto isLike = [&](const NSRef<NSObject>& other) {
      return other->isMemberOfClass(object->objectClass()) && object == other;
    };
    if (find(hash, isLike)) return;
    _index.insert(_objects.size(), hash);
    _objects.push_back(object);
  }
  [[nodiscard]] bool haveEqualOf(const NSRef<NSObject>& object) const {
    return find(object->hash(), [&](const NSRef<NSObject>& other) { return object == other; });
  }

 private:
  template <class IsWanted>
  [[nodiscard]] bool find(NSUInteger hash, IsWanted isWanted) const {
    return _index.find(hash, [&](std::size_t k) { return isWanted(_objects[k]); }) !=
           NSHashIndex::notFound;
  }

  std::vector<NSRef<NSObject>> _objects;
  NSHashIndex _index;
};

template <class Read>
NSRef<NSMutableArray> elementsMatching(const NSRef<NSArray>& array, const NSRef<NSObject>& matching,
                                       Read valueOf) {
  auto result = NSMake<NSMutableArray>();
  if (!array) return result;
  result->reserve(10);
  for (const auto& object : *array) {
    const NSRef<NSObject> value = valueOf(*object);
    if (matching && matching->isEqual(value)) result->addObject(object);
  }
  return result;
}

}  // namespace

namespace ZKFoundationExtensions {

void makeObjectsPerformBlock(const NSRef<NSArray>& array,
                             NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) {
  NSCheckArgument("makeObjectsPerformBlock:", "array", array);
  if (!aBlock) NSRaiseNilArgument("aBlock", "makeObjectsPerformBlock:");
  array->enumerateObjectsUsingBlock(aBlock);
}

NSRef<NSArray> transformedArrayUsingTransformator(const NSRef<NSArray>& array,
                                                  ZKTransformator transformator) {
  NSCheckArgument("transformedArrayUsingTransformator:", "array", array);
  return ZKMappedCollection<NSArray>(NSObjectVector(array->elements()), transformator);
}

NSRef<NSArray> arrayWithObjectsKindOfClass(const NSRef<NSArray>& array, NSClass aClass) {
  NSCheckArgument("arrayWithObjectsKindOfClass:", "array", array);
  return array->filteredArrayUsingPredicate(NSPredicate::predicateWithBlock(isKindOfClass(aClass)));
}

NSRef<NSArray> arrayWithObjectsMemberOfClass(const NSRef<NSArray>& array, NSClass aClass) {
  NSCheckArgument("arrayWithObjectsMemberOfClass:", "array", array);
  return array->filteredArrayUsingPredicate(NSPredicate::predicateWithBlock(
      [=](const NSRef<NSObject>& object) { return object->isMemberOfClass(aClass); }));
}

bool containObjectsKindOfClass(const NSRef<NSArray>& array, NSClass aClass) {
  NSCheckArgument("containObjectsKindOfClass:", "array", array);
  return std::ranges::any_of(array->objects(), isKindOfClass(aClass));
}

void removeAllObjectsWhichNotMemberOfClass(const NSRef<NSMutableArray>& array, NSClass aClass) {
  NSCheckArgument("removeAllObjectsWhichNotMemberOfClass:", "array", array);
  RemovedObjects removed;
  for (const auto& object : array) {
    if (!object->isMemberOfClass(aClass)) removed.add(object);
  }
  array->removeObjectsWhere([&](const auto& object) { return removed.haveEqualOf(object); });
}

NSRef<NSMutableArray> arrayFromArray_forKey_matching(const NSRef<NSArray>& array,
                                                     const NSRef<NSString>& key,
                                                     const NSRef<NSObject>& matching) {
  return elementsMatching(array, matching,
                          [&](const NSObject& object) { return object.valueForKey(key); });
}

NSRef<NSMutableArray> arrayFromArray_forKeyPath_matching(const NSRef<NSArray>& array,
                                                         const NSRef<NSString>& keyPath,
                                                         const NSRef<NSObject>& matching) {
  return elementsMatching(array, matching,
                          [&](const NSObject& object) { return object.valueForKeyPath(keyPath); });
}

bool containsObjectIdenticalTo(const NSRef<NSArray>& array, const NSRef<NSObject>& object) {
  NSCheckArgument("containsObjectIdenticalTo:", "array", array);
  return array->indexOfObjectIdenticalTo(object) != NSNotFound;
}

NSRef<NSMutableArray> arrayFromIndexes(const NSRef<NSArray>& array,
                                       const NSRef<NSIndexSet>& indexes) {
  NSCheckArgument("arrayFromIndexes:", "array", array);
  auto result = NSMake<NSMutableArray>();
  if (!indexes) return result;
  std::array<NSUInteger, 20> found;
  NSRange range = {0, array->count()};
  const NSUInteger count =
      indexes->getIndexes_maxCount_inIndexRange(found.data(), found.size(), &range);
  for (const NSUInteger index : std::span(found).first(count)) {
    result->addObject(array->objectAtIndex(index));
  }
  return result;
}

NSRef<NSArray> reversedArray(const NSRef<NSArray>& array) {
  NSCheckArgument("reversedArray", "array", array);
  NSObjectVector reversed;
  reversed.reserve(array->count());
  const auto objects = array->objects();
  for (std::size_t k = objects.size(); k > 0; --k) reversed.append(objects[k - 1]);
  return NSMake<NSArray>(std::move(reversed));
}

void insertObjectsFromArray_atIndex(const NSRef<NSMutableArray>& array, const NSRef<NSArray>& other,
                                    NSInteger index) {
  NSCheckArgument("insertObjectsFromArray:atIndex:", "array", array);
  if (!other || other->count() == 0) return;
  const auto place = static_cast<NSUInteger>(index);
  if (place > array->count())
    NSRaiseIndexOutOfBounds("insertObject:atIndex:", place, array->count());
  array->insertElements_atIndex(other->elements(), place);
}

}  // namespace ZKFoundationExtensions
