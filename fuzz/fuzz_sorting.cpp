#include "fuzz/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// Answers what the input says, whatever it is asked.
struct Whim {
  NSInteger operator()() {
    if (size == 0) return 0;
    return static_cast<NSInteger>(data[next++ % size]) - 85;
  }
  const std::uint8_t* data;
  std::size_t size;
  std::size_t next = 0;
};

NSInteger compare(const NSRef<NSObject>& object, const NSRef<NSObject>& element, void* context) {
  require(object && element);
  return (*static_cast<Whim*>(context))();
}

}  // namespace

// One byte for the number of elements, then what the ordering answers; below 85 is "in front".
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Whim whim = {data + 1, size - 1};
  const auto array = NSMake<NSMutableArray>();
  for (int k = 0; k < data[0]; ++k) array->addObject(NSMake<NSNumber>(k));
  for (int k = 0; k < 16; ++k) {
    const auto object = NSMake<NSNumber>(k);
    const NSUInteger count = array->count();
    require(indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(array, object, compare,
                                                                           &whim) <= count);
    const NSUInteger found = indexOfObject_identical_inArraySortedUsingFunction_context(
        array, object, k % 2 == 0, compare, &whim);
    require(found == NSNotFound || found < count);
    require(k % 2 != 0 || found == NSNotFound);
    insertObject_inArraySortedUsingFunction_context(array, object, compare, &whim);
    require(array->count() == count + 1);
    const NSUInteger place = indexOfObject_identical_inArraySortedUsingFunction_context(
        array, object, true, compare, &whim);
    require(place == NSNotFound || array->objectAtIndex(place) == object);
  }
  return 0;
}
