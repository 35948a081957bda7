#include "Foundation/Text/UnitMembership.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include <Foundation/NSUnicode.h>
#include <Foundation/Objects/Access.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/Text/UnitMembership.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

// Machines without vectors look every unit up in the bitmap.

void findASCIIMembers(const std::uint16_t* /*units*/, std::size_t count,
                      const std::uint8_t* /*rows*/, const std::uint16_t* /*runs*/,
                      std::uint64_t* members, std::uint64_t* others) {
  const std::size_t words = count / 64 + 1;
  std::fill_n(members, words, 0);
  std::fill_n(others, words, ~std::uint64_t{0});
  others[words - 1] = (std::uint64_t{1} << (count % 64)) - 1;
}

std::size_t copyUnmarked(const std::uint16_t* units, std::size_t count, const std::uint64_t* marks,
                         std::uint16_t* out) {
  std::uint16_t* at = out;
  for (std::size_t k = 0; k < count; ++k) {
    if ((marks[k / 64] >> (k % 64) & 1U) == 0) *at++ = units[k];
  }
  return static_cast<std::size_t>(at - out);
}

#else

// Which of up to 32 units are members among the ASCII ones and those of two runs, and which are
// none of these.
struct Marks {
  std::uint32_t members = 0;
  std::uint32_t others = 0;
};

// Marks `size` units, 16 or 32. Bit h of rows[l] tells whether the unit 16 h + l is a member, so
// that two look-ups in tables of 16 bytes answer for a whole vector.
template <std::size_t size>
HWY_ATTR Marks marksOf(const std::uint16_t* units, const std::uint8_t* rows,
                       const std::uint16_t* runs) {
  const hn::CappedTag<std::uint8_t, size> bytes;
  const hn::RebindToSigned<decltype(bytes)> signedBytes;
  const hn::Half<decltype(bytes)> half;
  const hn::Rebind<std::uint16_t, decltype(half)> tag;
  const hn::Rebind<std::int16_t, decltype(half)> narrowable;
  const std::size_t lanes = hn::Lanes(tag);
  alignas(16) static constexpr std::array<std::uint8_t, 16> powers = {1, 2, 4, 8, 16, 32, 64, 128};
  const auto rowTable = hn::LoadDup128(bytes, rows);
  const auto powerTable = hn::LoadDup128(bytes, powers.data());
  const auto narrowed = [&](const std::uint16_t* from) HWY_ATTR {
    const auto unit = hn::Min(hn::LoadU(tag, from), hn::Set(tag, 0xFF));
    return hn::DemoteTo(half, hn::BitCast(narrowable, unit));
  };
  Marks marks;
  for (std::size_t k = 0; k < size; k += 2 * lanes) {
    const auto byte = hn::Combine(bytes, narrowed(units + k + lanes), narrowed(units + k));
    const auto row = hn::TableLookupBytes(rowTable, hn::And(byte, hn::Set(bytes, 0x0F)));
    const auto column = hn::TableLookupBytes(powerTable, hn::ShiftRight<4>(byte));
    const auto isOther = hn::Lt(hn::BitCast(signedBytes, byte), hn::Zero(signedBytes));
    // Mask bits are stored into, and read back as, one word of their own size.
    std::array<std::uint8_t, 8> stored{};
    std::uint32_t bits = 0;
    hn::StoreMaskBits(bytes, hn::TestBit(row, column), stored.data());
    std::memcpy(&bits, stored.data(), sizeof(bits));
    marks.members |= bits << k;
    stored = {};
    hn::StoreMaskBits(signedBytes, isOther, stored.data());
    std::memcpy(&bits, stored.data(), sizeof(bits));
    marks.others |= bits << k;
  }
  marks.members &= ~marks.others;
  for (std::size_t k = 0; k < size && marks.others != 0; k += lanes) {
    const auto unit = hn::LoadU(tag, units + k);
    const auto bitsWithin = [&](const std::uint16_t* run) HWY_ATTR {
      const auto fromStart = hn::Sub(unit, hn::Set(tag, run[0]));
      std::array<std::uint8_t, 8> stored{};
      std::uint32_t bits = 0;
      hn::StoreMaskBits(tag, hn::Lt(fromStart, hn::Set(tag, run[1])), stored.data());
      std::memcpy(&bits, stored.data(), sizeof(bits));
      return bits << k;
    };
    const std::uint32_t members = bitsWithin(runs + 2);
    marks.members |= members;
    marks.others &= ~(members | bitsWithin(runs));
  }
  return marks;
}

// The marks of fewer than 32 units.
HWY_ATTR Marks marksOfFew(const std::uint16_t* units, std::size_t count, const std::uint8_t* rows,
                          const std::uint16_t* runs) {
  constexpr std::size_t half = 16;
  if (count >= half) {
    const Marks low = marksOf<half>(units, rows, runs);
    const Marks high = marksOf<half>(units + count - half, rows, runs);
    const std::size_t shift = count - half;
    return {low.members | high.members << shift, low.others | high.others << shift};
  }
  std::array<std::uint16_t, half> padded{};
  std::copy_n(units, count, padded.begin());
  const std::uint32_t used = (1U << count) - 1;
  const Marks marks = marksOf<half>(padded.data(), rows, runs);
  return {marks.members & used, marks.others & used};
}

// Writes the marks as bits of words, up to the one that bit `count` falls into.
HWY_ATTR void findASCIIMembers(const std::uint16_t* units, std::size_t count,
                               const std::uint8_t* rows, const std::uint16_t* runs,
                               std::uint64_t* members, std::uint64_t* others) {
  constexpr std::size_t block = 32;
  std::size_t at = 0;
  const auto put = [&](Marks marks) {
    const bool isFirst = at % 64 == 0;
    const std::uint64_t formerMembers = isFirst ? 0 : members[at / 64];
    const std::uint64_t formerOthers = isFirst ? 0 : others[at / 64];
    members[at / 64] = formerMembers | std::uint64_t{marks.members} << (at % 64);
    others[at / 64] = formerOthers | std::uint64_t{marks.others} << (at % 64);
  };
  for (; at + block <= count; at += block) put(marksOf<block>(units + at, rows, runs));
  const std::size_t rest = count - at;
  if (rest == 0) return put({});
  if (count < block) return put(marksOfFew(units, count, rows, runs));
  const Marks last = marksOf<block>(units + count - block, rows, runs);
  put({last.members >> (block - rest), last.others >> (block - rest)});
}

// Squeezes the units of 0 bits together. `out` may be the text: what is overwritten has been read.
HWY_ATTR std::size_t copyUnmarked(const std::uint16_t* units, std::size_t count,
                                  const std::uint64_t* marks, std::uint16_t* out) {
  const hn::CappedTag<std::uint16_t, 16> tag;
  const std::size_t lanes = hn::Lanes(tag);
  std::uint16_t* at = out;
  std::size_t k = 0;
  const auto keptFrom = [&] { return ~marks[k / 64] >> (k % 64); };
  for (; k + lanes <= count; k += lanes) {
    const std::uint64_t kept = keptFrom();
    std::array<std::uint8_t, 8> bits{};
    std::memcpy(bits.data(), &kept, sizeof(kept));
    const auto unit = hn::LoadU(tag, units + k);
    const auto isKept = hn::LoadMaskBits(tag, bits.data());
    hn::StoreU(hn::Compress(unit, isKept), tag, at);
    at += hn::CountTrue(tag, isKept);
  }
  for (; k < count; ++k) {
    *at = units[k];
    at += keptFrom() & 1U;
  }
  return static_cast<std::size_t>(at - out);
}

#endif

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(findASCIIMembers);
HWY_EXPORT(copyUnmarked);

namespace {

constexpr std::size_t wordSize = 64;

// Highway has no lanes of char16_t; its units are the same 16 bits.
const std::uint16_t* lanesOf(const char16_t* units) {
  return reinterpret_cast<const std::uint16_t*>(units);
}
std::uint16_t* lanesOf(char16_t* units) { return reinterpret_cast<std::uint16_t*>(units); }

bool isPair(std::u16string_view text, std::size_t high) {
  return high + 1 < text.size() && NSIsHighSurrogate(text[high]) &&
         NSIsLowSurrogate(text[high + 1]);
}

// Calls `use` with the question for one unit, so that its loops are compiled for either kind.
template <class Use>
auto withMembership(const NSCharacterSet& set, std::u16string_view text, NSMembership membership,
                    Use use) {
  const auto isMemberUnit = [bitmap = NSAccess::unitBitmap(set),
                             units = text.data()](std::size_t at) {
    const char16_t unit = units[at];
    return (bitmap[unit / wordSize] >> (unit % wordSize) & 1U) != 0;
  };
  if (membership == NSMembership::units) return use(isMemberUnit);
  return use([&](std::size_t at) {
    if (!NSIsSurrogate(text[at])) return isMemberUnit(at);
    const bool isSecond = at > 0 && isPair(text, at - 1);
    if (!isSecond && !isPair(text, at)) return isMemberUnit(at);
    std::u16string_view pair = text.substr(isSecond ? at - 1 : at);
    return set.longCharacterIsMember(NSTakeCharacter(pair));
  });
}

// The words that hold bits.
std::span<const std::uint64_t> find(const NSCharacterSet& set, std::u16string_view text,
                                    std::size_t from, std::size_t count, NSMembership membership,
                                    NSMemberBits& bits) noexcept {
  std::array<std::uint64_t, std::tuple_size_v<decltype(bits.words)>> others;
  HWY_DYNAMIC_DISPATCH(findASCIIMembers)
  (lanesOf(text.data() + from), count, NSAccess::asciiRows(set), NSAccess::runs(set),
   bits.words.data(), others.data());
  const std::size_t used = (count + wordSize - 1) / wordSize;
  withMembership(set, text, membership, [&](auto isMember) {
    for (std::size_t word = 0; word < used; ++word) {
      std::uint64_t members = bits.words[word];
      for (std::uint64_t other = others[word]; other != 0; other &= other - 1) {
        const auto bit = static_cast<std::size_t>(std::countr_zero(other));
        members |= std::uint64_t{isMember(from + word * wordSize + bit)} << bit;
      }
      bits.words[word] = members;
    }
  });
  return std::span(bits.words).first(used);
}

}  // namespace

std::span<const std::uint64_t> NSFindMembers(const NSCharacterSet& set, std::u16string_view text,
                                             std::size_t from, NSMembership membership,
                                             NSMemberBits& bits) noexcept {
  return find(set, text, from, std::min(text.size() - from, NSMemberBits::unitCount), membership,
              bits);
}

// Most searches end within a few units, for which the vectors are not worth setting up.
constexpr std::size_t unitsByHand = 8;

std::size_t NSFirstMember(const NSCharacterSet& set, std::u16string_view text, std::size_t from,
                          NSMembership membership) noexcept {
  const std::size_t near = std::min(text.size(), from + unitsByHand);
  withMembership(set, text, membership, [&](auto isMember) {
    while (from < near && !isMember(from)) ++from;
  });
  if (from < near) return from;
  NSMemberBits bits;
  while (from < text.size()) {
    const std::size_t count = std::min(text.size() - from, NSMemberBits::unitCount);
    std::size_t at = from;
    for (const std::uint64_t word : find(set, text, from, count, membership, bits)) {
      if (word != 0) return at + static_cast<std::size_t>(std::countr_zero(word));
      at += wordSize;
    }
    from += count;
  }
  return std::u16string_view::npos;
}

std::size_t NSEndOfLastMember(const NSCharacterSet& set, std::u16string_view text,
                              NSMembership membership) noexcept {
  std::size_t end = text.size();
  const std::size_t near = end - std::min(end, unitsByHand);
  withMembership(set, text, membership, [&](auto isMember) {
    while (end > near && !isMember(end - 1)) --end;
  });
  if (end > near) return end;
  NSMemberBits bits;
  while (end > 0) {
    const std::size_t from = end - std::min(end, NSMemberBits::unitCount);
    const auto words = find(set, text, from, end - from, membership, bits);
    for (std::size_t word = words.size(); word-- > 0;) {
      if (words[word] == 0) continue;
      return from + word * wordSize + static_cast<std::size_t>(std::bit_width(words[word]));
    }
    end = from;
  }
  return 0;
}

std::size_t NSCopyNonMembers(const NSCharacterSet& set, std::u16string_view text,
                             NSMembership membership, char16_t* out) noexcept {
  const auto copy = HWY_DYNAMIC_DISPATCH(copyUnmarked);
  char16_t* at = out;
  NSMemberBits bits;
  for (std::size_t from = 0; from < text.size(); from += NSMemberBits::unitCount) {
    const std::size_t count = std::min(text.size() - from, NSMemberBits::unitCount);
    find(set, text, from, count, membership, bits);
    at += copy(lanesOf(text.data() + from), count, bits.words.data(), lanesOf(at));
  }
  return static_cast<std::size_t>(at - out);
}

#endif
