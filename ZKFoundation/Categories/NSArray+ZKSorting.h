#pragma once

#include <cstddef>
#include <ranges>
#include <utility>

#include <Foundation/NSArray.h>
#include <ZKFoundation/ZKExport.h>

// Arrays that their owner keeps sorted, by an ordering that is given as a function with a context,
// as any callable or as a method of the objects. With a callable, which may be a pointer to a
// member of the elements, the same works on every random-access range.
//
// An ordering is asked compare(object, element), always with the object that is searched for or
// inserted first: positive when that belongs after the element, 0 when they order the same,
// negative when it belongs before. Only the sign counts; `std::strong_ordering` and its kin will
// do. A method is asked object.compare(element). Exceptions that an ordering throws pass through
// and leave the array as it was. An array that is not sorted, or an ordering that contradicts
// itself, gives some index, never one out of bounds.
//
// A method of the objects, such as `&NSNumber::compare`, takes another object as `const NSRef<T>&`
// or as `const T&`. It is resolved once, on the class that declares it. A comparison in which the
// object or the element is nil or none of the method's class raises `NSInvalidArgumentException`,
// as does a null method, and a null function.

/// A range that can be searched: elements by index, and their number.
template <class Range>
concept ZKSearchableRange =
    std::ranges::random_access_range<Range> && std::ranges::sized_range<Range>;

/// A container that takes an object at any place.
template <class Container, class Object>
concept ZKInsertable = requires(Container& container, Object object) {
  container.insert(container.begin(), std::move(object));
};

/// Orders objects; the context is passed to it unchanged.
using ZKCompareFunction = NSInteger (*)(const NSRef<NSObject>& object,
                                        const NSRef<NSObject>& element, void* context);

namespace ZKFoundationExtensions {

/// Tells where the object belongs in a sorted range: the number of elements that order before it;
/// or, when some order the same (or are the very object), the index of the first of these that the
/// search meets, anywhere in their run. Five elements that order the same as the object give 4.
///
/// The search halves powers of two: with p the smallest above the count, it looks at low + p/2,
/// low + p/4, … low + 1, low + 0, where low is how many it knows to order before the object. That
/// makes log2(p) + 1 comparisons at most, and none in an empty range. Only arrays of plain values,
/// such as numbers, are looked at in other places first, with the same result when they are sorted.
template <ZKSearchableRange Range, class Object, class Compare>
[[nodiscard]] std::size_t indexWhereObjectWouldBelong_inArraySortedUsingFunction(
    const Range& range, const Object& object, Compare compare);

/// Finds the object in a sorted range, or gives `NSNotFound`. Not `identical`: the place where it
/// belongs, if the element there orders the same. `identical`: the place of the very object, which
/// is looked for through the run of elements that order the same, and one element beyond its end.
template <ZKSearchableRange Range, class Object, class Compare>
[[nodiscard]] std::size_t indexOfObject_identical_inArraySortedUsingFunction(const Range& range,
                                                                             const Object& object,
                                                                             bool identical,
                                                                             Compare compare);

/// Inserts the object into a sorted container where it belongs.
template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_inArraySortedUsingFunction(Container& container, Object object, Compare compare);

/// Gives the range of the elements that order the same as the object; when there are none, an empty
/// range where the object belongs. At most 2 log2(n) + 2 comparisons.
template <ZKSearchableRange Range, class Object, class Compare>
[[nodiscard]] NSRange equalRangeOfObject_inArraySortedUsingFunction(const Range& range,
                                                                    const Object& object,
                                                                    Compare compare);

/// Inserts the object into a sorted container before all elements that order the same.
template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_beforeEqualsInArraySortedUsingFunction(Container& container, Object object,
                                                         Compare compare);
/// Inserts the object into a sorted container after all elements that order the same.
template <ZKSearchableRange Container, class Object, class Compare>
requires ZKInsertable<Container, Object>
void insertObject_afterEqualsInArraySortedUsingFunction(Container& container, Object object,
                                                        Compare compare);

/// Tells where the object belongs in a sorted array, as for any range.
template <class Compare>
[[nodiscard]] NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, Compare compare);

/// Finds the object, or the very object, in a sorted array, as in any range.
template <class Compare>
[[nodiscard]] NSUInteger indexOfObject_identical_inArraySortedUsingFunction(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, bool identical, Compare compare);

/// Inserts the object into a sorted array where it belongs. A nil object raises
/// `NSInvalidArgumentException` before it is compared with any.
template <class Compare>
void insertObject_inArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                             const NSRef<NSObject>& object, Compare compare);

/// Gives the range of the elements that order the same as the object, as in any range.
template <class Compare>
[[nodiscard]] NSRange equalRangeOfObject_inArraySortedUsingFunction(const NSRef<NSArray>& array,
                                                                    const NSRef<NSObject>& object,
                                                                    Compare compare);

/// Inserts the object into a sorted array before all elements that order the same. A nil object
/// raises `NSInvalidArgumentException` before it is compared with any.
template <class Compare>
void insertObject_beforeEqualsInArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                                         const NSRef<NSObject>& object,
                                                         Compare compare);
/// Inserts the object into a sorted array after all elements that order the same. A nil object
/// raises `NSInvalidArgumentException` before it is compared with any.
template <class Compare>
void insertObject_afterEqualsInArraySortedUsingFunction(const NSRef<NSMutableArray>& array,
                                                        const NSRef<NSObject>& object,
                                                        Compare compare);

/// Tells where the object belongs in a sorted array, by a function and its context.
[[nodiscard]] ZK_EXPORT NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context);

/// Finds the object, or the very object, in a sorted array, by a function and its context.
[[nodiscard]] ZK_EXPORT NSUInteger indexOfObject_identical_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, bool identical,
    ZKCompareFunction compare, void* context);

/// Inserts the object into a sorted array where it belongs, by a function and its context.
ZK_EXPORT void insertObject_inArraySortedUsingFunction_context(const NSRef<NSMutableArray>& array,
                                                               const NSRef<NSObject>& object,
                                                               ZKCompareFunction compare,
                                                               void* context);

/// Gives the range of the elements that order the same, by a function and its context.
[[nodiscard]] ZK_EXPORT NSRange equalRangeOfObject_inArraySortedUsingFunction_context(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context);

/// Inserts the object before all that order the same, by a function and its context.
ZK_EXPORT void insertObject_beforeEqualsInArraySortedUsingFunction_context(
    const NSRef<NSMutableArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context);
/// Inserts the object after all that order the same, by a function and its context.
ZK_EXPORT void insertObject_afterEqualsInArraySortedUsingFunction_context(
    const NSRef<NSMutableArray>& array, const NSRef<NSObject>& object, ZKCompareFunction compare,
    void* context);

/// Tells where the object belongs in a sorted array, by a method of the objects.
template <class Method>
[[nodiscard]] NSUInteger indexWhereObjectWouldBelong_inArraySortedUsingSelector(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, Method method);

/// Finds the very object in a sorted array, or gives `NSNotFound`.
template <class Method>
[[nodiscard]] NSUInteger indexOfObjectIdenticalTo_inArraySortedUsingSelector(
    const NSRef<NSArray>& array, const NSRef<NSObject>& object, Method method);

/// Inserts the object into a sorted array where it belongs, by a method of the objects.
template <class Method>
void insertObject_inArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                             const NSRef<NSObject>& object, Method method);

/// Gives the range of the elements that order the same, by a method of the objects.
template <class Method>
[[nodiscard]] NSRange equalRangeOfObject_inArraySortedUsingSelector(const NSRef<NSArray>& array,
                                                                    const NSRef<NSObject>& object,
                                                                    Method method);

/// Inserts the object before all that order the same, by a method of the objects.
template <class Method>
void insertObject_beforeEqualsInArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                         const NSRef<NSObject>& object,
                                                         Method method);
/// Inserts the object after all that order the same, by a method of the objects.
template <class Method>
void insertObject_afterEqualsInArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                        const NSRef<NSObject>& object,
                                                        Method method);

/// Removes the very object from a sorted array, if it is there; others that order the same stay.
template <class Method>
void removeObjectIdenticalTo_fromArraySortedUsingSelector(const NSRef<NSMutableArray>& array,
                                                          const NSRef<NSObject>& object,
                                                          Method method);

}  // namespace ZKFoundationExtensions

#include <ZKFoundation/detail/ArraySorting.h>  // the templates' definitions
