#include "tests/Support.h"

#include <iterator>
#include <set>

namespace {

using Model = std::set<NSUInteger>;

NSUInteger atOrNotFound(const Model& model, Model::const_iterator at) {
  return at == model.end() ? NSNotFound : *at;
}

NSUInteger before(const Model& model, Model::const_iterator at) {
  return at == model.begin() ? NSNotFound : *std::prev(at);
}

NSUInteger countBetween(const Model& model, NSRange range) {
  return static_cast<NSUInteger>(
      std::distance(model.lower_bound(range.location), model.lower_bound(NSMaxRange(range))));
}

void requireSame(const NSRef<NSIndexSet>& set, const Model& model) {
  Model walked;
  for (const NSUInteger index : *set) walked.insert(walked.end(), index);
  RC_ASSERT(walked == model);
  RC_ASSERT(set->count() == model.size());
  RC_ASSERT(set->firstIndex() == atOrNotFound(model, model.begin()));
  RC_ASSERT(set->lastIndex() == before(model, model.end()));
  // Runs are as long as they can be.
  for (std::size_t k = 1; k < set->ranges().size(); ++k) {
    RC_ASSERT(NSMaxRange(set->ranges()[k - 1]) < set->ranges()[k].location);
  }
}

void requireSameAround(const NSRef<NSIndexSet>& set, const Model& model, NSRange range) {
  const NSUInteger index = range.location;
  RC_ASSERT(set->containsIndex(index) == model.contains(index));
  RC_ASSERT(set->indexGreaterThanIndex(index) == atOrNotFound(model, model.upper_bound(index)));
  RC_ASSERT(set->indexGreaterThanOrEqualToIndex(index) ==
            atOrNotFound(model, model.lower_bound(index)));
  RC_ASSERT(set->indexLessThanIndex(index) == before(model, model.lower_bound(index)));
  RC_ASSERT(set->indexLessThanOrEqualToIndex(index) == before(model, model.upper_bound(index)));
  const NSUInteger count = countBetween(model, range);
  RC_ASSERT(set->countOfIndexesInRange(range) == count);
  RC_ASSERT(set->intersectsIndexesInRange(range) == (count != 0));
  RC_ASSERT(set->containsIndexesInRange(range) == (range.length != 0 && count == range.length));
  std::array<NSUInteger, 3> given;
  NSRange rest = range;
  const NSUInteger taken = set->getIndexes_maxCount_inIndexRange(given.data(), 3, &rest);
  RC_ASSERT(taken == std::min<NSUInteger>(count, 3));
  RC_ASSERT(std::equal(given.begin(), given.begin() + taken, model.lower_bound(index)));
  RC_ASSERT(NSMaxRange(rest) == NSMaxRange(range));
  RC_ASSERT(rest.location == (taken == 0 ? index : given[taken - 1] + 1));
}

// A set that random edits have made, and its model.
std::pair<NSRef<NSMutableIndexSet>, Model> edited() {
  const auto set = NSMake<NSMutableIndexSet>();
  Model model;
  const auto edits = *rc::gen::container<std::vector<std::tuple<bool, NSUInteger, NSUInteger>>>(
      rc::gen::tuple(rc::gen::arbitrary<bool>(), rc::gen::inRange<NSUInteger>(0, 24),
                     rc::gen::inRange<NSUInteger>(0, 6)));
  for (const auto& [adds, location, length] : edits) {
    for (NSUInteger k = location; k < location + length; ++k) {
      adds ? void(model.insert(k)) : void(model.erase(k));
    }
    const NSRange range{location, length};
    adds ? set->addIndexesInRange(range) : set->removeIndexesInRange(range);
    requireSame(set, model);
  }
  return {set, model};
}

TEST(NSIndexSet, BehavesAsASortedSet) {
  expectProperty("the same indexes as a std::set", [] {
    const auto [set, model] = edited();
    requireSameAround(set, model,
                      {*rc::gen::inRange<NSUInteger>(0, 24), *rc::gen::inRange<NSUInteger>(0, 9)});
    const auto copy = set->copy();
    RC_ASSERT(copy->isEqual(set) && copy->hash() == set->hash());
    std::vector<NSRange> ranges(set->ranges().begin(), set->ranges().end());
    RC_ASSERT(NSMake<NSIndexSet>(ranges)->isEqual(copy));
    std::ranges::reverse(ranges);
    RC_ASSERT(NSMake<NSIndexSet>(ranges)->isEqual(copy));
    set->addIndex(40);
    RC_ASSERT(!set->isEqual(copy));
  });
}

TEST(NSIndexSet, AddsAndRemovesOtherSets) {
  expectProperty("the union and the difference of two std::sets", [] {
    const auto [set, model] = edited();
    const auto [other, otherModel] = edited();
    Model both = model;
    both.insert(otherModel.begin(), otherModel.end());
    const auto sum = set->mutableCopy();
    sum->addIndexes(other);
    requireSame(sum, both);
    Model rest = model;
    for (const NSUInteger index : otherModel) rest.erase(index);
    set->removeIndexes(other);
    requireSame(set, rest);
  });
}

TEST(NSIndexSet, KeepsConsecutiveIndexesAsOne) {
  const auto set = NSMake<NSMutableIndexSet>();
  for (NSUInteger k = 0; k < 1000; ++k) set->addIndex(2 * k);
  EXPECT_EQ(set->ranges().size(), 1000U);
  for (NSUInteger k = 0; k < 1000; ++k) set->addIndex(1999 - 2 * k);
  EXPECT_EQ(set->ranges().size(), 1U);
  set->removeIndexesInRange({500, NSUIntegerMax});
  set->removeIndex(3);
  EXPECT_EQ(set->description(), u"(0-2 4-499)");
  for (const auto& ranges : {std::vector<NSRange>{{1, 0}, {3, 1}}, {{3, 1}, {5, 0}}}) {
    EXPECT_EQ(NSMake<NSIndexSet>(ranges)->ranges().size(), 1U);
  }
}

TEST(NSIndexSet, HoldsWhatIsBelowNotFound) {
  const auto set = NSMake<NSMutableIndexSet>(NSRange{NSNotFound - 2, 2});
  EXPECT_EQ(set->lastIndex(), NSNotFound - 1);
  EXPECT_EQ(set->indexGreaterThanIndex(NSNotFound - 1), NSNotFound);
  EXPECT_EQ(set->indexGreaterThanIndex(NSUIntegerMax), NSNotFound);
  EXPECT_EQ(set->indexLessThanIndex(NSUIntegerMax), NSNotFound - 1);
  EXPECT_EQ(set->countOfIndexesInRange({1, NSUIntegerMax}), 2U);
  const std::string bounds = " beyond bounds [0, 9223372036854775807) (in '";
  expectRaises(NSRangeException, "range {9223372036854775807, 1}" + bounds + "addIndex:')",
               [&] { set->addIndex(NSNotFound); });
  expectRaises(NSRangeException,
               "range {5, 18446744073709551615}" + bounds + "addIndexesInRange:')",
               [&] { set->addIndexesInRange(NSMakeRange(5, NSUIntegerMax)); });
  EXPECT_THROW((void)NSMake<NSIndexSet>(std::vector<NSRange>{{5, 1}, {NSNotFound, 1}}),
               NSException);
  EXPECT_EQ(set->count(), 2U);
  EXPECT_TRUE(set->containsIndexesInRange({NSNotFound - 2, NSUIntegerMax}));
}

}  // namespace
