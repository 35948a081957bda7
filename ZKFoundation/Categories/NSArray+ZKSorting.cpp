#include "ZKFoundation/Categories/NSArray+ZKSorting.h"

namespace {

class FunctionOrdering {
 public:
  FunctionOrdering(ZKCompareFunction compare, void* context)
      : _compare(compare), _context(context) {
    if (compare == nullptr) NSRaiseNilArgument("compare", "inArraySortedUsingFunction:context:");
  }
  NSInteger operator()(const NSRef<NSObject>& object, const NSRef<NSObject>& element) const {
    return _compare(object, element, _context);
  }

 private:
  ZKCompareFunction _compare;
  void* _context;
};

}  // namespace

namespace ZKFoundationExtensions {

NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context) {
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, object,
                                                                FunctionOrdering(compare, context));
}

NSUInteger indexOfObject_identical_inArraySortedUsingFunction_context(const NSRef<NSArray>& array,
                                                                      const NSRef<NSObject>& object,
                                                                      bool identical,
                                                                      ZKCompareFunction compare,
                                                                      void* context) {
  return indexOfObject_identical_inArraySortedUsingFunction(array, object, identical,
                                                            FunctionOrdering(compare, context));
}

void insertObject_inArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                     const NSRef<NSObject>& object,
                                                     ZKCompareFunction compare, void* context) {
  insertObject_inArraySortedUsingFunction(array, object, FunctionOrdering(compare, context));
}

}  // namespace ZKFoundationExtensions
