#pragma once

#include <algorithm>
#include <numeric>
#include <random>
#include <unordered_map>
#include <vector>

#include <Foundation/Foundation.h>

// Objects with a number to sort by.

struct Key : NSObject {
  explicit Key(NSInteger aValue) : value(aValue) {}
  NSInteger compare(const Key& other) const { return value - other.value; }
  NSInteger value;
  NSRef<NSObject> partner;
};

inline Key* keyOf(const NSRef<NSObject>& object) { return static_cast<Key*>(object.get()); }

inline NSInteger compareKeys(const NSRef<NSObject>& object, const NSRef<NSObject>& element,
                             void* /*context*/) {
  return keyOf(object)->value - keyOf(element)->value;
}

inline bool isLess(const Key* a, const Key* b) { return a->value < b->value; }

struct Keys {
  std::vector<NSRef<NSObject>> shuffled;
  std::vector<Key*> sorted;
  NSRef<NSArray> array;
};

inline std::vector<NSInteger> shuffledNumbers(std::size_t count) {
  std::vector<NSInteger> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  std::ranges::shuffle(numbers, std::mt19937(7));
  return numbers;
}

// Made in shuffled order: neighbours by value lie anywhere in memory.
inline const Keys& keys(std::size_t count) {
  static std::unordered_map<std::size_t, Keys> made;
  Keys& result = made[count];
  if (!result.shuffled.empty()) return result;
  for (const NSInteger value : shuffledNumbers(count)) {
    result.shuffled.emplace_back(NSMake<Key>(value));
    result.sorted.push_back(keyOf(result.shuffled.back()));
  }
  for (std::size_t k = 0; k < count; ++k) {
    keyOf(result.shuffled[k])->partner = result.shuffled[(k + 1) % count];
  }
  std::ranges::sort(result.sorted, isLess);
  auto array = NSMake<NSMutableArray>();
  for (Key* const key : result.sorted) array->addObject(NSRef<Key>::share(key));
  result.array = array->copy();
  return result;
}
