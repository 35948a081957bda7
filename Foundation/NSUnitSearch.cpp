#include "Foundation/NSUnitSearch.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/NSUnitSearch.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Looks for places where the needle's first and last units stand the right way apart, a vector of
// them at once, and compares the rest only there. After W. Muła, "SIMD-friendly algorithms for
// substring searching". Gives how many of the `count` places fit.
HWY_ATTR std::size_t findPlaces(const std::uint16_t* text, std::size_t count,
                                const std::uint16_t* needle, std::size_t length,
                                std::span<std::size_t> places) {
  const hn::CappedTag<std::uint16_t, 64> tag;
  const std::size_t lanes = hn::Lanes(tag);
  const auto first = hn::Set(tag, needle[0]);
  const auto last = hn::Set(tag, needle[length - 1]);
  std::size_t found = 0;
  std::size_t place = 0;
  // The first place that does not overlap what has been found.
  std::size_t earliest = 0;
  const auto take = [&](std::size_t candidate) {
    if (candidate < earliest) return;
    if (length > 2 && std::memcmp(text + candidate + 1, needle + 1, (length - 2) * 2) != 0) return;
    places[found++] = candidate;
    earliest = candidate + length;
  };

  for (; place + lanes <= count; place += lanes) {
    const auto atFirst = hn::Eq(hn::LoadU(tag, text + place), first);
    const auto atLast = hn::Eq(hn::LoadU(tag, text + place + length - 1), last);
    const auto candidates = hn::And(atFirst, atLast);
    if (hn::AllFalse(tag, candidates)) continue;
    std::array<std::uint8_t, 8> stored{};
    hn::StoreMaskBits(tag, candidates, stored.data());
    std::uint64_t bits = 0;
    std::memcpy(&bits, stored.data(), sizeof(bits));
    for (; bits != 0; bits &= bits - 1) {
      take(place + static_cast<std::size_t>(std::countr_zero(bits)));
      if (found == places.size()) return found;
    }
  }
  for (; place < count && found < places.size(); ++place) {
    if (text[place] == needle[0] && text[place + length - 1] == needle[length - 1]) take(place);
  }
  return found;
}

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(findPlaces);

std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle, std::size_t from,
                        std::span<std::size_t> places) noexcept {
  if (needle.empty() || from > text.size() || needle.size() > text.size() - from) return 0;
  const std::size_t count = text.size() - from - needle.size() + 1;
  // Highway has no lanes of char16_t; its units are the same 16 bits.
  const auto* const units = reinterpret_cast<const std::uint16_t*>(text.data()) + from;
  const auto* const wanted = reinterpret_cast<const std::uint16_t*>(needle.data());
  const std::size_t found =
      HWY_DYNAMIC_DISPATCH(findPlaces)(units, count, wanted, needle.size(), places);
  for (std::size_t& place : places.first(found)) place += from;
  return found;
}

#endif
