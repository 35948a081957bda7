#include "ZKFoundation/Categories/NSArray+ZKSorting.h"

namespace {

struct FunctionOrdering {
  NSInteger operator()(const NSRef<NSObject>& object, const NSRef<NSObject>& element) const {
    return compare(object, element, context);
  }
  ZKCompareFunction compare;
  void* context;
};

}  // namespace

namespace ZKFoundationExtensions {

NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context) {
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, object,
                                                                FunctionOrdering{compare, context});
}

NSUInteger indexOfObject_identical_inArraySortedUsingFunction_context(const NSRef<NSArray>& array,
                                                                      const NSRef<NSObject>& object,
                                                                      bool identical,
                                                                      ZKCompareFunction compare,
                                                                      void* context) {
  return indexOfObject_identical_inArraySortedUsingFunction(array, object, identical,
                                                            FunctionOrdering{compare, context});
}

void insertObject_inArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                     const NSRef<NSObject>& object,
                                                     ZKCompareFunction compare, void* context) {
  insertObject_inArraySortedUsingFunction(array, object, FunctionOrdering{compare, context});
}

}  // namespace ZKFoundationExtensions
