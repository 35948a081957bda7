#include "tests/TextModels.h"

#include <numeric>
#include <random>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// Sorted by its mark, which others share, or which is nil below 0.
struct Item : Counted {
  Item(int& aliveCount, int aMark) : Counted(aliveCount), mark(aMark) {}
  NSComparisonResult compare(const NSRef<Item>& other) const { return order(*other); }
  NSComparisonResult order(const Item& other) const noexcept {
    return static_cast<NSComparisonResult>((mark > other.mark) - (mark < other.mark));
  }
  NSRef<NSObject> value() const { return mark < 0 ? nullptr : values(mark); }
  const NSPropertyTable& propertyTable() const override {
    static const NSPropertyTable table({{u"value", &Item::value}, {u"mark", &Item::mark}},
                                       NSObject::propertyTable());
    return table;
  }
  int mark;
  std::function<NSRef<NSObject>(int)> values = [](int value) { return number(value); };
};

int alive = 0;

NSRef<NSMutableArray> items(const std::vector<int>& marks) {
  auto array = NSMake<NSMutableArray>();
  for (const int mark : marks) array->addObject(NSMake<Item>(alive, mark));
  return array;
}

int markOf(const NSRef<NSObject>& object) { return object.cast<Item>()->mark; }

NSInteger compareItems(const NSRef<NSObject>& a, const NSRef<NSObject>& b, void* context) {
  ++*static_cast<int*>(context);
  return NSInteger{markOf(a) - markOf(b)} * (NSIntegerMax / 64);
}

bool areTheSame(const NSRef<NSArray>& a, const std::vector<NSRef<NSObject>>& b) {
  return std::ranges::equal(a->objects(), b, areSame);
}

// Runs of equal and of nil values, long enough for several merges.
TEST(NSArrayOrdering, SortsStablyByEveryKindOfOrdering) {
  expectProperty("a stable sort", [] {
    const auto marks = *rc::gen::scale(
        3, rc::gen::container<std::vector<int>>(rc::gen::inRange(-2, *rc::gen::inRange(0, 40))));
    const auto array = items(marks);
    const auto before = array->copy();
    std::vector<NSRef<NSObject>> expected(array->objects().begin(), array->objects().end());
    auto byValue = expected;
    std::ranges::stable_sort(expected, {}, markOf);
    std::ranges::stable_sort(byValue, {},
                             [](const auto& item) { return std::max(markOf(item), -1); });
    int calls = 0;
    RC_ASSERT(areTheSame(sortedArrayUsingFunction_context(array, compareItems, &calls), expected));
    RC_ASSERT(areTheSame(sortedArrayUsingSelector(array, &Item::compare), expected));
    RC_ASSERT(areTheSame(sortedArrayUsingSelector(array, &Item::order), expected));
    RC_ASSERT(areTheSame(sortedArrayUsingKeyPath(array, u"mark"_ns), expected));
    RC_ASSERT(areTheSame(sortedArrayUsingKeyPath_function(
                             array, u"value.self"_ns,
                             [](const auto& a, const auto& b) {
                               return a.template as<NSNumber>()->compare(b.template as<NSNumber>());
                             }),
                         byValue));
    RC_ASSERT(array->isEqual(before));
    for (const auto sort : std::initializer_list<void (*)(const NSRef<NSMutableArray>&)>{
             [](const auto& it) { sortUsingSelector(it, &Item::compare); },
             [](const auto& it) {
               int count = 0;
               sortUsingFunction_context(it, compareItems, &count);
             },
             [](const auto& it) {
               sortUsingFunction(it, [](auto& a, auto& b) { return markOf(a) - markOf(b); });
             },
             [](const auto& it) { sortUsingKeyPath_selector(it, u"mark"_ns, &NSNumber::compare); },
         }) {
      const auto sorted = array->mutableCopy();
      sort(sorted);
      RC_ASSERT(areTheSame(sorted, expected));
    }
    sortUsingKeyPath(array, u"value"_ns);
    RC_ASSERT(areTheSame(array, byValue));
    RC_ASSERT(static_cast<std::size_t>(alive) == marks.size());
  });
  EXPECT_EQ(alive, 0);
}

TEST(NSArrayOrdering, SortsStringsAsTheyCompare) {
  expectProperty("sorted as compared", [] {
    const auto units = u"abé\u00FC\u0301\u0323\u0430\u4E2D\uAC00\uFB1D\uFF21" +
                       std::u16string{0xD83D, 0xDE00, 0xDBFF, 0};
    const auto beginning = *rc::gen::scale(0.2, textOver(units));
    const auto texts = *rc::gen::scale(
        2, rc::gen::container<std::vector<std::u16string>>(rc::gen::scale(0.2, textOver(units))));
    auto array = NSMake<NSMutableArray>();
    for (const auto& text : texts) array->addObject(NSMake<NSString>(beginning + text));
    std::vector<NSRef<NSObject>> expected(array->objects().begin(), array->objects().end());
    std::ranges::stable_sort(expected, [](const auto& a, const auto& b) {
      return a.template as<NSString>()->compare(b.template as<NSString>()) < 0;
    });
    RC_ASSERT(areTheSame(sortedArrayUsingSelector(array, &NSString::compare), expected));
    sortUsingKeyPath(array, u"self"_ns);
    RC_ASSERT(areTheSame(array, expected));
  });
}

TEST(NSArrayOrdering, ReadsEachKeyOnceAndSortsWhatIsSortedInOnePass) {
  std::vector<int> marks(1000);
  std::iota(marks.begin(), marks.end(), 0);
  const auto array = items(marks);
  int reads = 0;
  for (const auto& item : array) {
    item.cast<Item>()->values = [&reads](int value) { return ++reads, number(-value); };
  }
  sortUsingKeyPath(array, u"value"_ns);
  EXPECT_EQ(reads, 1000);
  EXPECT_EQ(markOf(array->firstObject()), 999);
  sortUsingSelector(array, &Item::order);
  int calls = 0;
  sortUsingFunction_context(array, compareItems, &calls);
  EXPECT_LT(calls, 1000);
}

TEST(NSArrayOrdering, AnOrderingThatFailsMeddlesOrGuessesHarmsNothing) {
  const auto array = items({5, 3, 1, 4, 2, 9, 8, 7, 6, 0, -1, 11});
  const std::vector<NSRef<NSObject>> before(array->objects().begin(), array->objects().end());
  int left = 20;
  EXPECT_THROW(sortUsingFunction(array,
                                 [&](const auto& a, const auto& b) {
                                   if (--left == 0) throw 1;
                                   return markOf(a) - markOf(b);
                                 }),
               int);
  EXPECT_TRUE(areTheSame(array, before));
  std::mt19937 random(7);
  for (int k = 0; k < 1000; ++k) {
    sortUsingFunction(array, [&](const auto&, const auto&) { return int(random() % 3) - 1; });
    ASSERT_TRUE(std::ranges::is_permutation(array->objects(), before, areSame));
  }
  const auto clearing = [&](const auto& a, const auto& b) {
    array->removeAllObjects();
    return markOf(a) - markOf(b);
  };
  expectRaises(NSGenericException, "NSMutableArray was mutated while being enumerated",
               [&] { sortUsingFunction(array, clearing); });
  EXPECT_EQ(array->count(), 0U);
  array->addObjectsFromArray(items({2, 1}));
  EXPECT_EQ(markOf(sortedArrayUsingFunction(array, clearing)->firstObject()), 1);
}

TEST(NSArrayOrdering, RefusesNilAndWhatDoesNotCompare) {
  const auto array = items({1, 2});
  refusesNil("array",
             "sortUsingFunction:context:", [] { sortUsingSelector(nullptr, &Item::compare); });
  refusesNil("compare", "sortUsingFunction:context:", [&] {
    sortUsingFunction_context(array, nullptr, nullptr);
  });
  refusesNil("keyPath", "sortUsingKeyPath:", [&] { sortUsingKeyPath(array, nullptr); });
  NSComparisonResult (Item::*const noMethod)(const NSRef<Item>&) const = nullptr;
  refusesNil("method", "sortUsingSelector:", [&] { sortUsingSelector(array, noMethod); });
  expectRaises(NSInvalidArgumentException,
               "(anonymous namespace)::Item has no order of its own (in 'sortUsingKeyPath:')",
               [&] { sortUsingKeyPath(array, u"self"_ns); });
  array->addObject(u"no item"_ns);
  const char* const reason = "NSString is no (anonymous namespace)::Item";
  expectRaises(NSInvalidArgumentException, reason, [&] { sortUsingSelector(array, &Item::order); });
  EXPECT_EQ(array->count(), 3U);
}

}  // namespace
