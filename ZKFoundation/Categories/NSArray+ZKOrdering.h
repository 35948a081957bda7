#pragma once

#include <Foundation/NSArray.h>
#include <ZKFoundation/Categories/NSArray+ZKSorting.h>
#include <ZKFoundation/ZKExport.h>

// Sorting arrays. A mutable array is sorted in place; any array gives a sorted copy. All sorts are
// stable: elements that order the same stay in their order.
//
// An ordering answers as for sorted arrays: compare(a, b) is positive when a belongs after b. It is
// asked about any two elements. Exceptions that it throws pass through, and the array stays as it
// was; one that contradicts itself gives the elements in some order, each once. An ordering that
// changes the array that is being sorted in place raises `NSGenericException` at the end, and the
// array is what the ordering made of it; a sorted copy is one of what the array was at the call.
//
// A nil array raises `NSInvalidArgumentException`, and so does a null function or method.

namespace ZKFoundationExtensions {

/// Sorts the array by any callable that orders two objects.
template <class Compare>
void sortUsingFunction(const NSRef<NSMutableArray>& array, Compare compare);
/// Gives a copy that is sorted by any callable that orders two objects.
template <class Compare>
[[nodiscard]] NSRef<NSArray> sortedArrayUsingFunction(const NSRef<NSArray>& array, Compare compare);

/// Sorts the array by a function, to which the context is passed unchanged.
ZK_EXPORT void sortUsingFunction_context(const NSRef<NSMutableArray>& array,
                                         ZKCompareFunction compare, void* context);
/// Gives a copy that is sorted by a function, to which the context is passed unchanged.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> sortedArrayUsingFunction_context(const NSRef<NSArray>& array,
                                                                        ZKCompareFunction compare,
                                                                        void* context);

/// Sorts the array by a method, such as `&NSString::compare`, that takes another object of its
/// class or of a base. An element of another class raises `NSInvalidArgumentException` before any
/// are compared.
template <class Method>
void sortUsingSelector(const NSRef<NSMutableArray>& array, Method method);
/// Gives a copy that is sorted by a method, as `sortUsingSelector` sorts.
template <class Method>
[[nodiscard]] NSRef<NSArray> sortedArrayUsingSelector(const NSRef<NSArray>& array, Method method);

/// Sorts the array by the elements' values for the keys, joined by ".", each read once. Strings,
/// numbers and dates, all of one kind, order as their `compare` does; nil values come first, and
/// others raise `NSInvalidArgumentException`, as does a nil key path.
ZK_EXPORT void sortUsingKeyPath(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath);
/// Gives a copy that is sorted by values, as `sortUsingKeyPath` sorts.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> sortedArrayUsingKeyPath(const NSRef<NSArray>& array,
                                                               const NSRef<NSString>& keyPath);

/// Sorts the array by the values for a key path, these by a callable. Nil values come first, and
/// are not compared.
template <class Compare>
void sortUsingKeyPath_function(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath,
                               Compare compare);
/// Gives a copy that is sorted by values, as `sortUsingKeyPath_function` sorts.
template <class Compare>
[[nodiscard]] NSRef<NSArray> sortedArrayUsingKeyPath_function(const NSRef<NSArray>& array,
                                                              const NSRef<NSString>& keyPath,
                                                              Compare compare);

/// Sorts the array by the values for a key path, these by a method such as
/// `&NSString::caseInsensitiveCompare`. Nil values come first, and are not compared.
template <class Method>
void sortUsingKeyPath_selector(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath,
                               Method method);
/// Gives a copy that is sorted by values, as `sortUsingKeyPath_selector` sorts.
template <class Method>
[[nodiscard]] NSRef<NSArray> sortedArrayUsingKeyPath_selector(const NSRef<NSArray>& array,
                                                              const NSRef<NSString>& keyPath,
                                                              Method method);

}  // namespace ZKFoundationExtensions

#include <ZKFoundation/detail/ArrayOrdering.h>  // the templates' definitions
