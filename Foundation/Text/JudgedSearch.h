#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <Foundation/NSStringComparison.h>
#include <Foundation/Text/TwoWaySearch.h>
#include <Foundation/Text/UnitSearch.h>

// Searches for places where a text has a needle's units and which a judge settles on. The judge is
// told the place and gives how many units further the search goes on, 0 where it ends.

/// Gives a judge's answer to a search that finds places next to one another: whether it settles on
/// a place, which it is asked about only where it has not stepped over it.
template <class Judge>
auto NSSettlesInSteps(Judge judge) {
  return [judge, next = std::size_t{0}](std::size_t place) mutable {
    if (place < next) return false;
    const std::size_t step = judge(place);
    next = place + step;
    return step == 0;
  };
}

/// Searches from left to right; gives `npos` where the judge settles on nothing.
template <class Judge>
std::size_t NSFindJudgedForwards(std::u16string_view text, std::u16string_view needle,
                                 Judge judge) {
  constexpr std::size_t none = std::u16string_view::npos;
  // Units that may be compared for places that overlap before a search takes over that compares
  // none more than twice.
  std::size_t budget = 4 * text.size() + 1024;
  std::size_t from = 0;
  while (budget > 0) {
    const std::size_t place = NSFindUnits(text, needle, from);
    if (place == none) return none;
    const std::size_t step = judge(place);
    if (step == 0) return place;
    if (step < needle.size()) budget -= std::min(budget, needle.size());
    from = place + step;
  }
  const std::u16string_view rest = text.substr(from);
  const NSTwoWaySearch search(needle.begin(), needle.end());
  const std::size_t offset = search.find(
      rest.begin(), rest.end(), NSSettlesInSteps([&](std::size_t at) { return judge(from + at); }));
  return offset == rest.size() ? none : from + offset;
}

/// Finds the first place, the last one with `NSBackwardsSearch`, only one at that end with
/// `NSAnchoredSearch`; `npos` when there is none or the needle is empty.
template <class Judge>
std::size_t NSFindJudged(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                         Judge judge) {
  constexpr std::size_t none = std::u16string_view::npos;
  if (needle.empty() || needle.size() > text.size()) return none;
  const std::size_t last = text.size() - needle.size();
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  if ((options & NSAnchoredSearch) != 0) {
    const std::size_t place = isBackwards ? last : 0;
    return text.substr(place, needle.size()) == needle && judge(place) == 0 ? place : none;
  }
  if (!isBackwards) return NSFindJudgedForwards(text, needle, judge);
  const NSTwoWaySearch search(needle.rbegin(), needle.rend());
  const std::size_t fromEnd =
      search.find(text.rbegin(), text.rend(),
                  NSSettlesInSteps([&](std::size_t at) { return judge(last - at); }));
  return fromEnd == text.size() ? none : last - fromEnd;
}
