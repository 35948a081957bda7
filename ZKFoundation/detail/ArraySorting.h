#pragma once

#include <algorithm>
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

#include <Foundation/NSException.h>
#include <Foundation/detail/Borrowed.h>
#include <ZKFoundation/Categories/NSArray+ZKSorting.h>

/// Gives 1, 0 or -1 for what an ordering answers; -1 for an unordered pair.
template <class Order>
[[nodiscard]] constexpr int ZKSign(const Order& order) {
  if constexpr (std::convertible_to<Order, std::partial_ordering>) {
    return std::is_eq(order) ? 0 : std::is_gt(order) ? 1 : -1;
  } else {
    static_assert(std::is_signed_v<Order> || std::is_enum_v<Order>,
                  "an ordering answers negative, zero or positive");
    return order == 0 ? 0 : order > 0 ? 1 : -1;
  }
}

/// Gives the address of what a reference or pointer of any kind refers to, null for a value.
template <class T>
[[nodiscard]] auto ZKPointee(const T& reference) {
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
[[nodiscard]] bool ZKIsIdentical(const T& element, const U& object) {
  const auto a = ZKPointee(element);
  const auto b = ZKPointee(object);
  if constexpr (std::is_null_pointer_v<decltype(a)> || std::is_null_pointer_v<decltype(b)>) {
    return std::is_same_v<T, U> &&
           static_cast<const void*>(std::addressof(element)) == std::addressof(object);
  } else if constexpr (requires { a == b; }) {
    return a == b;
  } else {
    return false;
  }
}

/// Makes the compiler keep the branch in which the value is set: along the guessed half of a
/// search, the processor fetches the next elements while it still waits for this one.
inline void ZKKeepBranch(std::size_t& value) { __asm__ volatile("" : "+r"(value)); }

/// Whether a range's elements refer to objects elsewhere in memory.
template <class Range>
concept ZKReferringRange = std::ranges::contiguous_range<Range> &&
    requires(const std::ranges::range_value_t<Range>& element) {
  {*ZKPointee(element)};
  { ZKPointee(element) } -> std::convertible_to<const volatile void*>;
};

/// Whether a range is an array of plain values, which cannot be told apart when they are equal.
template <class Range>
concept ZKPlainRange = std::ranges::contiguous_range<Range> &&
    std::is_trivially_copyable_v<std::ranges::range_value_t<Range>> && !ZKReferringRange<Range>;

/// Fetches the objects of which a search may compare one two steps after this one. Inlined: a
/// compiler takes a call of what only fetches for one without effect.
template <class Elements>
[[gnu::always_inline]] inline void ZKFetchAhead(const Elements& elements, std::size_t count,
                                                std::size_t low, std::size_t step) {
  const std::size_t next = step / 2;
  const std::size_t first = low + next / 2;
  for (const std::size_t place :
       {first, first + next + 1, first + step + 1, first + step + next + 2}) {
    if (place < count) __builtin_prefetch(ZKPointee(elements[static_cast<std::ptrdiff_t>(place)]));
  }
}

/// Counts the values that order before the object, without a branch that depends on one of them,
/// which nobody could guess.
template <class Value, class Object, class Compare>
std::size_t ZKCountBefore(const Value* values, std::size_t count, const Object& object,
                          Compare& compare) {
  if (count == 0) return 0;
  const auto isAfter = [&](const Value& value) {
    return std::size_t{ZKSign(std::invoke(compare, object, value)) > 0};
  };
  const Value* low = values;
  while (count > 1) {
    const std::size_t half = count / 2;
    count -= half;
    __builtin_prefetch(low + count / 2);
    __builtin_prefetch(low + half + count / 2);
    low += half & (0 - isAfter(low[half - 1]));
  }
  return static_cast<std::size_t>(low - values) + isAfter(*low);
}

/// Gives an element cast to the class that a method needs. Where it is none, or nil, raises
/// `NSInvalidArgumentException`.
template <class T>
[[nodiscard]] T* ZKChecked(T* object, const NSRef<NSObject>& element) {
  if (object == nullptr) [[unlikely]] {
    if (!element) NSRaiseNilDereference(typeid(T));
    NSRaiseWrongElement(element, NSClass::of<T>(), NSNotFound);
  }
  return object;
}

/// The class of objects that a method takes as `const NSRef<T>&` or `const T&`.
template <class Argument>
struct ZKArgument {
  using Class = std::remove_cvref_t<Argument>;
  static constexpr bool isReference = false;
};
template <class Argument>
requires requires { typename std::remove_cvref_t<Argument>::element_type; }
struct ZKArgument<Argument> {
  using Class = typename std::remove_cvref_t<Argument>::element_type;
  static constexpr bool isReference = true;
};

/// Calls a method that compares, with another object that is lent to it.
template <class Argument, class Receiver, class Method>
[[gnu::always_inline]] inline auto ZKCompareByMethod(Receiver& receiver, Method method,
                                                     typename ZKArgument<Argument>::Class* other) {
  if constexpr (ZKArgument<Argument>::isReference) {
    return (receiver.*method)(*NSBorrowed(other));
  } else {
    return (receiver.*method)(*other);
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
    auto* const other = element.cast<typename ZKArgument<Argument>::Class>();
    return ZKCompareByMethod<Argument>(*ZKChecked(_receiver, _object), _method,
                                       ZKChecked(other, element));
  }

 private:
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

/// Counts the elements from which the object orders by more than `sign`: with 0 those that order
/// before it, with -1 also those that order the same. Of the first `known` that is known.
template <int sign, class Range, class Object, class Compare>
[[nodiscard]] std::size_t ZKCountOrdered(const Range& range, const Object& object, Compare& compare,
                                         std::size_t known) {
  const auto first = std::ranges::begin(range);
  const auto isCounted = [&](const auto& element) {
    return ZKSign(std::invoke(compare, object, element)) > sign;
  };
  const auto end = std::ranges::partition_point(first + static_cast<std::ptrdiff_t>(known),
                                                first + std::ranges::ssize(range), isCounted);
  return static_cast<std::size_t>(end - first);
}

/// Counts the elements of an array in the same way; 0 for a nil object.
template <int sign, class Compare>
[[nodiscard]] NSUInteger ZKCountOrderedIn(const NSRef<NSMutableArray>& array,
                                          const NSRef<NSObject>& object, Compare& compare) {
  if (!object) return 0;
  const NSObjectVector elements = array->elements();
  return ZKCountOrdered<sign>(elements.view(), object, compare, 0);
}

namespace ZKFoundationExtensions {

template <ZKSearchableRange Range, class Object, class Compare>
std::size_t indexWhereObjectWouldBelong_inArraySortedUsingFunction(const Range& range,
                                                                   const Object& object,
                                                                   Compare compare) {
  const auto elements = std::ranges::begin(range);
  const auto count = static_cast<std::size_t>(std::ranges::size(range));
  if constexpr (ZKPlainRange<Range>) {
    const std::size_t place = ZKCountBefore(std::ranges::data(range), count, object, compare);
    const auto ordersTheSame = [&](std::size_t at) {
      return at < count && ZKSign(std::invoke(compare, object, std::ranges::data(range)[at])) == 0;
    };
    // The only place; in a run of equal ones the one that the steps below meet first.
    if (!ordersTheSame(place) || !ordersTheSame(place + 1)) return place;
  }
  // From so many on, objects are hardly in the nearest cache.
  constexpr std::size_t many = std::size_t{1} << 12U;
  std::size_t low = 0;
  for (std::size_t step = std::bit_ceil(count + 1);;) {
    const bool isLast = step <= 1;
    step /= 2;
    const std::size_t probe = low + step;
    if constexpr (ZKReferringRange<Range>) {
      if (count >= many) ZKFetchAhead(elements, count, low, step);
    }
    if (probe < count) {
      const auto& element = elements[static_cast<std::ptrdiff_t>(probe)];
      if (ZKIsIdentical(element, object)) return probe;
      const int sign = ZKSign(std::invoke(compare, object, element));
      if (sign == 0) return probe;
      if (sign > 0) {
        low = probe + 1;
        ZKKeepBranch(low);
      }
    }
    if (isLast) return low;
  }
}

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
    return ZKSign(std::invoke(compare, object, element)) == 0;
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

template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_inArraySortedUsingFunction(Container& container, Object object, Compare compare) {
  const std::size_t place = indexWhereObjectWouldBelong_inArraySortedUsingFunction(
      std::as_const(container), object, std::ref(compare));
  container.insert(container.begin() + static_cast<std::ptrdiff_t>(place), std::move(object));
}

template <ZKSearchableRange Range, class Object, class Compare>
NSRange equalRangeOfObject_inArraySortedUsingFunction(const Range& range, const Object& object,
                                                      Compare compare) {
  const std::size_t before = ZKCountOrdered<0>(range, object, compare, 0);
  return {before, ZKCountOrdered<-1>(range, object, compare, before) - before};
}

template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_beforeEqualsInArraySortedUsingFunction(Container& container, Object object,
                                                         Compare compare) {
  const std::size_t place = ZKCountOrdered<0>(std::as_const(container), object, compare, 0);
  container.insert(container.begin() + static_cast<std::ptrdiff_t>(place), std::move(object));
}

template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_afterEqualsInArraySortedUsingFunction(Container& container, Object object,
                                                        Compare compare) {
  const std::size_t place = ZKCountOrdered<-1>(std::as_const(container), object, compare, 0);
  container.insert(container.begin() + static_cast<std::ptrdiff_t>(place), std::move(object));
}

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

template <class Compare>
void insertObject_inArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                             const NSRef<NSObject>& object, Compare compare) {
  NSCheckArgument("insertObject:inArraySortedUsingFunction:context:", "array", array);
  const NSUInteger place = object ? indexWhereObjectWouldBelong_inArraySortedUsingFunction(
                                        array, object, std::ref(compare))
                                  : 0;
  array->insertObject_atIndex(object, place);
}

template <class Compare>
NSRange equalRangeOfObject_inArraySortedUsingFunction(const NSRef<NSArray>& array,
                                                      const NSRef<NSObject>& object,
                                                      Compare compare) {
  NSCheckArgument("equalRangeOfObject:inArraySortedUsingFunction:context:", "array", array);
  const NSObjectVector elements = array->elements();
  return equalRangeOfObject_inArraySortedUsingFunction(elements.view(), object, std::ref(compare));
}

template <class Compare>
void insertObject_beforeEqualsInArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                                         const NSRef<NSObject>& object,
                                                         Compare compare) {
  NSCheckArgument("insertObject:beforeEqualsInArraySortedUsingFunction:context:", "array", array);
  array->insertObject_atIndex(object, ZKCountOrderedIn<0>(array, object, compare));
}

template <class Compare>
void insertObject_afterEqualsInArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                                        const NSRef<NSObject>& object,
                                                        Compare compare) {
  NSCheckArgument("insertObject:afterEqualsInArraySortedUsingFunction:context:", "array", array);
  array->insertObject_atIndex(object, ZKCountOrderedIn<-1>(array, object, compare));
}

template <class Method>
NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingSelector(const NSRef<NSArray>& array,
                                                                  const NSRef<NSObject>& object,
                                                                  Method method) {
  NSCheckArgument("indexWhereObjectWouldBelong:inArraySortedUsingSelector:", "array", array);
  return indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, object,
                                                                ZKMethodOrdering(object, method));
}

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

template <class Method>
NSRange equalRangeOfObject_inArraySortedUsingSelector(const NSRef<NSArray>& array,
                                                      const NSRef<NSObject>& object,
                                                      Method method) {
  NSCheckArgument("equalRangeOfObject:inArraySortedUsingSelector:", "array", array);
  return equalRangeOfObject_inArraySortedUsingFunction(array, object,
                                                       ZKMethodOrdering(object, method));
}

template <class Method>
void insertObject_beforeEqualsInArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                         const NSRef<NSObject>& object,
                                                         Method method) {
  NSCheckArgument("insertObject:beforeEqualsInArraySortedUsingSelector:", "array", array);
  insertObject_beforeEqualsInArraySortedUsingFunction(array, object,
                                                      ZKMethodOrdering(object, method));
}

template <class Method>
void insertObject_afterEqualsInArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                        const NSRef<NSObject>& object,
                                                        Method method) {
  NSCheckArgument("insertObject:afterEqualsInArraySortedUsingSelector:", "array", array);
  insertObject_afterEqualsInArraySortedUsingFunction(array, object,
                                                     ZKMethodOrdering(object, method));
}

template <class Method>
void removeObjectIdenticalTo_fromArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                          const NSRef<NSObject>& object,
                                                          Method method) {
  NSCheckArgument("removeObjectIdenticalTo:fromArraySortedUsingSelector:", "array", array);
  const NSUInteger index =
      indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, method);
  // A comparison may have changed the array.
  const auto objects = array->objects();
  if (index < objects.size() && objects[index].is(object)) array->removeObjectAtIndex(index);
}

}  // namespace ZKFoundationExtensions
