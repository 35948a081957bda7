#pragma once

#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <ranges>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>
#include <ZKFoundation/ZKExport.h>

// Arrays that their owner keeps sorted, by an ordering that is given as a function with a context,
// as any callable or as a method of the objects. With a callable, which may be a pointer to a
// member of the elements, the same works on every other random-access range, of elements of any
// type.
//
// An ordering is asked compare(object, element), always with the object that is searched for or
// inserted first: positive when that belongs behind the element, 0 when they order the same,
// negative when it belongs in front. Only the sign counts; `std::strong_ordering` and its kin will
// do. A method is asked object.compare(element). Exceptions that an ordering throws pass through
// and leave the array as it was. An array that is not sorted, or an ordering that contradicts
// itself, gives some index, never one out of bounds.

template <class Range>
concept ZKSearchableRange =
    std::ranges::random_access_range<Range> && std::ranges::sized_range<Range>;

/// An ordering of objects with its context, which is handed through unchanged.
using ZKCompareFunction = NSInteger (*)(const NSRef<NSObject>& object,
                                        const NSRef<NSObject>& element, void* context);

/// 1, 0 or -1 for what an ordering answers; -1 for an unordered pair.
template <class Order>
constexpr int ZKSignOfOrder(const Order& order) {
  if constexpr (std::convertible_to<Order, std::partial_ordering>) {
    return std::is_eq(order) ? 0 : std::is_gt(order) ? 1 : -1;
  } else {
    static_assert(std::is_signed_v<Order> || std::is_enum_v<Order>,
                  "an ordering answers negative, zero or positive");
    return order == 0 ? 0 : order > 0 ? 1 : -1;
  }
}

/// The object that a reference or pointer of any kind refers to, or null for a value.
template <class T>
auto ZKReferredObject(const T& reference) {
  if constexpr (std::is_pointer_v<T>) {
    return reference;
  } else if constexpr (requires { *reference.get(); }) {
    return reference.get();
  } else {
    return nullptr;
  }
}

/// Whether an element of a range and an object are the very same: one object for references and
/// pointers, one place in memory for values.
template <class T, class U>
bool ZKIsIdentical(const T& element, const U& object) {
  const auto a = ZKReferredObject(element);
  const auto b = ZKReferredObject(object);
  if constexpr (std::is_null_pointer_v<decltype(a)> || std::is_null_pointer_v<decltype(b)>) {
    return std::is_same_v<T, U> &&
           static_cast<const void*>(std::addressof(element)) == std::addressof(object);
  } else if constexpr (requires { a == b; }) {
    return a == b;
  } else {
    return false;
  }
}

/// The ordering by a method of the object that is searched for, found once for all comparisons.
template <class Receiver, class Argument, class Method>
class ZKMethodOrdering {
 public:
  ZKMethodOrdering(const NSRef<NSObject>& object, Method method)
      : _object(object), _receiver(object.cast<Receiver>()), _method(method) {
    if (method == nullptr) NSRaiseNilArgument("method", "inArraySortedUsingSelector:");
  }

  auto operator()(const NSRef<NSObject>& /*object*/, const NSRef<NSObject>& element) const {
    using Plain = std::remove_cvref_t<Argument>;
    if constexpr (requires { typename Plain::element_type; }) {
      // Lent for the call, without a count of its own.
      using Other = typename Plain::element_type;
      struct Lent {
        NSRef<Other> reference;
        ~Lent() { static_cast<void>(reference.leak()); }
      };
      const Lent other{NSRef<Other>::adopt(checked(element.cast<Other>()))};
      return (checked(_receiver)->*_method)(other.reference);
    } else {
      return (checked(_receiver)->*_method)(*checked(element.cast<Plain>()));
    }
  }

 private:
  template <class T>
  static T* checked(T* object) {
    if (object == nullptr) [[unlikely]] {
      NSRaiseNilDereference(typeid(T));
    }
    return object;
  }

  NSRef<NSObject> _object;
  Receiver* _receiver;
  Method _method;
};
template <class Receiver, class Result, class Argument>
ZKMethodOrdering(const NSRef<NSObject>&, Result (Receiver::*)(Argument) const)
    -> ZKMethodOrdering<Receiver, Argument, Result (Receiver::*)(Argument) const>;
template <class Receiver, class Result, class Argument>
ZKMethodOrdering(const NSRef<NSObject>&, Result (Receiver::*)(Argument))
    -> ZKMethodOrdering<Receiver, Argument, Result (Receiver::*)(Argument)>;

namespace ZKFoundationExtensions {

/// Where the object belongs in a sorted range: the number of elements that order before it; or,
/// when some order the same (or are the very object), the index of the first of these that the
/// search meets, anywhere in their run. Five elements that order the same as the object give 4.
///
/// The search halves powers of two: with p the smallest above the count, it looks at low + p/2,
/// low + p/4, … low + 1, low + 0, where low is how many it knows to order before the object. That
/// makes log2(p) + 1 comparisons at most, and none in an empty range.
template <ZKSearchableRange Range, class Object, class Compare>
std::size_t indexWhereObjectWouldBelong_inArraySortedUsingFunction(const Range& range,
                                                                   const Object& object,
                                                                   Compare compare) {
  const auto elements = std::ranges::begin(range);
  const auto count = static_cast<std::size_t>(std::ranges::size(range));
  std::size_t low = 0;
  for (std::size_t step = std::bit_ceil(count + 1);;) {
    const bool isLast = step <= 1;
    step /= 2;
    const std::size_t probe = low + step;
    if (probe < count) {
      const auto& element = elements[static_cast<std::ptrdiff_t>(probe)];
      if (ZKIsIdentical(element, object)) return probe;
      const int sign = ZKSignOfOrder(std::invoke(compare, object, element));
      if (sign == 0) return probe;
      if (sign > 0) {
        low = probe + 1;
        // Keeps this a branch: along the guessed half, the processor fetches the next elements
        // while it still waits for this one.
        __asm__ volatile("" : "+r"(low));
      }
    }
    if (isLast) return low;
  }
}

/// Where the object is in a sorted range, or `NSNotFound`. Not `identical`: the place where it
/// belongs, if the element there orders the same. `identical`: the place of the very object, which
/// is looked for through the run of elements that order the same, and one element beyond its end.
template <ZKSearchableRange Range, class Object, class Compare>
std::size_t indexOfObject_identical_inArraySortedUsingFunction(const Range& range,
                                                               const Object& object, bool identical,
                                                               Compare compare) {
  const auto elements = std::ranges::begin(range);
  const auto count = static_cast<std::size_t>(std::ranges::size(range));
  const auto isIt = [&](std::size_t index) {
    return ZKIsIdentical(elements[static_cast<std::ptrdiff_t>(index)], object);
  };
  const auto ordersTheSame = [&](std::size_t index) {
    const auto& element = elements[static_cast<std::ptrdiff_t>(index)];
    return ZKSignOfOrder(std::invoke(compare, object, element)) == 0;
  };
  const std::size_t place =
      indexWhereObjectWouldBelong_inArraySortedUsingFunction(range, object, std::ref(compare));
  if (place == count) return NSNotFound;
  if (!identical) return ordersTheSame(place) ? place : NSNotFound;
  for (std::size_t index = place;; --index) {
    if (isIt(index)) return index;
    if (!ordersTheSame(index) || index == 0) break;
  }
  for (std::size_t index = place + 1; index < count; ++index) {
    if (isIt(index)) return index;
    if (!ordersTheSame(index)) break;
  }
  return NSNotFound;
}

/// Inserts the object into a sorted container where it belongs.
template <ZKSearchableRange Container, class Object, class Compare>
requires requires(Container& container, Object object) {
  container.insert(container.begin(), std::move(object));
}
void insertObject_inArraySortedUsingFunction(Container& container, Object object, Compare compare) {
  const std::size_t place = indexWhereObjectWouldBelong_inArraySortedUsingFunction(
      std::as_const(container), object, std::ref(compare));
  container.insert(container.begin() + static_cast<std::ptrdiff_t>(place), std::move(object));
}

// The same on arrays of objects.

template <class Compare>
NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction(const NSRef<NSArray>& array,
                                                                  const NSRef<NSObject>& object,
                                                                  Compare compare) {
  NSCheckArgument("indexWhereObjectWouldBelong:inArraySortedUsingFunction:context:", "array",
                  array);
  // Of its own: the comparison may change the array.
  const NSObjectVector elements = array->elements();
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(elements.view(), object,
                                                                std::ref(compare));
}

template <class Compare>
NSUInteger indexOfObject_identical_inArraySortedUsingFunction(const NSRef<NSArray>& array,
                                                              const NSRef<NSObject>& object,
                                                              bool identical, Compare compare) {
  NSCheckArgument("indexOfObject:identical:inArraySortedUsingFunction:context:", "array", array);
  const NSObjectVector elements = array->elements();
  return indexOfObject_identical_inArraySortedUsingFunction(elements.view(), object, identical,
                                                            std::ref(compare));
}

/// Inserts the object where it belongs. A nil object raises `NSInvalidArgumentException` before it
/// is compared with any.
template <class Compare>
void insertObject_inArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                             const NSRef<NSObject>& object, Compare compare) {
  NSCheckArgument("insertObject:inArraySortedUsingFunction:context:", "array", array);
  const NSUInteger place = object ? indexWhereObjectWouldBelong_inArraySortedUsingFunction(
                                        array, object, std::ref(compare))
                                  : 0;
  array->insertObject_atIndex(object, place);
}

/// With a function and its context. A null function raises `NSInvalidArgumentException`.
ZK_EXPORT NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context);
ZK_EXPORT NSUInteger indexOfObject_identical_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, bool identical,
    ZKCompareFunction compare, void* context);
ZK_EXPORT void insertObject_inArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                               const NSRef<NSObject>& object,
                                                               ZKCompareFunction compare,
                                                               void* context);

/// With a method of the objects, such as `&NSNumber::compare`: one that takes another object as
/// `const NSRef<T>&` or as `const T&`. It is resolved once, on the class that declares it. A
/// comparison in which the object or the element is nil or none of the method's class raises
/// `NSInvalidArgumentException`, as does a null method.
template <class Method>
NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingSelector(const NSRef<NSArray>& array,
                                                                  const NSRef<NSObject>& object,
                                                                  Method method) {
  NSCheckArgument("indexWhereObjectWouldBelong:inArraySortedUsingSelector:", "array", array);
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, object,
                                                                ZKMethodOrdering(object, method));
}

/// The index of the very object, or `NSNotFound`.
template <class Method>
NSUInteger indexOfObjectIdenticalTo_inArraySortedUsingSelector(const NSRef<NSArray>& array,
                                                               const NSRef<NSObject>& object,
                                                               Method method) {
  NSCheckArgument("indexOfObjectIdenticalTo:inArraySortedUsingSelector:", "array", array);
  return indexOfObject_identical_inArraySortedUsingFunction(array, object, true,
                                                            ZKMethodOrdering(object, method));
}

template <class Method>
void insertObject_inArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                             const NSRef<NSObject>& object, Method method) {
  NSCheckArgument("insertObject:inArraySortedUsingSelector:", "array", array);
  insertObject_inArraySortedUsingFunction(array, object, ZKMethodOrdering(object, method));
}

/// Removes the very object, and does nothing when it is not there; others that order the same or
/// are equal stay.
template <class Method>
void removeObjectIdenticalTo_fromArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                          const NSRef<NSObject>& object,
                                                          Method method) {
  NSCheckArgument("removeObjectIdenticalTo:fromArraySortedUsingSelector:", "array", array);
  const NSUInteger index =
      indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, method);
  // A comparison may have changed the array.
  const auto objects = array->objects();
  if (index < objects.size() && objects[index] == object) array->removeObjectAtIndex(index);
}

}  // namespace ZKFoundationExtensions
