#include "tests/Support.h"

#include <functional>
#include <map>
#include <set>

namespace {

NSRef<NSNumber> number(int value) { return NSMake<NSNumber>(value); }

TEST(NSArray, RaisesForWhatDoesNotFitAndChangesNothing) {
  const auto array = NSMake<NSMutableArray>({u"a"_ns, u"b"_ns});
  struct Row {
    std::u16string_view name;
    const char* reason;
    std::function<void()> action;
  };
  const std::vector<Row> rows = {
      {NSRangeException, "index 2 beyond bounds [0, 2) (in 'objectAtIndex:')",
       [&] { (void)array->objectAtIndex(2); }},
      {NSRangeException, "index 3 beyond bounds [0, 2) (in 'insertObject:atIndex:')",
       [&] { array->insertObject_atIndex(u"x"_ns, 3); }},
      {NSRangeException, "index 2 beyond bounds [0, 2) (in 'replaceObjectAtIndex:withObject:')",
       [&] { array->replaceObjectAtIndex_withObject(2, u"x"_ns); }},
      {NSRangeException, "index 2 beyond bounds [0, 2) (in 'removeObjectAtIndex:')",
       [&] { array->removeObjectAtIndex(2); }},
      {NSInvalidArgumentException, "anObject is nil (in 'addObject:')",
       [&] { array->addObject(nullptr); }},
      {NSInvalidArgumentException, "anObject is nil (in 'insertObject:atIndex:')",
       [&] { array->insertObject_atIndex(nullptr, 0); }},
      {NSInvalidArgumentException, "anObject is nil (in 'replaceObjectAtIndex:withObject:')",
       [&] { array->replaceObjectAtIndex_withObject(0, nullptr); }},
      {NSInvalidArgumentException, "an element is nil (in 'initWithObjects:')",
       [&] {
         (void)NSMake<NSArray>({u"a"_ns, nullptr});
       }},
      {NSInvalidArgumentException, "anObject is nil (in 'setObject:forKey:')",
       [] { NSMake<NSMutableDictionary>()->setObject_forKey(nullptr, u"k"_ns); }},
      {NSInvalidArgumentException, "aKey is nil (in 'setObject:forKey:')",
       [] { NSMake<NSMutableDictionary>()->setObject_forKey(u"o"_ns, nullptr); }},
      {NSInvalidArgumentException, "anObject is nil (in 'addObject:')",
       [] { NSMake<NSMutableSet>()->addObject(nullptr); }},
  };
  for (const auto& row : rows) expectRaises(row.name, row.reason, row.action);
  EXPECT_TRUE(array->description() == u"(a, b)");
}

TEST(NSArray, EditsInPlaceAndFindsByEquality) {
  const auto array = NSMake<NSMutableArray>();
  EXPECT_EQ(array->firstObject(), nullptr);
  array->removeLastObject();
  for (const int value : {1, 3, 3}) array->addObject(number(value));
  array->insertObject_atIndex(number(2), 1);
  array->replaceObjectAtIndex_withObject(3, number(4));
  array->insertObject_atIndex(number(5), 4);
  array->removeObjectAtIndex(0);
  array->removeLastObject();
  EXPECT_TRUE(array->description() == u"(2, 3, 4)");
  EXPECT_EQ(array->indexOfObject(NSMake<NSNumber>(3.0)), 1U);
  EXPECT_EQ(array->indexOfObject(nullptr), NSNotFound);
  EXPECT_TRUE(array->containsObject(array->lastObject()));
  EXPECT_FALSE(array->containsObject(u"3"_ns));
}

TEST(NSArray, SharesElementsWithItsCopies) {
  int alive = 0;
  auto array = NSMake<NSMutableArray>({NSMake<Counted>(alive)});
  const auto copy = array->copy();
  EXPECT_EQ(copy->copy(), copy);
  EXPECT_TRUE(copy->isEqual(array));
  EXPECT_EQ(copy->hash(), array->hash());
  array->addObject(u"more"_ns);
  EXPECT_FALSE(copy->isEqual(array));
  EXPECT_EQ(alive, 1);
  array->removeAllObjects();
  EXPECT_EQ(copy->count(), 1U);
  EXPECT_EQ(copy->mutableCopy()->firstObject(), copy->firstObject());
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
    dictionary->setObject_forKey(u"new"_ns, u"key"_ns);
    RC_ASSERT(!copy->isEqual(dictionary));
  });
}

TEST(NSDictionary, CopiesItsKeys) {
  const auto key = NSMake<NSMutableString>(u"k");
  const auto dictionary = NSMake<NSDictionary>({{key, u"v"_ns}, {key, u"w"_ns}});
  key->appendUnits(u"!");
  EXPECT_TRUE(dictionary->description() == u"{k = w}");
  EXPECT_EQ(dictionary->objectForKey(key), nullptr);
  EXPECT_EQ(dictionary->objectForKey(nullptr), nullptr);
  EXPECT_TRUE(dictionary->allValues()->description() == u"(w)");
}

TEST(NSSet, BehavesAsASet) {
  expectProperty("the same members as a std::set", [] {
    const auto values = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 8));
    const auto others = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 8));
    std::set<int> model(values.begin(), values.end());
    auto set = NSMake<NSMutableSet>(NSUInteger{20});
    for (const int value : values) set->addObject(number(value));
    auto other = NSMake<NSMutableSet>();
    for (const int value : others) other->addObject(number(value));
    const bool isSubset = std::ranges::all_of(others, [&](int k) { return model.contains(k); });
    RC_ASSERT(other->isSubsetOfSet(set) == isSubset);
    model.insert(others.begin(), others.end());
    set->unionSet(other);
    RC_ASSERT(set->count() == model.size());
    for (const int value : model) RC_ASSERT(set->member(number(value)) != nullptr);
    RC_ASSERT(set->isEqual(NSMake<NSSet>(set->allObjects())));
    RC_ASSERT(set->copy()->isEqual(set) && set->copy()->hash() == set->hash());
    for (const int value : others) set->removeObject(number(value));
    for (const int value : others) RC_ASSERT(!set->containsObject(number(value)));
  });
}

TEST(NSNull, IsOneObject) {
  EXPECT_EQ(NSNull::null(), NSNull::null()->copy());
  EXPECT_TRUE(NSMake<NSSet>({NSNull::null(), NSNull::null()})->description() == u"{(<null>)}");
}

}  // namespace
