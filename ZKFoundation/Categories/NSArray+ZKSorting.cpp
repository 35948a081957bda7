#include "ZKFoundation/Categories/NSArray+ZKSorting.h"

namespace {

auto orderingBy(ZKCompareFunction compare, void* context) {
  if (compare == nullptr) NSRaiseNilArgument("compare", "inArraySortedUsingFunction:context:");
  return [=](const NSRef<NSObject>& object, const NSRef<NSObject>& element) {
    return compare(object, element, context);
  };
}

}  // namespace

namespace ZKFoundationExtensions {

NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context) {
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, object,
                                                                orderingBy(compare, context));
}

NSUInteger indexOfObject_identical_inArraySortedUsingFunction_context(const NSRef<NSArray>& array,
                                                                      const NSRef<NSObject>& object,
                                                                      bool identical,
                                                                      ZKCompareFunction compare,
                                                                      void* context) {
  return indexOfObject_identical_inArraySortedUsingFunction(array, object, identical,
                                                            orderingBy(compare, context));
}

void insertObject_inArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                     const NSRef<NSObject>& object,
                                                     ZKCompareFunction compare, void* context) {
  insertObject_inArraySortedUsingFunction(array, object, orderingBy(compare, context));
}

NSRange equalRangeOfObject_inArraySortedUsingFunction_context(const NSRef<NSArray>& array,
                                                              const NSRef<NSObject>& object,
                                                              ZKCompareFunction compare,
                                                              void* context) {
  return equalRangeOfObject_inArraySortedUsingFunction(array, object, orderingBy(compare, context));
}

void insertObject_beforeEqualsInArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                                 const NSRef<NSObject>& object,
                                                                 ZKCompareFunction compare,
                                                                 void* context) {
  insertObject_beforeEqualsInArraySortedUsingFunction(array, object, orderingBy(compare, context));
}

void insertObject_afterEqualsInArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                                const NSRef<NSObject>& object,
                                                                ZKCompareFunction compare,
                                                                void* context) {
  insertObject_afterEqualsInArraySortedUsingFunction(array, object, orderingBy(compare, context));
}

}  // namespace ZKFoundationExtensions
