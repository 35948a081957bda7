#include "tests/Support.h"

namespace {

NSRef<NSNumber> number(int value) { return NSMake<NSNumber>(value); }

// What collections are walked and changed alike.
struct Walked {
  std::string className;
  std::function<void()> change;
  /// Runs the action at each element.
  std::function<void(const std::function<void()>&)> walk;
};

template <class Collection, class Change>
Walked walked(NSRef<Collection> collection, Change change) {
  return {collection->objectClass().name()->utf8(), [=] { change(*collection); },
          [=](const std::function<void()>& action) {
            for ([[maybe_unused]] const auto& element : *collection) action();
          }};
}

std::vector<Walked> walkedCollections() {
  const auto a = u"a"_ns;
  const auto b = u"b"_ns;
  const auto set = NSMake<NSMutableSet>({a, b});
  const auto dictionary = NSMake<NSMutableDictionary>({{a, a}, {b, b}});
  const auto indexes = NSMake<NSMutableIndexSet>({1, 2, 7});
  auto rows = std::vector<Walked>{
      walked(NSMake<NSMutableArray>({a, b}), [](auto& array) { array.removeAllObjects(); }),
      walked(NSMake<NSMutableArray>({a, b}),
             [=](auto& array) { array.replaceObjectAtIndex_withObject(1, a); }),
      walked(NSMake<NSMutableArray>({a, b}), [](auto& array) { array.removeObject(u"b"_ns); }),
      walked(set, [](auto& it) { it.addObject(u"c"_ns); }),
      walked(set, [=](auto& it) { it.removeObject(a); }),
      walked(NSMake<NSMutableOrderedSet>({a, b}),
             [](auto& it) { it.insertObject_atIndex(u"c"_ns, 0); }),
      walked(dictionary, [=](auto& it) { it.setObject_forKey(b, a); }),
      walked(dictionary, [=](auto& it) { it.removeObjectForKey(b); }),
      walked(indexes, [](auto& it) { it.addIndex(4); }),
      walked(indexes, [](auto& it) { it.removeIndex(2); }),
  };
  const auto table = NSMapTable::strongToStrongObjectsMapTable();
  table->setObject_forKey(a, b);
  rows.push_back(walked(table, [](auto& it) { it.removeAllObjects(); }));
  const auto pointers = NSMake<NSPointerArray>();
  pointers->addPointer(nullptr);
  rows.push_back(walked(pointers, [](auto& it) { it.addPointer(&it); }));
  return rows;
}

TEST(NSEnumeration, ACollectionThatChangesWhileItIsWalkedRaises) {
  for (const auto& row : walkedCollections()) {
    SCOPED_TRACE(row.className);
    int steps = 0;
    expectRaises(NSGenericException, row.className + " was mutated while being enumerated",
                 [&] { row.walk([&] { row.change(), ++steps; }); });
    EXPECT_EQ(steps, 1);
  }
}

TEST(NSEnumeration, AChangeThatChangesNothingAndOneThatEndsTheWalkAreFine) {
  const auto set = NSMake<NSMutableSet>({number(1), number(2)});
  for (const auto& member : *set) {
    set->addObject(number(member.as<NSNumber>()->intValue()));
    set->removeObject(number(3));
  }
  const auto array = NSMake<NSMutableArray>({number(1), number(2)});
  for (const auto& element : *array) {
    array->removeAllObjects();
    EXPECT_TRUE(element->isEqual(number(1)));
    break;
  }
  set->enumerateObjectsUsingBlock([&](const auto&, bool& stop) {
    set->removeAllObjects();
    stop = true;
  });
  EXPECT_EQ(set->count() + array->count(), 0U);
}

TEST(NSEnumeration, TheElementAtHandOutlivesItsCollection) {
  int alive = 0;
  auto array = NSMake<NSMutableArray>({NSMake<Counted>(alive), NSMake<Counted>(alive)});
  int steps = 0;
  for (const auto& element : *array) {
    array = nullptr;
    EXPECT_EQ(alive, 2);
    EXPECT_NE(element.as<Counted>(), nullptr);
    ++steps;
  }
  EXPECT_EQ(steps, 2);
  EXPECT_EQ(alive, 0);

  const auto kept = NSMake<NSMutableArray>({NSMake<Counted>(alive), NSMake<Counted>(alive)});
  EXPECT_THROW(kept->enumerateObjectsUsingBlock([&](const auto& element) {
    kept->removeAllObjects();
    EXPECT_NE(element.template as<Counted>(), nullptr);
  }),
               NSException);
  EXPECT_EQ(alive, 0);
}

// An element that changes the collection when it is asked for something.
struct Meddler : NSObject {
  NSRef<NSString> description() const override {
    meddle();
    return u"?"_ns;
  }
  bool isEqual(const NSRef<NSObject>& /*other*/) const override {
    meddle();
    return false;
  }
  NSUInteger hash() const override {
    meddleInHash();
    return 0;
  }
  std::function<void()> meddle = [] {};
  std::function<void()> meddleInHash = [] {};
};

// What an object is asked for while it is read stays as it was.
TEST(NSEnumeration, AnswersMayChangeWhatTheyAreAskedFor) {
  const auto meddler = NSMake<Meddler>();
  const auto text = NSMake<NSMutableString>("%@ a %@");
  meddler->meddle = [&] { text->setString(u"%@ b %@ is no key."_ns); };
  EXPECT_EQ(NSString::stringWithFormat(text, meddler, meddler)->utf8(), "? a ?");
  text->setString(u"description.length"_ns);
  EXPECT_EQ(meddler->valueForKeyPath(text).as<NSNumber>()->intValue(), 1);
  const auto list = NSMake<NSMutableArray>({meddler, u"a"_ns});
  meddler->meddleInHash = [&] { list->replaceObjectAtIndex_withObject(1, u"b"_ns); };
  EXPECT_EQ(NSMake<NSOrderedSet>(list->objects())->description()->utf8(), "{(?, a)}");
}

TEST(NSEnumeration, ElementsThatChangeTheirCollectionRaise) {
  const auto meddler = NSMake<Meddler>();
  const auto array = NSMake<NSMutableArray>({meddler});
  meddler->meddle = [&] { array->removeAllObjects(); };
  EXPECT_THROW((void)array->description(), NSException);
  const auto dictionary = NSMake<NSMutableDictionary>({{u"k"_ns, meddler}});
  meddler->meddle = [&] { dictionary->removeAllObjects(); };
  EXPECT_THROW((void)dictionary->description(), NSException);
  const auto set = NSMake<NSMutableSet>({meddler});
  meddler->meddle = [&] { set->removeAllObjects(); };
  EXPECT_THROW((void)set->description(), NSException);
  set->addObject(meddler);
  expectRaises(NSGenericException, "a collection was mutated while being searched",
               [&] { (void)set->containsObject(NSMake<Meddler>()); });
  EXPECT_EQ(array->count() + dictionary->count() + set->count(), 0U);

  const auto ordered = NSMake<NSMutableOrderedSet>({u"a"_ns, u"b"_ns});
  meddler->meddleInHash = [&] { ordered->removeAllObjects(); };
  expectRaises(NSGenericException, "a collection was mutated while being searched",
               [&] { ordered->insertObject_atIndex(meddler, 2); });
  const auto table = NSMapTable::strongToStrongObjectsMapTable();
  meddler->meddleInHash = [&] { table->setObject_forKey(u"x"_ns, u"y"_ns); };
  EXPECT_THROW(table->setObject_forKey(u"v"_ns, meddler), NSException);
  EXPECT_TRUE(table->description() == u"{y = x}");
}

TEST(NSEnumeration, WhatIsAtHandMayBeUsedAfterAChange) {
  int x = 0;
  const auto pointers = NSMake<NSPointerArray>();
  pointers->addPointer(&x);
  for (const auto& pointer : pointers) {
    for (int k = 0; k < 100; ++k) pointers->addPointer(nullptr);
    EXPECT_EQ(pointer, &x);
    break;
  }
  const auto indexes = NSMake<NSMutableIndexSet>({1, 3});
  const auto at = indexes->begin();
  indexes->removeAllIndexes();
  EXPECT_THROW((void)*at, NSException);
  auto array = NSMake<NSMutableArray>({u"a"_ns, u"b"_ns});
  array->removeObjectsWhere([&](const auto&) {
    array = nullptr;
    return true;
  });
}

TEST(NSEnumeration, BlocksAreToldTheirPlaceAndMayStop) {
  std::string text;
  const auto append = [&](const auto& object) { text += object->description()->utf8(); };
  const auto indexed = [&](const auto& object, NSUInteger index, bool& stop) {
    text += std::to_string(index);
    append(object);
    stop = index == 1;
  };
  NSMake<NSArray>({u"a"_ns, u"b"_ns, u"c"_ns})->enumerateObjectsUsingBlock(indexed);
  NSMake<NSOrderedSet>({u"a"_ns, u"b"_ns, u"c"_ns})->enumerateObjectsUsingBlock(indexed);
  NSMake<NSDictionary>({{u"k"_ns, u"v"_ns}})
      ->enumerateKeysAndObjectsUsingBlock([&](const auto& key, const auto& object, bool&) {
        append(key);
        append(object);
      });
  const auto indexes = NSMake<NSIndexSet>({1, 2, 7, 9});
  indexes->enumerateIndexesUsingBlock([&](NSUInteger index, bool& stop) {
    text += " " + std::to_string(index);
    stop = index == 7;
  });
  indexes->enumerateRangesUsingBlock([&](NSRange range, bool& stop) {
    text += " +" + std::to_string(range.length);
    stop = range.location == 7;
  });
  EXPECT_EQ(text, "0a1b0a1bkv 1 2 7 +2 +1");
  expectRaises(NSInvalidArgumentException, "aBlock is nil (in 'enumerateRangesUsingBlock:')",
               [&] { indexes->enumerateRangesUsingBlock(nullptr); });
}

TEST(NSPredicate, FiltersCollections) {
  const auto isOdd = NSPredicate::predicateWithBlock(
      [](const NSRef<NSObject>& object) { return object.as<NSNumber>()->intValue() % 2 != 0; });
  const auto array = NSMake<NSMutableArray>({number(1), number(2), number(3), number(3)});
  EXPECT_TRUE(array->filteredArrayUsingPredicate(isOdd)->description() == u"(1, 3, 3)");
  EXPECT_EQ(NSMake<NSSet>(array)->filteredSetUsingPredicate(isOdd)->count(), 2U);
  array->filterUsingPredicate(isOdd);
  EXPECT_TRUE(array->description() == u"(1, 3, 3)");

  const auto isBound = NSPredicate::predicateWithBlock(
      [](const NSRef<NSObject>& object, const NSRef<NSDictionary>& bindings) {
        return bindings && bindings->objectForKey(object);
      });
  const auto bindings = NSMake<NSDictionary>({{u"a"_ns, u"b"_ns}});
  EXPECT_TRUE(isBound->evaluateWithObject_substitutionVariables(u"a"_ns, bindings));
  EXPECT_FALSE(isBound->evaluateWithObject(u"a"_ns));
  expectRaises(NSInvalidArgumentException, "block is nil (in 'predicateWithBlock:')", [] {
    (void)NSPredicate::predicateWithBlock(std::function<bool(const NSRef<NSObject>&)>());
  });
  expectRaises(NSInvalidArgumentException, "predicate is nil (in 'filterUsingPredicate:')",
               [&] { array->filterUsingPredicate(nullptr); });
}

}  // namespace
