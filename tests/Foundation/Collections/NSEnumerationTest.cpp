#include "tests/Support.h"

namespace {

// Changes the collection at the first step of a walk.
template <class Collection, class Change>
void raisesWhenWalked(const NSRef<Collection>& collection, Change change) {
  int steps = 0;
  const auto name = collection->objectClass().name()->utf8();
  expectRaises(NSGenericException, name + " was mutated while being enumerated", [&] {
    for ([[maybe_unused]] const auto& element : *collection) change(*collection), ++steps;
  });
  EXPECT_EQ(steps, 1) << name;
}

TEST(NSEnumeration, ACollectionThatChangesWhileItIsWalkedRaises) {
  const auto a = u"a"_ns;
  const auto b = u"b"_ns;
  const auto array = NSMake<NSMutableArray>({a, b, b});
  raisesWhenWalked(array, [](auto& it) { it.removeLastObject(); });
  raisesWhenWalked(array, [&](auto& it) { it.replaceObjectAtIndex_withObject(1, a); });
  raisesWhenWalked(array, [&](auto& it) { it.removeObject(a); });
  const auto set = NSMake<NSMutableSet>({a, b});
  raisesWhenWalked(set, [](auto& it) { it.addObject(u"c"_ns); });
  raisesWhenWalked(set, [&](auto& it) { it.removeObject(a); });
  raisesWhenWalked(NSMake<NSMutableOrderedSet>({a, b}),
                   [](auto& it) { it.insertObject_atIndex(u"c"_ns, 0); });
  const auto dictionary = NSMake<NSMutableDictionary>({{a, a}, {b, b}});
  raisesWhenWalked(dictionary, [&](auto& it) { it.setObject_forKey(b, a); });
  raisesWhenWalked(dictionary, [&](auto& it) { it.removeObjectForKey(b); });
  const auto indexes = NSMake<NSMutableIndexSet>({1, 2, 7});
  raisesWhenWalked(indexes, [](auto& it) { it.addIndex(4); });
  raisesWhenWalked(indexes, [](auto& it) { it.removeIndex(2); });
  const auto table = NSMake<NSMapTable>();
  table->setObject_forKey(a, b);
  raisesWhenWalked(table, [](auto& it) { it.removeAllObjects(); });
  const auto pointers = NSMake<NSPointerArray>();
  pointers->addPointer(nullptr);
  raisesWhenWalked(pointers, [](auto& it) { it.addPointer(&it); });
}

TEST(NSEnumeration, GivesElementsAsObjectsOfAClass) {
  const auto walk = [](const auto& collection) {
    std::string text;
    for (const auto& word : collection->template each<NSString>()) text += word->utf8();
    return text;
  };
  const auto array = NSMake<NSMutableArray>({u"a"_ns, NSMake<NSMutableString>(u"b")});
  EXPECT_EQ(walk(array) + walk(NSMake<NSOrderedSet>(array)) + walk(NSMake<NSSet>(array)), "ababab");
  EXPECT_EQ(walk(NSMake<NSArray>()), "");
  array->addObject(number(1));
  const auto refuses = [&](const auto& collection, const char* reason) {
    expectRaises(NSInvalidArgumentException, reason, [&] { (void)walk(collection); });
  };
  refuses(array, "NSNumber is no NSString (at index 2)");
  refuses(NSMake<NSOrderedSet>(array), "NSNumber is no NSString (at index 2)");
  refuses(NSMake<NSSet>(array), "NSNumber is no NSString");
}

TEST(NSEnumeration, WalksByClassObeyTheRulesOfWalks) {
  int alive = 0;
  auto array = NSMake<NSMutableArray>({NSMake<Counted>(alive), NSMake<Counted>(alive)});
  const auto counted = array->each<Counted>();
  array->addObject(NSMake<Counted>(alive));
  int steps = 0;
  expectRaises(NSGenericException, "NSMutableArray was mutated while being enumerated", [&] {
    for (const auto& element : counted) {
      array->removeAllObjects();
      ++steps;
      EXPECT_EQ(element->alive, 3);
    }
  });
  EXPECT_EQ(steps, 1);
  EXPECT_EQ(alive, 0);
  for (const auto& element : NSMake<NSSet>({NSMake<Counted>(alive)})->each<Counted>()) {
    EXPECT_EQ(element->retainCount(), 1U);
  }
  NSRef<Counted> kept;
  for (const auto& element : NSMake<NSArray>({NSMake<Counted>(alive)})->each<Counted>()) {
    kept = element;
  }
  EXPECT_EQ(kept->retainCount(), 1U);
}

TEST(NSEnumeration, AChangeThatChangesNothingAndOneThatEndsTheWalkAreFine) {
  const auto set = NSMake<NSMutableSet>({number(1), number(2)});
  for (const auto& member : *set) {
    set->addObject(number(member.as<NSNumber>()->intValue()));
    set->removeObject(number(3));
  }
  set->enumerateObjectsUsingBlock([&](const auto&, bool& stop) {
    set->removeAllObjects();
    stop = true;
  });
  EXPECT_EQ(set->count(), 0U);
  const auto indexes = NSMake<NSMutableIndexSet>({1, 2});
  for ([[maybe_unused]] const auto index : *indexes) indexes->addIndexes(indexes);
}

TEST(NSEnumeration, TheElementAtHandOutlivesItsCollection) {
  int alive = 0;
  auto array = NSMake<NSMutableArray>({NSMake<Counted>(alive), NSMake<Counted>(alive)});
  for (const auto& element : *array) {
    array = nullptr;
    EXPECT_NE(element.as<Counted>(), nullptr);
    EXPECT_EQ(alive, 2);
  }
  EXPECT_EQ(alive, 0);

  const auto kept = NSMake<NSMutableArray>({NSMake<Counted>(alive)});
  kept->enumerateObjectsUsingBlock([&](const auto& element, NSUInteger, bool& stop) {
    kept->removeAllObjects();
    EXPECT_NE(element.template as<Counted>(), nullptr);
    stop = true;
  });
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
  const auto raises = [&](const auto& collection, auto action) {
    meddler->meddle = [&] { collection->removeAllObjects(); };
    EXPECT_THROW(action(*collection), NSException);
    EXPECT_EQ(collection->count(), 0U);
  };
  const auto describe = [](auto& collection) { (void)collection.description(); };
  raises(NSMake<NSMutableArray>({meddler}), describe);
  raises(NSMake<NSMutableSet>({meddler}), describe);
  raises(NSMake<NSMutableDictionary>({{u"k"_ns, meddler}}), describe);
  raises(NSMake<NSMutableSet>({meddler}),
         [](auto& set) { (void)set.containsObject(NSMake<Meddler>()); });
}

TEST(NSEnumeration, ElementsThatChangeTheirCollectionInTheirHashRaise) {
  const auto meddler = NSMake<Meddler>();
  const auto ordered = NSMake<NSMutableOrderedSet>({u"a"_ns, u"b"_ns});
  meddler->meddleInHash = [&] { ordered->removeAllObjects(); };
  expectRaises(NSGenericException, "a collection was mutated while being searched",
               [&] { ordered->insertObject_atIndex(meddler, 2); });
  const auto table = NSMake<NSMapTable>();
  meddler->meddleInHash = [&] { table->setObject_forKey(u"x"_ns, u"y"_ns); };
  EXPECT_THROW(table->setObject_forKey(u"v"_ns, meddler), NSException);
  EXPECT_EQ(table->description(), u"{y = x}");
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
  std::ostringstream text;
  const auto indexed = [&](const auto& object, NSUInteger index, bool& stop) {
    text << index << object;
    stop = index == 1;
  };
  NSMake<NSArray>({u"a"_ns, u"b"_ns, u"c"_ns})->enumerateObjectsUsingBlock(indexed);
  NSMake<NSOrderedSet>({u"a"_ns, u"b"_ns, u"c"_ns})->enumerateObjectsUsingBlock(indexed);
  NSMake<NSDictionary>({{u"k"_ns, u"v"_ns}})
      ->enumerateKeysAndObjectsUsingBlock(
          [&](const auto& key, const auto& object, bool&) { text << key << object; });
  const auto indexes = NSMake<NSIndexSet>({1, 2, 7, 9});
  indexes->enumerateIndexesUsingBlock([&](NSUInteger index, bool& stop) {
    text << ' ' << index;
    stop = index == 7;
  });
  indexes->enumerateRangesUsingBlock([&](NSRange range, bool& stop) {
    text << ' ' << range;
    stop = range.location == 7;
  });
  EXPECT_EQ(text.str(), "0a1b0a1bkv 1 2 7 {1, 2} {7, 1}");
}

TEST(NSPredicate, FiltersCollections) {
  const auto isOdd = NSPredicate::predicateWithBlock(
      [](const NSRef<NSObject>& object) { return object.as<NSNumber>()->intValue() % 2 != 0; });
  const auto array = NSMake<NSMutableArray>({number(1), number(2), number(3), number(3)});
  EXPECT_EQ(array->filteredArrayUsingPredicate(isOdd)->description(), u"(1, 3, 3)");
  EXPECT_EQ(NSMake<NSSet>(array)->filteredSetUsingPredicate(isOdd)->count(), 2U);
  array->filterUsingPredicate(isOdd);
  EXPECT_EQ(array->description(), u"(1, 3, 3)");
}

TEST(NSPredicate, HandsBindingsToItsBlock) {
  const auto isBound = NSPredicate::predicateWithBlock(
      [](const NSRef<NSObject>& object, const NSRef<NSDictionary>& bindings) {
        return bindings && bindings->objectForKey(object);
      });
  const auto bindings = NSMake<NSDictionary>({{u"a"_ns, u"b"_ns}});
  EXPECT_TRUE(isBound->evaluateWithObject_substitutionVariables(u"a"_ns, bindings));
  EXPECT_FALSE(isBound->evaluateWithObject(u"a"_ns));
}

}  // namespace
