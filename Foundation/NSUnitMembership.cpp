#include "Foundation/NSUnitMembership.h"

#include "Foundation/NSUnicode.h"

#include <algorithm>
#include <cstring>

#define HWY_WANT_AVX3_DL  // Compresses lanes of units in one instruction.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/NSUnitMembership.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

// Machines without vectors look every unit up in the bitmap.

void findASCIIMembers(const std::uint16_t* /*units*/, std::size_t words,
                      const std::uint8_t* /*rows*/, std::uint64_t* members, std::uint64_t* others) {
  std::fill_n(members, words, 0);
  std::fill_n(others, words, ~std::uint64_t{0});
}

std::size_t copyUnmarked(const std::uint16_t* units, std::size_t words, const std::uint64_t* marks,
                         std::uint16_t* out) {
  std::uint16_t* at = out;
  for (std::size_t k = 0; k < words * 64; ++k) {
    if ((marks[k / 64] >> (k % 64) & 1U) == 0) *at++ = units[k];
  }
  return static_cast<std::size_t>(at - out);
}

#else

// The members among the ASCII units, 64 units a word, and which units are not ASCII. Bit h of
// rows[l] tells whether the unit 16 h + l is a member, so that two look-ups in tables of 16 bytes
// answer for a whole vector.
HWY_ATTR void findASCIIMembers(const std::uint16_t* units, std::size_t words,
                               const std::uint8_t* rows, std::uint64_t* members,
                               std::uint64_t* others) {
  const hn::CappedTag<std::uint8_t, 64> bytes;
  const hn::Half<decltype(bytes)> half;
  const hn::Rebind<std::uint16_t, decltype(half)> tag;
  const hn::Rebind<std::int16_t, decltype(half)> narrowable;
  const std::size_t lanes = hn::Lanes(tag);
  alignas(16) static constexpr std::array<std::uint8_t, 16> powers = {1, 2, 4, 8, 16, 32, 64, 128};
  const auto rowTable = hn::LoadDup128(bytes, rows);
  const auto powerTable = hn::LoadDup128(bytes, powers.data());
  const auto narrowed = [&](auto unit)
                            HWY_ATTR { return hn::DemoteTo(half, hn::BitCast(narrowable, unit)); };
  for (std::size_t word = 0; word < words; ++word) {
    std::array<std::uint8_t, 16> memberBits{};
    std::array<std::uint8_t, 16> otherBits{};
    for (std::size_t k = 0; k < 64; k += 2 * lanes) {
      const auto low = hn::LoadU(tag, units + word * 64 + k);
      const auto high = hn::LoadU(tag, units + word * 64 + k + lanes);
      const auto byte = hn::Combine(bytes, narrowed(high), narrowed(low));
      const auto row = hn::TableLookupBytes(rowTable, hn::And(byte, hn::Set(bytes, 0x0F)));
      const auto column =
          hn::TableLookupBytes(powerTable, hn::And(hn::ShiftRight<4>(byte), hn::Set(bytes, 0x0F)));
      hn::StoreMaskBits(bytes, hn::TestBit(row, column), memberBits.data() + k / 8);
      const auto lastASCII = hn::Set(tag, 0x7F);
      hn::StoreMaskBits(tag, hn::Gt(low, lastASCII), otherBits.data() + k / 8);
      hn::StoreMaskBits(tag, hn::Gt(high, lastASCII), otherBits.data() + (k + lanes) / 8);
    }
    std::memcpy(members + word, memberBits.data(), 8);
    std::memcpy(others + word, otherBits.data(), 8);
    members[word] &= ~others[word];
  }
}

// Squeezes the units of 0 bits together. `out` may be the text itself: what a vector overwrites has
// been read.
HWY_ATTR std::size_t copyUnmarked(const std::uint16_t* units, std::size_t words,
                                  const std::uint64_t* marks, std::uint16_t* out) {
  const hn::CappedTag<std::uint16_t, 64> tag;
  std::uint16_t* at = out;
  for (std::size_t word = 0; word < words; ++word) {
    std::array<std::uint8_t, 16> bits{};
    const std::uint64_t kept = ~marks[word];
    std::memcpy(bits.data(), &kept, 8);
    for (std::size_t k = 0; k < 64; k += hn::Lanes(tag)) {
      const auto unit = hn::LoadU(tag, units + word * 64 + k);
      const auto isKept = hn::LoadMaskBits(tag, bits.data() + k / 8);
      hn::StoreU(hn::Compress(unit, isKept), tag, at);
      at += hn::CountTrue(tag, isKept);
    }
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

std::uint64_t lowBits(std::size_t count) { return (std::uint64_t{1} << count) - 1; }

// Highway has no lanes of char16_t; its units are the same 16 bits.
const std::uint16_t* lanesOf(const char16_t* units) {
  return reinterpret_cast<const std::uint16_t*>(units);
}

// A part of a text that is shorter than a word, filled up with NUL.
struct Padded {
  explicit Padded(std::u16string_view text) { std::ranges::copy(text, units.begin()); }
  std::array<char16_t, wordSize> units{};
};

bool isPair(std::u16string_view text, std::size_t high) {
  return high + 1 < text.size() && NSIsHighSurrogate(text[high]) &&
         NSIsLowSurrogate(text[high + 1]);
}

// Calls `use` with the question for one unit, so that its loops are compiled for either kind.
template <class Use>
auto withMembership(const NSCharacterSet& set, std::u16string_view text, NSMembership membership,
                    Use use) {
  const auto isMemberUnit = [bitmap = set.unitBitmap(), units = text.data()](std::size_t at) {
    const char16_t unit = units[at];
    return (bitmap[unit / wordSize] >> (unit % wordSize) & 1U) != 0;
  };
  if (membership == NSMembership::units) return use(isMemberUnit);
  return use([&](std::size_t at) {
    if ((text[at] & 0xF800U) != 0xD800U) return isMemberUnit(at);
    const bool isSecond = at > 0 && isPair(text, at - 1);
    if (!isSecond && !isPair(text, at)) return isMemberUnit(at);
    std::u16string_view pair = text.substr(isSecond ? at - 1 : at);
    return set.longCharacterIsMember(NSTakeCharacter(pair));
  });
}

}  // namespace

void NSFindMembers(const NSCharacterSet& set, std::u16string_view text, std::size_t from,
                   NSMembership membership, NSMemberBits& bits) noexcept {
  const std::u16string_view part = text.substr(from, NSMemberBits::unitCount);
  const std::size_t whole = part.size() / wordSize;
  const std::size_t rest = part.size() % wordSize;
  std::array<std::uint64_t, NSMemberBits::unitCount / wordSize> others;
  const auto find = HWY_DYNAMIC_DISPATCH(findASCIIMembers);
  find(lanesOf(part.data()), whole, set.asciiRows(), bits.words.data(), others.data());
  if (rest != 0) {
    const Padded padded(part.substr(whole * wordSize));
    find(lanesOf(padded.units.data()), 1, set.asciiRows(), &bits.words[whole], &others[whole]);
    bits.words[whole] &= lowBits(rest);
    others[whole] &= lowBits(rest);
  }
  const std::size_t used = whole + (rest != 0 ? 1 : 0);
  withMembership(set, text, membership, [&](auto isMember) {
    for (std::size_t word = 0; word < used; ++word) {
      for (std::uint64_t other = others[word]; other != 0; other &= other - 1) {
        const auto bit = static_cast<std::size_t>(std::countr_zero(other));
        bits.words[word] |= std::uint64_t{isMember(from + word * wordSize + bit)} << bit;
      }
    }
  });
  std::fill(bits.words.begin() + static_cast<std::ptrdiff_t>(used), bits.words.end(), 0);
}

// Words and fields are short: most searches end within the first few units, for which the vectors
// are not worth setting up.
constexpr std::size_t unitsByHand = 8;

std::size_t NSFirstMember(const NSCharacterSet& set, std::u16string_view text, std::size_t from,
                          NSMembership membership) noexcept {
  const std::size_t near = std::min(text.size(), from + unitsByHand);
  withMembership(set, text, membership, [&](auto isMember) {
    while (from < near && !isMember(from)) ++from;
  });
  if (from < near) return from;
  NSMemberBits bits;
  for (; from < text.size(); from += NSMemberBits::unitCount) {
    NSFindMembers(set, text, from, membership, bits);
    for (std::size_t word = 0; word < bits.words.size(); ++word) {
      if (bits.words[word] == 0) continue;
      return from + word * wordSize + static_cast<std::size_t>(std::countr_zero(bits.words[word]));
    }
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
    NSFindMembers(set, text, from, membership, bits);
    for (std::size_t word = bits.words.size(); word-- > 0;) {
      std::uint64_t found = bits.words[word];
      const std::size_t start = from + word * wordSize;
      if (start >= end || found == 0) continue;
      if (end - start < wordSize) found &= lowBits(end - start);
      if (found != 0) return start + static_cast<std::size_t>(std::bit_width(found));
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
    NSFindMembers(set, text, from, membership, bits);
    const std::u16string_view part = text.substr(from, NSMemberBits::unitCount);
    const std::size_t whole = part.size() / wordSize;
    at +=
        copy(lanesOf(part.data()), whole, bits.words.data(), reinterpret_cast<std::uint16_t*>(at));
    if (part.size() % wordSize != 0) {
      const Padded padded(part.substr(whole * wordSize));
      Padded squeezed({});
      const std::uint64_t marks = bits.words[whole] | ~lowBits(part.size() % wordSize);
      const std::size_t count = copy(lanesOf(padded.units.data()), 1, &marks,
                                     reinterpret_cast<std::uint16_t*>(squeezed.units.data()));
      at = std::copy_n(squeezed.units.begin(), count, at);
    }
  }
  return static_cast<std::size_t>(at - out);
}

#endif
