#include "Foundation/Text/UnitSearch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include <Foundation/Text/KnuthMorrisPratt.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/Text/UnitSearch.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

struct AsTheyAre {
  static std::uint16_t caseBit(std::uint16_t /*unit*/) { return 0; }
  static bool areSame(std::uint16_t a, std::uint16_t b) { return a == b; }
  static bool areEqual(const std::uint16_t* a, const std::uint16_t* b, std::size_t length) {
    if (*a != *b || a[length - 1] != b[length - 1]) return false;
    return length <= 2 || std::memcmp(a, b, length * sizeof(*a)) == 0;
  }
};

struct ASCIIFolded {
  static std::uint16_t caseBit(std::uint16_t unit) {
    const std::uint16_t lower = unit | 0x20;
    return lower >= 'a' && lower <= 'z' ? 0x20 : 0;
  }
  static bool areSame(std::uint16_t a, std::uint16_t b) {
    const std::uint16_t bit = caseBit(b);
    return (a | bit) == (b | bit);
  }
  static bool areEqual(const std::uint16_t* a, const std::uint16_t* b, std::size_t length) {
    return std::equal(a, a + length, b, areSame);
  }
};

// Goes on from a place, after `found` places, in time that is linear in the text.
template <class Letters>
std::size_t findLinearly(Letters letters, const std::uint16_t* text, std::size_t place,
                         std::size_t count, const std::uint16_t* needle, std::size_t length,
                         std::span<std::size_t> places, std::size_t found) {
  const auto areSame = [=](std::uint16_t a, std::uint16_t b) { return letters.areSame(a, b); };
  const NSKnuthMorrisPratt search(needle, needle + length, areSame);
  std::size_t earliest = place;
  (void)search.find(text + place, text + count + length - 1, [&](std::size_t offset) {
    if (place + offset < earliest) return false;
    places[found++] = place + offset;
    earliest = place + offset + length;
    return found == places.size();
  });
  return found;
}

// Looks for places where the needle's first and last units stand the right way apart, a vector of
// them at once, and compares the rest only there. After W. Muła, "SIMD-friendly algorithms for
// substring searching". Gives how many of the `count` places fit.
template <std::size_t widest, class Letters>
HWY_ATTR std::size_t findPlacesBy(Letters letters, const std::uint16_t* text, std::size_t count,
                                  const std::uint16_t* needle, std::size_t length,
                                  std::span<std::size_t> places) {
  const hn::CappedTag<std::uint16_t, widest> tag;
  const std::size_t lanes = hn::Lanes(tag);
  // What two cases of a unit differ in is set in both before they are compared.
  const auto firstCase = hn::Set(tag, letters.caseBit(needle[0]));
  const auto lastCase = hn::Set(tag, letters.caseBit(needle[length - 1]));
  const auto first = hn::Or(hn::Set(tag, needle[0]), firstCase);
  const auto last = hn::Or(hn::Set(tag, needle[length - 1]), lastCase);
  std::size_t found = 0;
  std::size_t place = 0;
  // The first place that does not overlap what has been found.
  std::size_t earliest = 0;
  // Units that may be compared in vain before a search takes over that never does so twice.
  std::size_t budget = 4 * count + 1024;
  const auto take = [&](std::size_t candidate) {
    if (candidate < earliest) return;
    if (letters.areEqual(text + candidate, needle, length)) {
      places[found++] = candidate;
      earliest = candidate + length;
    } else {
      budget -= std::min(budget, length);
    }
  };

  const auto candidatesAt = [&](std::size_t at) HWY_ATTR {
    const auto atFirst = hn::Eq(hn::Or(hn::LoadU(tag, text + at), firstCase), first);
    const auto atLast = hn::Eq(hn::Or(hn::LoadU(tag, text + at + length - 1), lastCase), last);
    const auto candidates = hn::And(atFirst, atLast);
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
      take(at + static_cast<std::size_t>(std::countr_zero(bits)));
      if (found == places.size()) return true;
    }
    return false;
  };

  for (; place + lanes <= count; place += lanes) {
    const std::uint32_t bits = candidatesAt(place);
    if (bits == 0) continue;
    if (takeAll(place, bits)) return found;
    if (budget == 0) {
      const std::size_t next = std::max(place + lanes, earliest);
      if (next >= count) return found;
      return findLinearly(letters, text, next, count, needle, length, places, found);
    }
  }
  if (place < count && count >= lanes) {
    // The last vector overlaps the one before it.
    const std::size_t at = count - lanes;
    const auto done = static_cast<std::uint32_t>(place - at);
    takeAll(at, candidatesAt(at) >> done << done);
    return found;
  }
  for (; place < count && found < places.size(); ++place) {
    take(place);
  }
  return found;
}

template <class Letters>
std::size_t findPlaces(Letters letters, const std::uint16_t* text, std::size_t count,
                       const std::uint16_t* needle, std::size_t length,
                       std::span<std::size_t> places) {
  // The widest vector that the text fills.
  return count < 32 ? findPlacesBy<8>(letters, text, count, needle, length, places)
                    : findPlacesBy<32>(letters, text, count, needle, length, places);
}

std::size_t findUnits(const std::uint16_t* text, std::size_t count, const std::uint16_t* needle,
                      std::size_t length, std::span<std::size_t> places) {
  return findPlaces(AsTheyAre(), text, count, needle, length, places);
}

std::size_t findFolded(const std::uint16_t* text, std::size_t count, const std::uint16_t* needle,
                       std::size_t length, std::span<std::size_t> places) {
  return findPlaces(ASCIIFolded(), text, count, needle, length, places);
}

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(findUnits);
HWY_EXPORT(findFolded);

namespace {

std::size_t findWith(auto find, std::u16string_view text, std::u16string_view needle,
                     std::size_t from, std::span<std::size_t> places) {
  if (places.empty() || needle.empty() || from > text.size() || needle.size() > text.size() - from)
    return 0;
  const std::size_t count = text.size() - from - needle.size() + 1;
  // Highway has no lanes of char16_t; its units are the same 16 bits.
  const auto* const units = reinterpret_cast<const std::uint16_t*>(text.data()) + from;
  const auto* const wanted = reinterpret_cast<const std::uint16_t*>(needle.data());
  const std::size_t found = find(units, count, wanted, needle.size(), places);
  for (std::size_t& place : places.first(found)) place += from;
  return found;
}

}  // namespace

std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle, std::size_t from,
                        std::span<std::size_t> places) {
  return findWith(HWY_DYNAMIC_DISPATCH(findUnits), text, needle, from, places);
}

std::size_t NSFindASCIIFolded(std::u16string_view text, std::u16string_view needle,
                              std::size_t from) {
  std::size_t place = 0;
  const auto find = HWY_DYNAMIC_DISPATCH(findFolded);
  return findWith(find, text, needle, from, {&place, 1}) == 0 ? std::u16string_view::npos : place;
}

#endif
