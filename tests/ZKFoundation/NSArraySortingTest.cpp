#include "tests/Support.h"

#include <compare>
#include <deque>
#include <span>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// A key to sort by; others with the same key order the same and are equal.
struct Card : Counted {
  Card(int& aliveCount, int aKey) : Counted(aliveCount), key(aKey) {}
  NSComparisonResult compare(const NSRef<Card>& other) const {
    return static_cast<NSComparisonResult>((key > other->key) - (key < other->key));
  }
  virtual std::strong_ordering order(const Card& other) const noexcept { return key <=> other.key; }
  bool isEqual(const NSRef<NSObject>& other) const override {
    return other.as<Card>() && other.as<Card>()->key == key;
  }
  NSUInteger hash() const override { return static_cast<NSUInteger>(key); }
  int key;
};

int alive = 0;

NSRef<NSMutableArray> cards(const std::vector<int>& keys) {
  auto array = NSMake<NSMutableArray>();
  for (const int key : keys) array->addObject(NSMake<Card>(alive, key));
  return array;
}

std::vector<int> keysOf(const NSRef<NSArray>& array) {
  std::vector<int> keys;
  for (const auto& object : *array) keys.push_back(object.as<Card>()->key);
  return keys;
}

// Compares and notes the keys that it is asked for.
NSInteger compareAndNote(const NSRef<NSObject>& object, const NSRef<NSObject>& element,
                         void* context) {
  const int key = element.as<Card>()->key;
  static_cast<std::vector<int>*>(context)->push_back(key);
  return NSInteger{object.as<Card>()->key - key} * (NSIntegerMax / 16);
}

// The search as its steps are told: halved powers of two and a last look at the place itself.
NSUInteger modelPlace(const std::vector<int>& keys, int key, std::vector<int>& looked) {
  NSUInteger power = 1;
  while (power <= keys.size()) power *= 2;
  NSUInteger low = 0;
  for (NSUInteger step = power / 2;; step /= 2) {
    if (low + step < keys.size()) {
      const int other = keys[low + step];
      looked.push_back(other);
      if (key == other) return low + step;
      if (key > other) low += step + 1;
    }
    if (step == 0) return low;
  }
}

// With every array of up to eight of the keys 1 to 3.
template <class Action>
void forEachKeys(Action action) {
  int count = 1;
  for (std::size_t length = 0; length <= 8; ++length, count *= 3) {
    for (int code = 0; code < count && !testing::Test::HasFailure(); ++code) {
      std::vector<int> keys;
      for (int rest = code; keys.size() < length; rest /= 3) keys.push_back(rest % 3 + 1);
      SCOPED_TRACE(testing::PrintToString(keys));
      action(keys);
    }
  }
}

TEST(NSArraySorting, LooksWhereAModelLooksInEveryShortArray) {
  forEachKeys([&](const std::vector<int>& keys) {
    const auto array = cards(keys);
    for (int key = 0; key <= 4; ++key) {
      const auto object = NSMake<Card>(alive, key);
      std::vector<int> looked, modelLooked;
      const NSUInteger place = modelPlace(keys, key, modelLooked);
      EXPECT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(
                    array, object, compareAndNote, &looked),
                place);
      EXPECT_EQ(looked, modelLooked) << key;
      EXPECT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingSelector(array, object, &Card::order),
                place);
      EXPECT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingFunction(
                    std::deque<int>(keys.begin(), keys.end()), key, std::compare_three_way()),
                place);
      const bool isThere = place < keys.size() && keys[place] == key;
      if (place < keys.size()) modelLooked.push_back(keys[place]);
      looked.clear();
      EXPECT_EQ(indexOfObject_identical_inArraySortedUsingFunction_context(array, object, false,
                                                                           compareAndNote, &looked),
                isThere ? place : NSNotFound);
      EXPECT_EQ(looked, modelLooked) << key;
      EXPECT_EQ(indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, &Card::order),
                NSNotFound);
    }
  });
  EXPECT_EQ(alive, 0);
}

// Values, and objects elsewhere in memory, so few that a cache holds them, and too many for that.
TEST(NSArraySorting, FindsValuesAndObjectsWhereTheModelDoes) {
  for (const std::size_t count : {0U, 1U, 7U, 100U, 5000U, 600000U}) {
    std::vector<int> keys(count);
    // With runs of equal ones, and keys that are missing.
    for (std::size_t k = 0; k < count; ++k) keys[k] = static_cast<int>(k % 5 == 0 ? k + 1 : k) * 2;
    std::vector<const int*> places;
    places.reserve(count);
    for (const int& key : keys) places.push_back(&key);
    const auto byPointer = [](const int* a, const int* b) { return *a <=> *b; };
    const int end = 2 * static_cast<int>(count) + 2;
    for (int key = -1; key <= end; key += std::max(1, end / 500)) {
      std::vector<int> looked;
      const NSUInteger place = modelPlace(keys, key, looked);
      ASSERT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingFunction(keys, key,
                                                                       std::compare_three_way()),
                place)
          << count << ' ' << key;
      const int* const object = &key;
      ASSERT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingFunction(places, object, byPointer),
                place)
          << count << ' ' << key;
    }
  }
}

TEST(NSArraySorting, FindsEveryVeryObjectInEverySortedArray) {
  forEachKeys([&](const std::vector<int>& keys) {
    if (!std::ranges::is_sorted(keys)) return;
    const auto array = cards(keys);
    std::vector<int> looked;
    for (NSUInteger k = 0; k < keys.size(); ++k) {
      const auto object = array->objectAtIndex(k);
      EXPECT_EQ(indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, &Card::compare),
                k);
      EXPECT_EQ(indexOfObject_identical_inArraySortedUsingFunction_context(array, object, true,
                                                                           compareAndNote, &looked),
                k);
      const auto rest = array->mutableCopy();
      removeObjectIdenticalTo_fromArraySortedUsingSelector(rest, object, &Card::order);
      EXPECT_EQ(rest->count() + 1, keys.size());
      EXPECT_FALSE(containsObjectIdenticalTo(rest, object)) << k;
    }
  });
}

TEST(NSArraySorting, FindsRunsAndInsertsAtTheirEnds) {
  const auto compare = std::compare_three_way();
  forEachKeys([&](const std::vector<int>& keys) {
    if (!std::ranges::is_sorted(keys)) return;
    const auto array = cards(keys);
    for (int key = 0; key <= 4; ++key) {
      const auto [first, last] = std::equal_range(keys.begin(), keys.end(), key);
      const NSRange run = {static_cast<NSUInteger>(first - keys.begin()),
                           static_cast<NSUInteger>(last - first)};
      const auto card = NSMake<Card>(alive, key);
      std::vector<int> looked;
      EXPECT_EQ(equalRangeOfObject_inArraySortedUsingFunction(keys, key, compare), run);
      EXPECT_EQ(equalRangeOfObject_inArraySortedUsingSelector(array, card, &Card::order), run);
      EXPECT_EQ(equalRangeOfObject_inArraySortedUsingFunction_context(array, card, compareAndNote,
                                                                      &looked),
                run);
      auto values = std::deque<int>(keys.begin(), keys.end());
      insertObject_beforeEqualsInArraySortedUsingFunction(values, key, compare);
      insertObject_afterEqualsInArraySortedUsingFunction(values, key, compare);
      EXPECT_TRUE(std::ranges::is_sorted(values));
      const auto grown = array->mutableCopy();
      const auto front = NSMake<Card>(alive, key);
      insertObject_afterEqualsInArraySortedUsingSelector(grown, card, &Card::compare);
      insertObject_beforeEqualsInArraySortedUsingSelector(grown, front, &Card::compare);
      EXPECT_TRUE(grown[run.location].is(front) && grown[NSMaxRange(run) + 1].is(card));
      insertObject_afterEqualsInArraySortedUsingFunction_context(grown, card, compareAndNote,
                                                                 &looked);
      insertObject_beforeEqualsInArraySortedUsingFunction_context(grown, front, compareAndNote,
                                                                  &looked);
      EXPECT_TRUE(grown[run.location + 1].is(front) && grown[NSMaxRange(run) + 3].is(card));
    }
  });
  EXPECT_EQ(alive, 0);
}

TEST(NSArraySorting, LooksOneElementPastTheRunForTheVeryObject) {
  // The object itself does not stand where its key belongs.
  const auto array = cards({1, 1, 9, 2});
  const auto object = NSMake<Card>(alive, 2);
  array->replaceObjectAtIndex_withObject(3, object);
  EXPECT_EQ(indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, &Card::order), 3U);
  array->replaceObjectAtIndex_withObject(1, NSMake<Card>(alive, 9));
  EXPECT_EQ(indexOfObjectIdenticalTo_inArraySortedUsingSelector(array, object, &Card::order),
            NSNotFound);
}

TEST(NSArraySorting, RecognisesTheVeryObjectWithoutComparing) {
  const auto array = cards({1, 2, 3});
  const auto never = [](const auto&, const auto&) -> int { throw 1; };
  const auto middle = array->objectAtIndex(2);
  EXPECT_EQ(indexWhereObjectWouldBelong_inArraySortedUsingFunction(array, middle, never), 2U);
  EXPECT_EQ(indexOfObject_identical_inArraySortedUsingFunction(array, middle, true, never), 2U);
  const auto stranger = NSMake<Card>(alive, 2);
  removeObjectIdenticalTo_fromArraySortedUsingSelector(array, stranger, &Card::order);
  EXPECT_EQ(array->count(), 3U);
}

TEST(NSArraySorting, FindsValuesAndPointersInAnyRange) {
  const auto find = [](const auto& range, const auto& object, auto compare) {
    return indexOfObject_identical_inArraySortedUsingFunction(range, object, true, compare);
  };
  const std::vector<int> values = {1, 2, 2, 2, 3};
  for (std::size_t k = 0; k < values.size(); ++k) {
    EXPECT_EQ(find(std::span(values), values[k], std::compare_three_way()), k);
  }
  EXPECT_EQ(find(values, 2, std::compare_three_way()), NSNotFound);

  std::vector<std::unique_ptr<int>> owned;
  const auto compareOwned = [](const auto& a, const auto& b) { return *a - *b; };
  for (const int value : {3, 1, 2}) {
    insertObject_inArraySortedUsingFunction(owned, std::make_unique<int>(value), compareOwned);
  }
  const std::vector<const int*> pointers = {owned[0].get(), owned[1].get(), owned[2].get()};
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_EQ(*owned[k], static_cast<int>(k) + 1);
    EXPECT_EQ(find(owned, pointers[k], compareOwned), k);
    EXPECT_EQ(find(pointers, pointers[k], compareOwned), k);
  }
  const int stranger = 2;
  EXPECT_EQ(find(pointers, &stranger, compareOwned), NSNotFound);
}

TEST(NSArraySorting, InsertsInOrderWithAnyKindOfOrdering) {
  expectProperty("sorted by insertion", [] {
    const auto keys = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 9));
    const std::array arrays = {cards({}), cards({}), cards({})};
    std::vector<NSRef<Card>> plain;
    std::vector<int> looked;
    for (const int key : keys) {
      const auto card = NSMake<Card>(alive, key);
      insertObject_inArraySortedUsingFunction_context(arrays[0], card, compareAndNote, &looked);
      insertObject_inArraySortedUsingSelector(arrays[1], card, &Card::compare);
      insertObject_inArraySortedUsingFunction(arrays[2], card, [](const auto& a, const auto& b) {
        return a.template as<Card>()->key <=> b.template as<Card>()->key;
      });
      insertObject_inArraySortedUsingFunction(plain, card, &Card::compare);
    }
    auto sorted = keys;
    std::ranges::sort(sorted);
    RC_ASSERT(keysOf(arrays[0]) == sorted);
    for (const auto& array : arrays) RC_ASSERT(std::ranges::equal(array->objects(), plain));
  });
  EXPECT_EQ(alive, 0);
}

TEST(NSArraySorting, AnOrderingThatFailsOrMeddlesHarmsNothing) {
  const auto array = cards({1, 2, 3, 4, 5});
  const auto object = NSMake<Card>(alive, 3);
  EXPECT_THROW(insertObject_inArraySortedUsingFunction(
                   array, object, [](const auto&, const auto&) -> int { throw 1; }),
               int);
  EXPECT_EQ(keysOf(array), (std::vector<int>{1, 2, 3, 4, 5}));
  const auto clearing = [&](const auto&, const NSRef<NSObject>& element) {
    array->removeAllObjects();
    return element.as<Card>()->key == 0 ? 0 : 1;
  };
  expectRaises(NSRangeException, "index 5 beyond bounds [0, 0) (in 'insertObject:atIndex:')",
               [&] { insertObject_inArraySortedUsingFunction(array, object, clearing); });
  EXPECT_EQ(alive, 1);
}

TEST(NSArraySorting, RefusesNilAndWhatTheMethodDoesNotTake) {
  const auto array = cards({1});
  const auto object = NSMake<Card>(alive, 3);
  const char* const reason = "anObject is nil (in 'insertObject:atIndex:')";
  expectRaises(NSInvalidArgumentException, reason,
               [&] { insertObject_inArraySortedUsingSelector(array, nullptr, &Card::order); });
  expectRaises(NSInvalidArgumentException, reason, [&] {
    insertObject_inArraySortedUsingFunction_context(array, nullptr, compareAndNote, nullptr);
  });
  expectRaises(NSInvalidArgumentException, reason, [&] {
    insertObject_afterEqualsInArraySortedUsingFunction_context(array, nullptr, compareAndNote,
                                                               nullptr);
  });
  refusesNil("compare", "inArraySortedUsingFunction:context:", [&] {
    insertObject_inArraySortedUsingFunction_context(array, object, nullptr, nullptr);
  });
  NSComparisonResult (Card::*const noMethod)(const NSRef<Card>&) const = nullptr;
  EXPECT_THROW(insertObject_inArraySortedUsingSelector(array, object, noMethod), NSException);
  const auto refused = [&](const NSRef<NSObject>& searched) {
    EXPECT_THROW((void)indexWhereObjectWouldBelong_inArraySortedUsingSelector(array, searched,
                                                                              &Card::compare),
                 NSException);
  };
  refused(nullptr);
  refused(u"no card"_ns);
  array->replaceObjectAtIndex_withObject(0, u"no card"_ns);
  refused(object);
}

}  // namespace
