#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

NSRef<NSMutableArray> numbersTo(int end) {
  auto array = NSMake<NSMutableArray>();
  for (int k = 0; k < end; ++k) array->addObject(number(k));
  return array;
}

TEST(NSArrayExtensions, TransformsEveryElement) {
  const auto array = NSMake<NSMutableArray>({number(1), number(2), number(1)});
  const auto set = NSMake<NSOrderedSet>(array);
  const auto text = [](const NSRef<NSObject>& object) {
    return NSMake<NSArray>({object})->description();
  };
  const auto nothing = [](const NSRef<NSObject>&) { return NSRef<NSObject>(); };
  EXPECT_EQ(transformedArrayUsingTransformator(array, text)->description(), u"((1), (2), (1))");
  EXPECT_EQ(transformedArrayUsingTransformator(array, nothing)->objects()[2], NSNull::null());
  EXPECT_EQ(transformedOrderedSetUsingTransformator(set, text)->description(), u"{((1), (2))}");
  EXPECT_EQ(transformedOrderedSetUsingTransformator(set, nothing)->count(), 1U);
  EXPECT_EQ(transformedArrayUsingTransformator(array, nullptr), nullptr);
  EXPECT_EQ(transformedOrderedSetUsingTransformator(set, nullptr), nullptr);
  const auto meddled = transformedArrayUsingTransformator(array, [&](const auto& object) {
    array->removeAllObjects();
    return object;
  });
  EXPECT_EQ(meddled->description(), u"(1, 2, 1)");
  EXPECT_EQ(transformedArrayUsingTransformator(array, text)->count(), 0U);
}

struct Third : NSObject {};
template <int Number>
struct Kind : std::conditional_t<Number % 3 == 0, Third, NSObject> {};

TEST(NSArrayExtensions, KnowsManyClassesApart) {
  const auto array = []<int... Numbers>(std::integer_sequence<int, Numbers...> /*numbers*/) {
    return NSMake<NSArray>({NSMake<Kind<Numbers>>()...});
  }
  (std::make_integer_sequence<int, 60>());
  const auto found = arrayWithObjectsKindOfClass(array, NSClass::of<Third>());
  EXPECT_EQ(found->count(), 20U);
  for (const auto& object : found) EXPECT_NE(object.as<Third>(), nullptr);
}

TEST(NSArrayExtensions, SelectsByClass) {
  // Numbers and strings of two classes.
  const auto array =
      NSMake<NSMutableArray>({u"a"_ns, number(1), NSMake<NSMutableString>(u"b"), u"c"_ns});
  const auto string = NSClass::of<NSString>();
  EXPECT_EQ(arrayWithObjectsKindOfClass(array, string)->description(), u"(a, b, c)");
  EXPECT_EQ(arrayWithObjectsMemberOfClass(array, string)->description(), u"(a, c)");
  EXPECT_TRUE(containObjectsKindOfClass(array, string));
  EXPECT_TRUE(containObjectsKindOfClass(NSMake<NSArray>({NSMake<NSMutableString>()}), string));
  EXPECT_FALSE(containObjectsKindOfClass(array, NSClass::of<NSArray>()));
  EXPECT_FALSE(containObjectsKindOfClass(NSMake<NSArray>(), NSClass::of<NSObject>()));
}

TEST(NSArrayExtensions, RemovesEqualsOfOtherClassesToo) {
  const auto array =
      NSMake<NSMutableArray>({u"a"_ns, NSMake<NSMutableString>(u"b"), u"b"_ns, number(1), u"c"_ns});
  removeAllObjectsWhichNotMemberOfClass(array, NSClass::of<NSString>());
  EXPECT_EQ(array->description(), u"(a, c)");
  removeAllObjectsWhichNotMemberOfClass(array, NSClass::of<NSNumber>());
  EXPECT_EQ(array->count(), 0U);
}

// Equal by its size to any other; a square wants squares.
struct Shape : NSObject {
  explicit Shape(NSUInteger aSize) : size(aSize) {}
  bool isEqual(const NSRef<NSObject>& other) const override {
    return other.as<Shape>() && other.as<Shape>()->size == size;
  }
  NSUInteger hash() const override { return size; }
  NSUInteger size;
};
struct Square : Shape {
  using Shape::Shape;
  bool isEqual(const NSRef<NSObject>& other) const override {
    return other.as<Square>() && Shape::isEqual(other);
  }
};

TEST(NSArrayExtensions, AsksTheElementsWhetherTheyAreEqualToWhatIsRemoved) {
  const auto shape = NSMake<Shape>(NSUInteger{1});
  const auto square = NSMake<Square>(NSUInteger{1});
  const auto keptSquares = NSMake<NSMutableArray>({shape, square});
  removeAllObjectsWhichNotMemberOfClass(keptSquares, NSClass::of<Square>());
  EXPECT_EQ(keptSquares->firstObject(), square);
  const auto keptShapes = NSMake<NSMutableArray>({square, shape});
  removeAllObjectsWhichNotMemberOfClass(keptShapes, NSClass::of<Shape>());
  EXPECT_EQ(keptShapes->count(), 0U);
}

TEST(NSArrayExtensions, SelectsByValue) {
  const auto path = u"inner.size"_ns;
  const auto row = [](const NSRef<NSObject>& size) {
    const auto inner = NSMake<NSMutableDictionary>();
    if (size) inner->setObject_forKey(size, u"size"_ns);
    return NSMake<NSDictionary>({{u"inner"_ns, inner}});
  };
  const auto array =
      NSMake<NSArray>({row(number(1)), row(nullptr), row(number(2)), row(number(1))});
  const auto matches = [&](const NSRef<NSObject>& matching) {
    return arrayFromArray_forKeyPath_matching(array, path, matching)->count();
  };
  EXPECT_EQ(matches(NSMake<NSNumber>(1.0)), 2U);
  EXPECT_EQ(matches(nullptr), 0U);
  // The matching value is asked, also about nil.
  struct Anything : NSObject {
    bool isEqual(const NSRef<NSObject>& /*other*/) const override { return true; }
  };
  EXPECT_EQ(matches(NSMake<Anything>()), 4U);
  // A key is no path.
  const auto dotted = NSMake<NSArray>({NSMake<NSDictionary>({{path, number(1)}})});
  EXPECT_EQ(arrayFromArray_forKey_matching(dotted, path, number(1))->count(), 1U);
  const auto strings = NSMake<NSArray>({u"ab"_ns, u"c"_ns, u"d"_ns});
  EXPECT_EQ(arrayFromArray_forKey_matching(strings, u"length"_ns, number(1))->description(),
            u"(c, d)");
  EXPECT_EQ(arrayFromArray_forKey_matching(strings, u"none"_ns, nullptr)->count(), 0U);
  EXPECT_EQ(arrayFromArray_forKey_matching(nullptr, path, path)->count(), 0U);
}

TEST(NSArrayExtensions, TellsIdentityFromEquality) {
  const auto element = NSMake<NSMutableString>(u"a");
  const auto array = NSMake<NSArray>({element});
  EXPECT_TRUE(containsObjectIdenticalTo(array, element));
  EXPECT_FALSE(containsObjectIdenticalTo(array, u"a"_ns));
  EXPECT_FALSE(containsObjectIdenticalTo(array, nullptr));
}

TEST(NSArrayExtensions, TakesTheFirstTwentyIndexesBelowTheCount) {
  EXPECT_EQ(arrayFromIndexes(numbersTo(5), NSMake<NSIndexSet>({1, 3, 5, 100}))->description(),
            u"(1, 3)");
  const auto scattered = NSMake<NSMutableIndexSet>();
  for (NSUInteger k = 0; k < 30; ++k) scattered->addIndex(3 * k);
  const auto found = arrayFromIndexes(numbersTo(90), scattered);
  EXPECT_EQ(found->count(), 20U);
  EXPECT_EQ(found->lastObject()->description(), u"57");
  EXPECT_EQ(arrayFromIndexes(numbersTo(5), nullptr)->count(), 0U);
}

TEST(NSArrayExtensions, TurnsTheOrderRound) {
  EXPECT_EQ(reversedArray(NSMake<NSArray>({u"a"_ns, u"b"_ns, u"a"_ns, u"c"_ns}))->description(),
            u"(c, a, b, a)");
  EXPECT_EQ(reversedArray(NSMake<NSArray>())->count(), 0U);
}

TEST(NSArrayExtensions, InsertsTheElementsOfAnArray) {
  const auto array = numbersTo(3);
  insertObjectsFromArray_atIndex(array, NSMake<NSArray>({u"a"_ns, u"b"_ns}), 1);
  insertObjectsFromArray_atIndex(array, nullptr, 99);
  insertObjectsFromArray_atIndex(array, NSMake<NSArray>(), -1);
  insertObjectsFromArray_atIndex(array, array, 5);
  EXPECT_EQ(array->description(), u"(0, a, b, 1, 2, 0, a, b, 1, 2)");
  expectRaises(NSRangeException, "index 11 beyond bounds [0, 10) (in 'insertObject:atIndex:')",
               [&] { insertObjectsFromArray_atIndex(array, array, 11); });
  EXPECT_THROW(insertObjectsFromArray_atIndex(array, array, -1), NSException);
  EXPECT_EQ(array->count(), 10U);
}

TEST(NSIndexSetExtensions, GivesThePartInARange) {
  const auto set = NSMake<NSIndexSet>({1, 2, 3, 6, 9, 10});
  for (const auto& [range, part] : Rows<NSRange, const char*>{{{2, 8}, "(2-3 6 9)"},
                                                              {{4, 2}, "()"},
                                                              {{0, 0}, "()"},
                                                              {{10, NSUIntegerMax}, "(10)"},
                                                              {{3, NSUIntegerMax}, "(3 6 9-10)"},
                                                              {{11, 5}, "()"}}) {
    EXPECT_EQ(indexesInRange(set, range)->description()->utf8(), part) << range;
  }
}

TEST(NSIndexSetExtensions, WritesItsIndexes) {
  const auto set = NSMake<NSIndexSet>({2, 5, 6});
  EXPECT_EQ(stringValueWithSeparator(set, u", "_ns), u"2, 5, 6");
  EXPECT_EQ(stringValueWithSeparator(set, nullptr), u"2(null)5(null)6");
  EXPECT_EQ(stringValueWithSeparator(NSMake<NSIndexSet>(), u", "_ns), u"");
  EXPECT_EQ(stringValueWithSeparator(NSMake<NSIndexSet>(NSNotFound - 1), nullptr),
            u"9223372036854775806");
}

TEST(NSDictionaryExtensions, AddsEntries) {
  const auto source = NSMake<NSDictionary>({{u"a"_ns, number(1)}, {u"b"_ns, number(2)}});
  const auto target = NSMake<NSMutableDictionary>({{u"a"_ns, number(9)}});
  addEntriesFromDictionaryIfAbsent(target, source);
  EXPECT_EQ(target->description(), u"{a = 9; b = 2}");
  addEntriesFromDictionary_withKeys(target, source, NSMake<NSArray>({u"x"_ns, u"a"_ns}));
  EXPECT_EQ(target->description(), u"{a = 1; b = 2}");
  target->removeAllObjects();
  addEntriesFromDictionary_withKeys(target, source, NSMake<NSSet>({u"b"_ns}));
  EXPECT_EQ(target->description(), u"{b = 2}");
  addEntriesFromDictionary_withKeys(target, source, NSRef<NSOrderedSet>());
  addEntriesFromDictionary_withKeys(target, nullptr, NSMake<NSArray>({u"a"_ns}));
  addEntriesFromDictionaryIfAbsent(target, nullptr);
  addEntriesFromDictionaryIfAbsent(target, target);
  EXPECT_EQ(target->count(), 1U);
}

TEST(NSMapTableExtensions, SetsWhatIsAbsent) {
  const auto table = NSMapTable::strongToStrongObjectsMapTable();
  setObjectIfAbsent_forKey(table, number(1), u"k"_ns);
  setObjectIfAbsent_forKey(table, number(2), u"k"_ns);
  setObjectIfAbsent_forKey(table, nullptr, u"k"_ns);
  refusesNil("anObject",
             "setObject:forKey:", [&] { setObjectIfAbsent_forKey(table, nullptr, u"absent"_ns); });
  EXPECT_EQ(table->description(), u"{k = 1}");
}

TEST(NSPointerArrayExtensions, FindsAndRemovesAddresses) {
  int p = 0;
  int q = 0;
  const auto array = zk_pointerArrayWithWeakObjects();
  EXPECT_EQ(lastPointer(array), nullptr);
  EXPECT_FALSE(removePointerIdenticalTo(array, nullptr));
  for (int* const pointer : {&p, &q, &p}) array->addPointer(pointer);
  EXPECT_TRUE(removePointerIdenticalTo(array, &p));
  EXPECT_EQ(lastPointer(array), &q);
  EXPECT_TRUE(containsPointer(array, &p));
  EXPECT_FALSE(containsPointer(array, nullptr));
  array->addPointer(nullptr);
  addPointersFromPointerArray(array, array);
  addPointersFromPointerArray(array, nullptr);
  EXPECT_EQ(array->count(), 6U);
  EXPECT_TRUE(removePointerIdenticalTo(array, nullptr));
  EXPECT_EQ(std::vector<void*>(array->pointers().begin(), array->pointers().end()),
            (std::vector<void*>{&p, &q, nullptr, &p, &q}));
  int alive = 0;
  auto object = NSMake<Counted>(alive);
  array->addPointer(object.get());
  object = nullptr;
  EXPECT_EQ(alive, 0);
}

}  // namespace
