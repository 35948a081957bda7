#include "tests/Support.h"

#include <map>
#include <set>

namespace {

TEST(NSCollection, RaisesForIndexesBeyondBoundsAndChangesNothing) {
  const auto array = NSMake<NSMutableArray>({u"a"_ns, u"b"_ns});
  const auto pointers = NSMake<NSPointerArray>();
  pointers->addPointer(nullptr);
  pointers->addPointer(nullptr);
  const Rows<int, std::string, std::function<void()>> rows = {
      {2, "objectAtIndex:", [&] { (void)array->objectAtIndex(2); }},
      {2, "objectAtIndex:", [&] { (void)array[2]; }},
      {2, "objectAtIndex:", [&] { (void)NSMake<NSOrderedSet>(array)[2]; }},
      {2, "characterAtIndex:", [] { (void)u"ab"_ns[2]; }},
      {3, "insertObject:atIndex:", [&] { array->insertObject_atIndex(u"x"_ns, 3); }},
      {2, "replaceObjectAtIndex:withObject:",
       [&] { array->replaceObjectAtIndex_withObject(2, u"x"_ns); }},
      {2, "removeObjectAtIndex:", [&] { array->removeObjectAtIndex(2); }},
      {2, "objectsAtIndexes:", [&] { (void)array->objectsAtIndexes(NSMake<NSIndexSet>(2)); }},
      {2, "removeObjectsAtIndexes:",
       [&] {
         array->removeObjectsAtIndexes(NSMake<NSIndexSet>({0, 2}));
       }},
      {2, "replaceObjectsAtIndexes:withObjects:",
       [&] {
         array->replaceObjectsAtIndexes_withObjects(NSMake<NSIndexSet>({0, 2}), array);
       }},
      {2, "removePointerAtIndex:", [&] { pointers->removePointerAtIndex(2); }},
  };
  for (const auto& [index, operation, action] : rows) {
    std::ostringstream reason;
    reason << "index " << index << " beyond bounds [0, 2) (in '" << operation << "')";
    expectRaises(NSRangeException, reason.view(), action);
  }
  EXPECT_EQ(array->description(), u"(a, b)");
  EXPECT_EQ(pointers->count(), 2U);
}

TEST(NSCollection, RaisesForNil) {
  const auto array = NSMake<NSMutableArray>({u"a"_ns});
  const auto entries = NSMake<NSMutableDictionary>();
  const Rows<std::string, std::string, std::function<void()>> rows = {
      {"anObject", "addObject:", [&] { array->addObject(nullptr); }},
      {"anObject", "insertObject:atIndex:", [&] { array->insertObject_atIndex(nullptr, 0); }},
      {"anObject", "replaceObjectAtIndex:withObject:",
       [&] { array->replaceObjectAtIndex_withObject(0, nullptr); }},
      {"an element", "initWithObjects:", [] { (void)NSMake<NSArray>({nullptr}); }},
      {"anObject", "addObject:", [] { NSMake<NSMutableSet>()->addObject(nullptr); }},
      {"anObject", "setObject:forKey:", [&] { entries->setObject_forKey(nullptr, u"k"_ns); }},
      {"aKey", "setObject:forKey:", [&] { entries->setObject_forKey(u"o"_ns, nullptr); }},
      {"aKey",
       "setObject:forKey:", [] { NSMake<NSMapTable>()->setObject_forKey(u"o"_ns, nullptr); }},
      {"indexes", "objectsAtIndexes:", [&] { (void)array->objectsAtIndexes(nullptr); }},
      {"predicate", "filterUsingPredicate:", [&] { array->filterUsingPredicate(nullptr); }},
      {"block",
       "predicateWithBlock:", [] { (void)NSPredicate::predicateWithBlock(NSPredicate::Block()); }},
      {"aBlock", "enumerateRangesUsingBlock:",
       [] { NSMake<NSIndexSet>()->enumerateRangesUsingBlock(nullptr); }},
  };
  for (const auto& [argument, operation, action] : rows) {
    refusesNil(argument, operation, action);
  }
}

TEST(NSArray, IsReadByIndexesAndRanges) {
  const auto array = NSMake<NSMutableArray>({u"a"_ns, u"b"_ns, u"c"_ns});
  EXPECT_EQ(array[1], u"b"_ns);
  EXPECT_EQ((*array)[2], u"c"_ns);
  EXPECT_EQ(NSMake<NSOrderedSet>(array)[0], u"a"_ns);
  EXPECT_EQ(u"xyz"_ns[1], u'y');
  EXPECT_EQ(array->subarrayWithRange({1, 2})->description(), u"(b, c)");
  EXPECT_EQ(array->subarrayWithRange({3, 0})->count(), 0U);
  expectRaises(NSRangeException, "range {2, 2} beyond bounds [0, 3) (in 'subarrayWithRange:')",
               [&] {
                 (void)array->subarrayWithRange({2, 2});
               });
  expectRaises(NSInvalidArgumentException, "NSArray is nil where an object is needed",
               [] { (void)NSRef<NSArray>()[0]; });
}

TEST(NSArray, EditsInPlaceAndFindsByEquality) {
  const auto array = NSMake<NSMutableArray>();
  EXPECT_EQ(array->firstObject(), nullptr);
  array->removeLastObject();
  for (const int value : {1, 2, 2, 4}) array->addObject(number(value));
  array->replaceObjectAtIndex_withObject(0, number(3));
  array->removeLastObject();
  EXPECT_EQ(array->description(), u"(3, 2, 2)");
  array->addObject(NSMake<NSDictionary>({{u"in"_ns, array}, {u"set"_ns, NSMake<NSSet>({array})}}));
  EXPECT_EQ(array->description(), u"(3, 2, 2, {in = (…); set = {((…))}})");
  array->removeLastObject();
  const auto changed = array->mutableCopy();
  const auto outer = NSMake<NSIndexSet>({0, 2});
  changed->replaceObjectsAtIndexes_withObjects(outer, NSMake<NSArray>({number(7), number(8)}));
  EXPECT_EQ(changed->description(), u"(7, 2, 8)");
  EXPECT_EQ(changed->objectsAtIndexes(outer)->description(), u"(7, 8)");
  expectRaises(NSInvalidArgumentException,
               "there is not one object for each index (in 'replaceObjectsAtIndexes:withObjects:')",
               [&] { changed->replaceObjectsAtIndexes_withObjects(outer, array); });
  changed->removeObjectsAtIndexes(outer);
  EXPECT_EQ(changed->description(), u"(2)");
  EXPECT_EQ(array->indexOfObject(NSMake<NSNumber>(2.0)), 1U);
  EXPECT_EQ(array->indexOfObject(nullptr), NSNotFound);
  EXPECT_TRUE(array->containsObject(array->lastObject()));
  EXPECT_FALSE(array->containsObject(u"3"_ns));
}

// Insertions and removals anywhere, with copies that are taken on the way and go on as they were.
template <class Collection>
void behavesAsAVector() {
  const auto collection = NSMake<Collection>();
  std::vector<int> model;
  std::vector<std::pair<NSRef<NSObject>, std::string>> copies;
  const auto edits = *rc::gen::container<std::vector<std::pair<int, unsigned>>>(
      rc::gen::pair(rc::gen::inRange(0, 12), rc::gen::arbitrary<unsigned>()));
  int next = 0;
  for (const auto& [kind, place] : edits) {
    const std::size_t index = kind < 2 ? 0 : kind < 4 ? model.size() : place % (model.size() + 1);
    if (kind < 9) {
      collection->insertObject_atIndex(number(next), index);
      if constexpr (std::same_as<Collection, NSMutableOrderedSet>) {
        collection->addObject(number(next));
        collection->insertObject_atIndex(number(next), 0);
      }
      model.insert(model.begin() + static_cast<std::ptrdiff_t>(index), next++);
    } else if (index < model.size()) {
      collection->removeObjectAtIndex(index);
      model.erase(model.begin() + static_cast<std::ptrdiff_t>(index));
    }
    if (kind == 8) copies.emplace_back(collection->copy(), collection->description()->utf8());
  }
  RC_ASSERT(collection->count() == model.size());
  for (std::size_t k = 0; k < model.size(); ++k) {
    RC_ASSERT(collection->objectAtIndex(k)->isEqual(number(model[k])));
    RC_ASSERT(collection->indexOfObject(number(model[k])) == k);
  }
  for (const auto& [copy, text] : copies) RC_ASSERT(copy->description()->utf8() == text);
  const auto last = collection->copy();
  RC_ASSERT(last->copy() == last);
  RC_ASSERT(last->isEqual(collection) && last->hash() == collection->hash());
  RC_ASSERT(last->mutableCopy()->firstObject() == last->firstObject());
  collection->addObject(u"another"_ns);
  RC_ASSERT(!last->isEqual(collection));
}

TEST(NSCollection, BehavesAsAVector) {
  expectProperty("an array", [] { behavesAsAVector<NSMutableArray>(); });
  expectProperty("a set without equals", [] { behavesAsAVector<NSMutableOrderedSet>(); });
}

TEST(NSOrderedSet, KeepsTheOrderInWhichItIsMade) {
  const auto set = NSMake<NSMutableOrderedSet>({u"b"_ns, u"a"_ns, u"b"_ns});
  EXPECT_EQ(set->description(), u"{(b, a)}");
  EXPECT_EQ(set->array()->description(), u"(b, a)");
  EXPECT_EQ(set->set(), NSMake<NSSet>({u"a"_ns, u"b"_ns}));
  EXPECT_FALSE(set->isEqual(NSMake<NSOrderedSet>({u"a"_ns, u"b"_ns})));
  set->removeObject(u"b"_ns);
  EXPECT_EQ(set, NSMake<NSOrderedSet>(NSMake<NSArray>({u"a"_ns, u"a"_ns})));
  EXPECT_EQ(set->valueForKey(u"length"_ns)->description(), u"{(1)}");
  EXPECT_PRED2(areSame, set->lastObject(), set->firstObject());
}

TEST(NSArray, ReleasesEachElementOnce) {
  int alive = 0;
  auto array = NSMake<NSMutableArray>();
  for (int k = 0; k < 9; ++k)
    array->insertObject_atIndex(NSMake<Counted>(alive), array->count() / 2);
  array->addObjectsFromArray(array);
  array->insertElements_atIndex(array->elements(), 3);
  EXPECT_EQ(array->count(), 36U);
  auto copy = array->copy();
  array->removeObject(array->firstObject());
  EXPECT_EQ(array->count(), 32U);
  array->removeObjectAtIndex(0);
  EXPECT_EQ(alive, 9);
  copy = nullptr;
  EXPECT_EQ(alive, 8);
  array->removeAllObjects();
  EXPECT_EQ(alive, 0);
}

TEST(NSArray, SlidesAndMakesRoom) {
  const auto array = NSMake<NSMutableArray>();
  for (int k = 0; k < 2000; ++k) {
    array->reserve(array->count() + 1);
    array->addObject(number(k));
    if (k % 3 != 0) array->removeObjectAtIndex(0);
  }
  EXPECT_EQ(array->count(), 667U);
  EXPECT_EQ(array->firstObject(), number(1333));
  EXPECT_THROW(array->reserve(NSUIntegerMax), std::bad_alloc);
}

TEST(NSArray, MayChangeWhileAnotherThreadReadsItsCopy) {
  const auto array = NSMake<NSMutableArray>();
  for (int round = 0; round < 100; ++round) {
    array->addObject(number(round));
    const std::jthread reader(
        [copy = array->copy(), round] { EXPECT_EQ(copy->lastObject(), number(round)); });
    array->insertObject_atIndex(number(-1), 0);
    array->removeObjectAtIndex(0);
  }
  EXPECT_EQ(array->count(), 100U);
}

TEST(NSDictionary, BehavesAsAMap) {
  expectProperty("the same entries as a std::map", [] {
    std::map<int, int> model;
    const auto dictionary = NSMake<NSMutableDictionary>();
    const auto edits = *rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(0, 8), rc::gen::inRange(-2, 8)));
    for (const auto& [key, value] : edits) {
      if (value < 0) {
        model.erase(key);
        dictionary->removeObjectForKey(number(key));
      } else {
        model[key] = value;
        dictionary->setObject_forKey(number(value), number(key));
      }
    }
    RC_ASSERT(dictionary->count() == model.size());
    RC_ASSERT(dictionary->allKeys()->count() == model.size());
    for (const auto& [key, object] : *dictionary) {
      const auto found = model.find(key.as<NSNumber>()->intValue());
      RC_ASSERT(found != model.end() && object->isEqual(number(found->second)));
    }
    const auto copy = dictionary->copy();
    RC_ASSERT(copy->isEqual(dictionary) && copy->hash() == dictionary->hash());
    RC_ASSERT(copy->mutableCopy()->isEqual(dictionary->mutableCopy()));
    const NSRef<NSObject> first = model.empty() ? u"key"_ns : copy->allKeys()->objectAtIndex(0);
    dictionary->setObject_forKey(u"new"_ns, first);
    RC_ASSERT(!copy->isEqual(dictionary));
  });
}

TEST(NSDictionary, CopiesItsKeys) {
  const auto key = NSMake<NSMutableString>(u"k");
  const auto dictionary = NSMake<NSDictionary>({{key, u"v"_ns}, {key, u"w"_ns}});
  key->appendUnits(u"!");
  EXPECT_EQ(dictionary->description(), u"{k = w}");
  EXPECT_EQ(dictionary->objectForKey(key), nullptr);
  EXPECT_EQ(dictionary->objectForKey(nullptr), nullptr);
  EXPECT_EQ(dictionary->valueForKey(u"k"_ns), u"w"_ns);
}

TEST(NSDictionary, HasOneEntryForAKeyThatEntersItselfWhileItIsCopied) {
  struct Key : NSObject {
    bool isEqual(const NSRef<NSObject>& other) const override { return other.as<Key>() != nullptr; }
    NSUInteger hash() const override { return 1; }
    NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override {
      if (std::exchange(entersItself, false)) entered->setObject_forKey(u"inner"_ns, self());
      return self();
    }
    NSMutableDictionary* entered = nullptr;
    mutable bool entersItself = true;
  };
  const auto dictionary = NSMake<NSMutableDictionary>();
  const auto key = NSMake<Key>();
  key->entered = dictionary.get();
  dictionary->setObject_forKey(u"outer"_ns, key);
  EXPECT_EQ(dictionary->allValues()->description(), u"(outer)");
}

TEST(NSSet, BehavesAsASet) {
  expectProperty("the same members as a std::set", [] {
    const auto edits = *rc::gen::container<std::vector<std::pair<bool, int>>>(
        rc::gen::pair(rc::gen::arbitrary<bool>(), rc::gen::inRange(0, 8)));
    std::set<int> model;
    const auto set = NSMake<NSMutableSet>(NSUInteger{20});
    for (const auto& [adds, value] : edits) {
      adds ? void(model.insert(value)) : void(model.erase(value));
      adds ? set->addObject(number(value)) : set->removeObject(number(value));
      RC_ASSERT(set->count() == model.size());
    }
    for (int value = 0; value < 8; ++value) {
      RC_ASSERT((set->member(number(value)) != nullptr) == model.contains(value));
    }
    const auto upper = NSMake<NSSet>({number(4), number(5), number(6), number(7)});
    RC_ASSERT(set->isSubsetOfSet(upper) == (model.lower_bound(4) == model.begin()));
    RC_ASSERT(set->isEqual(NSMake<NSSet>(set->allObjects())));
    RC_ASSERT(set->copy()->isEqual(set) && set->copy()->hash() == set->hash());
    RC_ASSERT(set->mutableCopy()->isEqual(set));
    set->unionSet(upper);
    model.insert({4, 5, 6, 7});
    RC_ASSERT(set->count() == model.size());
  });
}

// Two that hold each other are compared while one of them counts as equal, which it is not.
TEST(NSSet, ComparesMembersThatContainThemselves) {
  const auto filled = [](int first) {
    auto array = NSMake<NSMutableArray>();
    for (int k = 0; k < 40; ++k) array->addObject(number(first + k));
    return array;
  };
  const auto a = filled(0), b = filled(0), c = filled(100), d = filled(100);
  for (const auto& [outer, inner] : {std::pair(a, c), {b, d}, {c, a}, {d, b}}) {
    outer->replaceObjectAtIndex_withObject(20, inner);
  }
  const auto members = [](std::initializer_list<NSRef<NSMutableArray>> last) {
    auto set = NSMake<NSMutableSet>();
    for (int k = 0; k < 20; ++k) set->addObject(NSMake<NSArray>({number(k)}));
    for (const auto& each : last) set->addObject(each);
    return set;
  };
  EXPECT_EQ(members({a, c}), members({b, d}));
  b->replaceObjectAtIndex_withObject(30, number(-1));
  EXPECT_FALSE(members({a, b, c})->isEqual(members({b, a, d})));
  for (const auto& each : {a, b}) each->removeAllObjects();
}

TEST(NSSet, LosesNoMemberWhoseHashHasChanged) {
  struct Named : NSObject {
    explicit Named(NSUInteger number) : name(number) {}
    NSUInteger hash() const override { return name; }
    NSUInteger name;
  };
  const auto set = NSMake<NSMutableSet>();
  std::vector<NSRef<Named>> members;
  for (NSUInteger k = 0; k < 100; ++k) {
    members.push_back(NSMake<Named>(k));
    set->addObject(members.back());
  }
  for (NSUInteger k = 90; k < 100; ++k) members[k]->name = 1000 + k;
  for (NSUInteger k = 0; k < 90; ++k) set->removeObject(members[k]);
  EXPECT_EQ(set->count(), 10U);
  std::set<NSUInteger> names;
  for (const auto& member : *set) names.insert(member.as<Named>()->name);
  EXPECT_TRUE(names.size() == 10 && *names.begin() == 1090);
}

TEST(NSMapTable, HoldsItsKeysAsTheyAre) {
  struct Key : NSObject {};
  const auto key = NSMake<Key>();
  const auto table = NSMapTable::strongToStrongObjectsMapTable();
  table->setObject_forKey(u"v"_ns, key);
  table->setObject_forKey(u"w"_ns, u"k"_ns);
  EXPECT_PRED2(areSame, table->allKeys()->firstObject(), key);
  const auto copy = table->copy().as<NSMapTable>();
  EXPECT_EQ(copy, table);
  EXPECT_EQ(copy->hash(), table->hash());
  table->removeObjectForKey(key);
  table->removeObjectForKey(nullptr);
  EXPECT_EQ(table->description(), u"{k = w}");
  EXPECT_FALSE(copy->isEqual(table));
  EXPECT_EQ(copy->allValues()->description(), u"(v, w)");
}

TEST(NSPointerArray, HoldsAddressesAlone) {
  expectRaises(NSInvalidArgumentException,
               "options 0 are not supported (in 'pointerArrayWithOptions:')",
               [] { (void)NSPointerArray::pointerArrayWithOptions(0); });
  int x = 0;
  const auto array = NSMake<NSPointerArray>();
  array->addPointer(&x);
  array->insertPointer_atIndex(nullptr, 0);
  EXPECT_EQ(array->pointerAtIndex(1), &x);
  array->replacePointerAtIndex_withPointer(1, nullptr);
  EXPECT_EQ(array->description(), u"((null), (null))");
  const auto copy = array->copy();
  EXPECT_EQ(copy, array);
  EXPECT_EQ(copy->hash(), array->hash());
  array->removePointerAtIndex(0);
  EXPECT_FALSE(copy->isEqual(array));
}

TEST(NSNull, IsOneObject) { EXPECT_EQ(NSNull::null(), NSNull::null()->copy()); }

}  // namespace
