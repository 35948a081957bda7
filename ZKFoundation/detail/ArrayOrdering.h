#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include <Foundation/NSString.h>
#include <Foundation/detail/Borrowed.h>
#include <Foundation/detail/StableSort.h>
#include <ZKFoundation/Categories/NSArray+ZKOrdering.h>

/// Objects that are to be sorted, and the places where they stood in their new order.
using ZKObjects = std::span<const NSRef<NSObject>>;
using ZKPlaces = std::vector<std::size_t>;

/// Gives the address of the object of a key.
template <class T>
[[nodiscard]] const void* ZKAddress(T* key) {
  return key;
}
template <class T>
[[nodiscard]] const void* ZKAddress(const NSBorrowed<T>& key) {
  return (*key).get();
}

/// Sorts objects by keys, of which one is made of each, and an ordering of two of them.
template <class MakeKey, class Compare>
[[nodiscard]] ZKPlaces ZKSortedPlaces(ZKObjects objects, MakeKey makeKey, Compare compare) {
  std::vector<std::pair<decltype(makeKey(objects.front())), std::size_t>> entries;
  entries.reserve(objects.size());
  for (const auto& object : objects) entries.emplace_back(makeKey(object), entries.size());
  NSStableSort(
      entries, [&](const auto& a, const auto& b) { return compare(a.first, b.first) < 0; },
      [](const auto& entry) { __builtin_prefetch(ZKAddress(entry.first)); });
  ZKPlaces places;
  places.reserve(entries.size());
  for (const auto& entry : entries) places.push_back(entry.second);
  return places;
}

/// Sorts strings by `NSString::compare`. An object that is none raises.
[[nodiscard]] ZK_EXPORT ZKPlaces ZKSortedStrings(ZKObjects objects);

/// Sorts objects by any callable.
template <class Compare>
struct ZKFunctionSort {
  ZKPlaces operator()(ZKObjects objects) {
    return ZKSortedPlaces(
        objects, [](const auto& object) { return NSBorrowed(object.get()); },
        [this](const auto& a, const auto& b) { return ZKSign(std::invoke(compare, *a, *b)); });
  }

  Compare compare;
};

/// Sorts objects by a method, whose class they are asked for once.
template <class Receiver, class Argument, class Method>
class ZKMethodSort {
 public:
  explicit ZKMethodSort(Method method) : _method(method) {
    if (method == nullptr) NSRaiseNilArgument("method", "sortUsingSelector:");
  }

  ZKPlaces operator()(ZKObjects objects) const {
    if constexpr (std::is_same_v<Method, decltype(&NSString::compare)>) {
      if (_method == &NSString::compare) return ZKSortedStrings(objects);
    }
    return ZKSortedPlaces(
        objects,
        [](const auto& object) { return ZKChecked(object.template cast<Receiver>(), object); },
        [method = _method](Receiver* a, Receiver* b) {
          return ZKSign(ZKCompareByMethod<Argument>(*a, method, b));
        });
  }

 private:
  Method _method;
};
template <class Receiver, class Result, class Argument>
ZKMethodSort(Result (Receiver::*)(Argument) const)
    -> ZKMethodSort<Receiver, Argument, Result (Receiver::*)(Argument) const>;
template <class Receiver, class Result, class Argument>
ZKMethodSort(Result (Receiver::*)(Argument))
    -> ZKMethodSort<Receiver, Argument, Result (Receiver::*)(Argument)>;

/// Sorts values by what orders strings, numbers or dates.
struct ZKNaturalSort {
  ZK_EXPORT ZKPlaces operator()(ZKObjects objects) const;
};

/// Sorts objects by their values for a key path, nil first.
template <class Sort>
class ZKKeyPathSort {
 public:
  ZKKeyPathSort(NSRef<NSString> keyPath, Sort sort)
      : _keyPath(std::move(keyPath)), _sort(std::move(sort)) {
    NSCheckArgument("sortUsingKeyPath:", "keyPath", _keyPath);
  }

  ZKPlaces operator()(ZKObjects objects) {
    ZKPlaces places;
    ZKPlaces placesOfValues;
    std::vector<NSRef<NSObject>> values;
    placesOfValues.reserve(objects.size());
    values.reserve(objects.size());
    for (std::size_t place = 0; place < objects.size(); ++place) {
      auto value = objects[place]->valueForKeyPath(_keyPath);
      (value ? placesOfValues : places).push_back(place);
      if (value) values.push_back(std::move(value));
    }
    places.reserve(objects.size());
    for (const std::size_t place : _sort(ZKObjects(values))) {
      places.push_back(placesOfValues[place]);
    }
    return places;
  }

 private:
  NSRef<NSString> _keyPath;
  Sort _sort;
};

template <class Sort>
void ZKSortInPlace(const NSRef<NSMutableArray>& array, Sort sort) {
  NSCheckArgument("sortUsingFunction:context:", "array", array);
  array->arrangeElements(sort);
}

template <class Sort>
[[nodiscard]] NSRef<NSArray> ZKSortedCopy(const NSRef<NSArray>& array, Sort sort) {
  NSCheckArgument("sortedArrayUsingFunction:context:", "array", array);
  NSObjectVector elements = array->elements();
  elements.arrange(sort(elements.view()));
  return NSMake<NSArray>(std::move(elements));
}

namespace ZKFoundationExtensions {

template <class Compare>
void sortUsingFunction(const NSRef<NSMutableArray>& array, Compare compare) {
  ZKSortInPlace(array, ZKFunctionSort<Compare>{std::move(compare)});
}

template <class Compare>
NSRef<NSArray> sortedArrayUsingFunction(const NSRef<NSArray>& array, Compare compare) {
  return ZKSortedCopy(array, ZKFunctionSort<Compare>{std::move(compare)});
}

template <class Method>
void sortUsingSelector(const NSRef<NSMutableArray>& array, Method method) {
  ZKSortInPlace(array, ZKMethodSort(method));
}

template <class Method>
NSRef<NSArray> sortedArrayUsingSelector(const NSRef<NSArray>& array, Method method) {
  return ZKSortedCopy(array, ZKMethodSort(method));
}

template <class Compare>
void sortUsingKeyPath_function(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath,
                               Compare compare) {
  ZKSortInPlace(array, ZKKeyPathSort(keyPath, ZKFunctionSort<Compare>{std::move(compare)}));
}

template <class Compare>
NSRef<NSArray> sortedArrayUsingKeyPath_function(const NSRef<NSArray>& array,
                                                const NSRef<NSString>& keyPath, Compare compare) {
  return ZKSortedCopy(array, ZKKeyPathSort(keyPath, ZKFunctionSort<Compare>{std::move(compare)}));
}

template <class Method>
void sortUsingKeyPath_selector(const NSRef<NSMutableArray>& array, const NSRef<NSString>& keyPath,
                               Method method) {
  ZKSortInPlace(array, ZKKeyPathSort(keyPath, ZKMethodSort(method)));
}

template <class Method>
NSRef<NSArray> sortedArrayUsingKeyPath_selector(const NSRef<NSArray>& array,
                                                const NSRef<NSString>& keyPath, Method method) {
  return ZKSortedCopy(array, ZKKeyPathSort(keyPath, ZKMethodSort(method)));
}

}  // namespace ZKFoundationExtensions
