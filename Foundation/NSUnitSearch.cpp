#include "Foundation/NSUnitSearch.h"

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
// substring searching". Gives `count` when none of the `count` places fits.
HWY_ATTR std::size_t findPlace(const std::uint16_t* text, std::size_t count,
                               const std::uint16_t* needle, std::size_t length) {
  const hn::ScalableTag<std::uint16_t> tag;
  const std::size_t lanes = hn::Lanes(tag);
  const auto first = hn::Set(tag, needle[0]);
  const auto last = hn::Set(tag, needle[length - 1]);
  const auto matches = [&](std::size_t place) {
    return std::memcmp(text + place, needle, length * sizeof(*needle)) == 0;
  };

  std::size_t place = 0;
  for (; place + lanes <= count; place += lanes) {
    const auto atFirst = hn::Eq(hn::LoadU(tag, text + place), first);
    const auto atLast = hn::Eq(hn::LoadU(tag, text + place + length - 1), last);
    auto candidates = hn::And(atFirst, atLast);
    while (!hn::AllFalse(tag, candidates)) {
      const auto lane = static_cast<std::size_t>(hn::FindKnownFirstTrue(tag, candidates));
      if (matches(place + lane)) return place + lane;
      candidates = hn::AndNot(hn::FirstN(tag, lane + 1), candidates);
    }
  }
  for (; place < count; ++place) {
    if (text[place] == needle[0] && matches(place)) return place;
  }
  return count;
}

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(findPlace);

std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle,
                        std::size_t from) noexcept {
  const std::size_t none = std::u16string_view::npos;
  if (needle.empty() || from > text.size() || needle.size() > text.size() - from) return none;
  const std::size_t count = text.size() - from - needle.size() + 1;
  // Highway has no lanes of char16_t; its units are the same 16 bits.
  const auto* const units = reinterpret_cast<const std::uint16_t*>(text.data()) + from;
  const auto* const wanted = reinterpret_cast<const std::uint16_t*>(needle.data());
  const std::size_t place = HWY_DYNAMIC_DISPATCH(findPlace)(units, count, wanted, needle.size());
  return place == count ? none : from + place;
}

#endif
