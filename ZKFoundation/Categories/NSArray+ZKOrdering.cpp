#include "ZKFoundation/Categories/NSArray+ZKOrdering.h"

#include <string>

#include <Foundation/NSDate.h>
#include <Foundation/NSNumber.h>
#include <Foundation/Text/StringSorting.h>

namespace {

auto orderingBy(ZKCompareFunction compare, void* context) {
  if (compare == nullptr) NSRaiseNilArgument("compare", "sortUsingFunction:context:");
  return [=](const NSRef<NSObject>& a, const NSRef<NSObject>& b) { return compare(a, b, context); };
}

}  // namespace

ZKPlaces ZKSortedStrings(ZKObjects objects) {
  std::vector<std::u16string_view> texts;
  texts.reserve(objects.size());
  for (const auto& object : objects) {
    texts.push_back(ZKChecked(object.cast<NSString>(), object)->view());
  }
  return NSSortedPlaces(texts);
}

ZKPlaces ZKNaturalSort::operator()(ZKObjects objects) const {
  if (objects.empty()) return {};
  const auto& first = objects.front();
  if (first.cast<NSString>() != nullptr) return ZKSortedStrings(objects);
  if (first.cast<NSNumber>() != nullptr) return ZKMethodSort(&NSNumber::compare)(objects);
  if (first.cast<NSDate>() != nullptr) return ZKMethodSort(&NSDate::compare)(objects);
  NSException::raise(
      NSInvalidArgumentException,
      first->objectClass().name()->utf8() + " has no order of its own (in 'sortUsingKeyPath:')");
}

namespace ZKFoundationExtensions {

void sortUsingFunction_context(const NSRef<NSMutableArray>& array, ZKCompareFunction compare,
                               void* context) {
  sortUsingFunction(array, orderingBy(compare, context));
}

NSRef<NSArray> sortedArrayUsingFunction_context(const NSRef<NSArray>& array,
                                                ZKCompareFunction compare, void* context) {
  return sortedArrayUsingFunction(array, orderingBy(compare, context));
}

void sortUsingKeyPath(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath) {
  ZKSortInPlace(array, ZKKeyPathSort(keyPath, ZKNaturalSort()));
}

NSRef<NSArray> sortedArrayUsingKeyPath(const NSRef<NSArray>& array,
                                       const NSRef<NSString>& keyPath) {
  return ZKSortedCopy(array, ZKKeyPathSort(keyPath, ZKNaturalSort()));
}

}  // namespace ZKFoundationExtensions
