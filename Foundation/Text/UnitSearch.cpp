#include "Foundation/Text/UnitSearch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include <Foundation/Text/TwoWaySearch.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/Text/UnitSearch.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// How many places have been found, and where the search goes on.
using Progress = std::pair<std::size_t, std::size_t>;
// How far from its start a needle is probed at.
using Probes = std::pair<std::size_t, std::size_t>;

// What is looked for: `first` and `second` mark the lanes of two vectors of text, that many units
// after a place, where the place may fit; `confirms` tells whether such a place fits, `fits`
// whether any does.

// A needle, with two of its units to probe at.
struct Needle {
  const std::uint16_t* units;
  std::size_t length;
  std::size_t firstAt;
  std::size_t secondAt;

  [[nodiscard]] std::size_t step() const { return length; }
  [[nodiscard]] bool fits(const std::uint16_t* text) const {
    return text[firstAt] == units[firstAt] && text[secondAt] == units[secondAt] && confirms(text);
  }
  [[nodiscard]] bool confirms(const std::uint16_t* text) const {
    return length <= 2 || std::memcmp(text, units, length * sizeof(*units)) == 0;
  }
  template <class Tag>
  [[nodiscard]] HWY_ATTR auto first(Tag tag, hn::Vec<Tag> text) const {
    return hn::Eq(text, hn::Set(tag, units[firstAt]));
  }
  template <class Tag>
  [[nodiscard]] HWY_ATTR auto second(Tag tag, hn::Vec<Tag> text) const {
    return hn::Eq(text, hn::Set(tag, units[secondAt]));
  }
};

// Two choices, small ones or any; places may overlap.
template <bool areSmall>
struct Choices {
  const NSUnitChoice* choices;
  std::size_t secondAt;
  std::size_t firstAt = 0;

  static std::size_t step() { return 1; }
  [[nodiscard]] bool fits(const std::uint16_t* text) const {
    return choices[0].contains(*text) && choices[1].contains(text[secondAt]);
  }
  static bool confirms(const std::uint16_t* /*text*/) { return true; }
  template <class Tag>
  HWY_ATTR static auto isChosen(Tag tag, hn::Vec<Tag> text, const NSUnitChoice& choice) {
    const auto low = hn::Set(tag, choice.low());
    const auto high = hn::Set(tag, choice.high());
    auto isChosen = hn::Eq(text, hn::Set(tag, choice.units()[0]));
    for (std::size_t k = 1; k < (areSmall ? 2 : choice.units().size()); ++k) {
      isChosen = hn::Or(isChosen, hn::Eq(text, hn::Set(tag, choice.units()[k])));
    }
    if constexpr (areSmall) return isChosen;
    return hn::Or(isChosen, hn::Eq(hn::Max(text, low), hn::Min(text, high)));
  }
  template <class Tag>
  [[nodiscard]] HWY_ATTR auto first(Tag tag, hn::Vec<Tag> text) const {
    return isChosen(tag, text, choices[0]);
  }
  template <class Tag>
  [[nodiscard]] HWY_ATTR auto second(Tag tag, hn::Vec<Tag> text) const {
    return isChosen(tag, text, choices[1]);
  }
};

// Finds the places that fit among the first `count` of a text, a vector of them at once, without
// overlap. After W. Muła, "SIMD-friendly algorithms for substring searching". Ends early when there
// is no room for more, and when too much has been compared in vain.
template <std::size_t widest, class Wanted>
HWY_ATTR Progress findPlacesBy(const Wanted wanted, const std::uint16_t* text, std::size_t count,
                               std::span<std::size_t> places) {
  const hn::CappedTag<std::uint16_t, widest> tag;
  const std::size_t lanes = hn::Lanes(tag);
  std::size_t found = 0;
  std::size_t place = 0;
  // The first place that does not overlap what has been found.
  std::size_t earliest = 0;
  std::size_t budget = 4 * count + 1024;
  const auto take = [&](std::size_t candidate, bool fits) {
    if (fits) {
      places[found++] = candidate;
      earliest = candidate + wanted.step();
    } else {
      budget -= std::min(budget, wanted.step());
    }
  };

  const auto candidatesAt = [&](std::size_t at) HWY_ATTR {
    const auto atFirst = wanted.first(tag, hn::LoadU(tag, text + at + wanted.firstAt));
    const auto atSecond = wanted.second(tag, hn::LoadU(tag, text + at + wanted.secondAt));
    const auto candidates = hn::And(atFirst, atSecond);
    std::uint32_t bits = 0;
    if (hn::AllFalse(tag, candidates)) return bits;
    static_assert(std::endian::native == std::endian::little, "the first byte holds the low bits");
    std::array<std::uint8_t, 8> stored{};
    hn::StoreMaskBits(tag, candidates, stored.data());
    std::memcpy(&bits, stored.data(), sizeof(bits));
    return bits;
  };
  // Whether there is no room for more places.
  const auto takeAll = [&](std::size_t at, std::uint32_t bits) {
    for (; bits != 0; bits &= bits - 1) {
      const std::size_t candidate = at + static_cast<std::size_t>(std::countr_zero(bits));
      if (candidate >= earliest) take(candidate, wanted.confirms(text + candidate));
      if (found == places.size()) return true;
    }
    return false;
  };

  for (; place + lanes <= count; place += lanes) {
    const std::uint32_t bits = candidatesAt(place);
    if (bits == 0) continue;
    if (takeAll(place, bits)) return {found, earliest};
    if (budget == 0) return {found, std::min(count, std::max(place + lanes, earliest))};
  }
  if (place < count && count >= lanes) {
    // The last vector overlaps the one before it.
    const std::size_t at = count - lanes;
    const auto done = static_cast<std::uint32_t>(place - at);
    const bool isFull = takeAll(at, candidatesAt(at) >> done << done);
    return {found, isFull ? earliest : count};
  }
  for (; place < count && found < places.size(); ++place) {
    if (place >= earliest) take(place, wanted.fits(text + place));
  }
  return {found, std::max(place, earliest)};
}

template <class Wanted>
Progress findPlaces(Wanted wanted, const std::uint16_t* text, std::size_t count,
                    std::span<std::size_t> places) {
  // The widest vector that the text fills.
  return count < 32 ? findPlacesBy<8>(wanted, text, count, places)
                    : findPlacesBy<32>(wanted, text, count, places);
}

Progress findUnits(const std::uint16_t* text, std::size_t count, const std::uint16_t* needle,
                   std::size_t length, Probes probes, std::span<std::size_t> places) {
  return findPlaces(Needle{needle, length, probes.first, probes.second}, text, count, places);
}

Progress findChoices(const std::uint16_t* text, std::size_t count, const NSUnitChoice* choices,
                     std::size_t distance, std::span<std::size_t> places) {
  return choices[0].isSmall() && choices[1].isSmall()
             ? findPlaces(Choices<true>{choices, distance}, text, count, places)
             : findPlaces(Choices<false>{choices, distance}, text, count, places);
}

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(findUnits);
HWY_EXPORT(findChoices);

namespace {

// Highway has no lanes of char16_t; its units are the same 16 bits.
const std::uint16_t* lanesOf(std::u16string_view text) {
  return reinterpret_cast<const std::uint16_t*>(text.data());
}

// The units of the needle that occur in it least often, two different ones if there are any.
std::pair<std::size_t, std::size_t> rarestUnits(std::u16string_view needle) {
  std::array<std::uint32_t, 256> counts{};
  const auto countOf = [&](char16_t unit) -> std::uint32_t& { return counts[unit & 0xFFU]; };
  for (const char16_t unit : needle) ++countOf(unit);
  std::size_t rarest = 0;
  for (std::size_t k = 1; k < needle.size(); ++k) {
    if (countOf(needle[k]) < countOf(needle[rarest])) rarest = k;
  }
  std::size_t other = rarest;
  for (std::size_t k = 0; k < needle.size(); ++k) {
    const bool isOther = needle[k] != needle[rarest];
    if (isOther && (other == rarest || countOf(needle[k]) < countOf(needle[other]))) other = k;
  }
  if (other == rarest) return {0, needle.size() - 1};
  return {std::min(rarest, other), std::max(rarest, other)};
}

// Goes on from a place in time that is linear in the text.
std::size_t findLinearly(std::u16string_view text, std::u16string_view needle, std::size_t from,
                         std::span<std::size_t> places) {
  const NSTwoWaySearch search(needle.begin(), needle.end());
  std::size_t found = 0;
  std::size_t earliest = from;
  (void)search.find(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                    [&](std::size_t offset) {
                      if (from + offset < earliest) return false;
                      places[found++] = from + offset;
                      earliest = from + offset + needle.size();
                      return found == places.size();
                    });
  return found;
}

}  // namespace

std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle, std::size_t from,
                        std::span<std::size_t> places) {
  if (places.empty() || needle.empty()) return 0;
  std::size_t found = 0;
  const auto findWith = [&](std::pair<std::size_t, std::size_t> probes) {
    if (from > text.size() || needle.size() > text.size() - from) return true;
    const std::size_t count = text.size() - from - needle.size() + 1;
    const std::span<std::size_t> room = places.subspan(found);
    const auto [some, next] = HWY_DYNAMIC_DISPATCH(findUnits)(
        lanesOf(text) + from, count, lanesOf(needle), needle.size(), probes, room);
    for (std::size_t& place : room.first(some)) place += from;
    found += some;
    from += next;
    return found == places.size() || next >= count;
  };
  // The ends of a needle tell most apart; where they do not, what is rare in it may.
  if (findWith({0, needle.size() - 1}) || findWith(rarestUnits(needle))) return found;
  return found + findLinearly(text, needle, from, places.subspan(found));
}

std::size_t NSFindChoices(std::u16string_view text, const std::array<NSUnitChoice, 2>& choices,
                          std::size_t distance, std::size_t from, std::span<std::size_t> places) {
  if (places.empty() || from > text.size() || distance >= text.size() - from) return 0;
  const std::size_t found =
      HWY_DYNAMIC_DISPATCH(findChoices)(lanesOf(text) + from, text.size() - from - distance,
                                        choices.data(), distance, places)
          .first;
  for (std::size_t& place : places.first(found)) place += from;
  return found;
}

#endif
