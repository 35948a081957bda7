#include "Foundation/Text/UnicodeKernels.h"

#include <algorithm>
#include <array>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Foundation/Text/UnicodeKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

// Machines without vectors are served by the scalar code around.

NSTranscoded decode(const std::uint8_t* /*in*/, std::size_t /*size*/, std::size_t position,
                    std::uint16_t* /*out*/) {
  return {position, 0};
}

NSTranscoded encode(const std::uint16_t* /*in*/, std::size_t /*size*/, std::size_t position,
                    std::uint8_t* /*out*/, std::size_t /*room*/) {
  return {position, 0};
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// What Keiser and Lemire's "Validating UTF-8 In Less Than One Instruction Per Byte" (2021) finds
// wrong with two neighbours, by the high and the low half of the first one and the high half of the
// second one; a fault has its bit in all three tables.
enum Fault : std::uint8_t {
  tooShort = 1U << 0U,  // A lead or ASCII in the place of a continuation.
  tooLong = 1U << 1U,   // A continuation after ASCII.
  overlong3 = 1U << 2U,
  tooLarge = 1U << 3U,  // Above U+10FFFF, by F4 90 to F4 BF.
  surrogate = 1U << 4U,
  overlong2 = 1U << 5U,
  tooLarge1000 = 1U << 6U,  // By F5 80 and above; and overlong in four bytes, which F0 tells apart.
  twoContinuations = 1U << 7U,  // Right where a third or fourth byte has to be.
};
constexpr std::uint8_t anyLow = tooShort | tooLong | twoContinuations;
constexpr std::uint8_t beyond = anyLow | tooLarge | tooLarge1000;
alignas(16) constexpr std::array<std::uint8_t, 16> faultsOfFirstHigh = {
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    twoContinuations,
    twoContinuations,
    twoContinuations,
    twoContinuations,
    tooShort | overlong2,
    tooShort,
    tooShort | overlong3 | surrogate,
    tooShort | tooLarge | tooLarge1000};
alignas(16) constexpr std::array<std::uint8_t, 16> faultsOfFirstLow = {
    anyLow | overlong3 | overlong2 | tooLarge1000,
    anyLow | overlong2,
    anyLow,
    anyLow,
    anyLow | tooLarge,
    beyond,
    beyond,
    beyond,
    beyond,
    beyond,
    beyond,
    beyond,
    beyond,
    beyond | surrogate,
    beyond,
    beyond};
constexpr std::uint8_t anyContinuation = tooLong | overlong2 | twoContinuations;
alignas(16) constexpr std::array<std::uint8_t, 16> faultsOfSecondHigh = {
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    anyContinuation | overlong3 | tooLarge1000,
    anyContinuation | overlong3 | tooLarge,
    anyContinuation | surrogate | tooLarge,
    anyContinuation | surrogate | tooLarge,
    tooShort,
    tooShort,
    tooShort,
    tooShort};

// How many bytes before a block its characters may begin.
constexpr std::size_t behind = 3;
constexpr std::size_t maxBytes = 64;

// Every byte of a block makes both bytes of the unit that would end with it; where no character
// ends, they are then squeezed out. A character of four bytes gives its high half at the third
// byte. Reads the three bytes before the block, which are part of well-formed text. False when the
// block is not well-formed, up to its last byte.
template <class Tag>
HWY_ATTR bool decodeBlock(Tag tag, const std::uint8_t* in, std::uint16_t*& out) {
  const hn::Half<Tag> half;
  const hn::Rebind<std::uint16_t, decltype(half)> units;
  const auto constant = [&](int value)
                            HWY_ATTR { return hn::Set(tag, static_cast<std::uint8_t>(value)); };
  const auto store = [&](auto low, auto high) HWY_ATTR {
    const auto join = [&](auto lows, auto highs, std::size_t at) HWY_ATTR {
      hn::StoreU(hn::Or(hn::PromoteTo(units, lows), hn::ShiftLeft<8>(hn::PromoteTo(units, highs))),
                 units, out + at);
    };
    join(hn::LowerHalf(half, low), hn::LowerHalf(half, high), 0);
    join(hn::UpperHalf(half, low), hn::UpperHalf(half, high), hn::Lanes(units));
  };

  const auto byte = hn::LoadU(tag, in);
  const auto third = hn::LoadU(tag, in - 3);
  if (hn::AllTrue(tag, hn::Lt(hn::Or(byte, third), constant(0x80)))) {
    hn::StoreU(hn::PromoteTo(units, hn::LowerHalf(half, byte)), units, out);
    hn::StoreU(hn::PromoteTo(units, hn::UpperHalf(half, byte)), units, out + hn::Lanes(units));
    out += hn::Lanes(tag);
    return true;
  }
  const auto first = hn::LoadU(tag, in - 1);
  const auto second = hn::LoadU(tag, in - 2);

  const auto faults = [&](const auto& table, auto index) HWY_ATTR {
    return hn::TableLookupBytes(hn::LoadDup128(tag, table.data()), index);
  };
  const auto found = hn::And(hn::And(faults(faultsOfFirstHigh, hn::ShiftRight<4>(first)),
                                     faults(faultsOfFirstLow, hn::And(first, constant(0x0F)))),
                             faults(faultsOfSecondHigh, hn::ShiftRight<4>(byte)));
  const auto isFurther = hn::And(hn::Or(hn::SaturatedSub(second, constant(0xE0 - 0x80)),
                                        hn::SaturatedSub(third, constant(0xF0 - 0x80))),
                                 constant(0x80));
  if (!hn::AllTrue(tag, hn::Eq(found, isFurther))) return false;

  const auto isAtLeast = [&](auto value, int bound)
                             HWY_ATTR { return hn::Gt(value, constant(bound - 1)); };
  const auto isShort = hn::Lt(byte, constant(0x80));
  auto low = hn::Or(hn::ShiftLeft<6>(first), hn::And(byte, constant(0x3F)));
  auto high = hn::And(hn::ShiftRight<2>(first), constant(0x0F));
  high = hn::Or(high, hn::IfThenElseZero(isAtLeast(second, 0xE0), hn::ShiftLeft<4>(second)));
  const auto endsHigh = isAtLeast(second, 0xF0);
  const auto endsLow = isAtLeast(third, 0xF0);
  if (!hn::AllFalse(tag, hn::Or(endsHigh, endsLow))) {
    high = hn::IfThenElse(endsLow, hn::Or(hn::And(high, constant(0x03)), constant(0xDC)), high);
    // The character's upper bits less U+10000: of 0x40, and above it of a carry.
    const auto upper =
        hn::Or(hn::ShiftLeft<2>(first), hn::And(hn::ShiftRight<4>(byte), constant(0x03)));
    low = hn::IfThenElse(endsHigh, hn::Sub(upper, constant(0x40)), low);
    const auto carry = hn::VecFromMask(tag, hn::Lt(upper, constant(0x40)));
    high = hn::IfThenElse(endsHigh, hn::Add(hn::Sub(second, constant(0xF0 - 0xD8)), carry), high);
  }
  // Neither a first byte, but for ASCII, nor a second one that another follows.
  const auto isKept =
      hn::Lt(hn::Max(byte, hn::SaturatedSub(first, constant(0xE0 - 0xC0))), constant(0xC0));
  low = hn::IfThenElse(isShort, byte, low);
  high = hn::IfThenZeroElse(isShort, high);
  store(hn::Compress(low, isKept), hn::Compress(high, isKept));
  out += hn::CountTrue(tag, isKept);
  return true;
}

// The first block of a text or its last one, with zeros around the text.
class PaddedBlock {
 public:
  // Copies `count` bytes at `position`, and what stands in front of them, in pieces of one size:
  // compilers make a slow `rep movs` of a short copy whose size varies. Gives the block.
  HWY_ATTR const std::uint8_t* fill(const std::uint8_t* in, std::size_t position,
                                    std::size_t count) {
    _bytes.fill(0);
    const std::size_t from = position - std::min(position, behind);
    for (std::size_t at = position + count; at > from;) {
      at -= std::min(at, piece);
      std::copy_n(in + at, piece, _bytes.data() + (front + at - position));
    }
    return _bytes.data() + front;
  }

 private:
  static constexpr std::size_t piece = NSFewestToTranscode;
  static constexpr std::size_t front = behind + piece;

  std::array<std::uint8_t, front + maxBytes> _bytes;
};

HWY_ATTR NSTranscoded decode(const std::uint8_t* in, std::size_t size, std::size_t position,
                             std::uint16_t* out) {
  const hn::CappedTag<std::uint8_t, maxBytes> tag;
  const std::size_t lanes = hn::Lanes(tag);
  PaddedBlock copy;
  std::array<std::uint16_t, maxBytes> units;
  std::uint16_t* at = out;
  for (std::size_t count = lanes; count == lanes; position += count) {
    const std::uint8_t* block = in + position;
    std::uint16_t* end = at;
    const bool isInside = position >= behind && position + lanes <= size;
    if (!isInside) {
      // After a text that ends within a character the zeros show the fault, in an empty block if
      // need be.
      count = std::min(lanes, size - position);
      block = copy.fill(in, position, count);
      end = units.data();
    }
    if (!decodeBlock(tag, block, end)) break;
    at = isInside ? end : std::copy(units.data(), end - (lanes - count), at);
  }

  // In front of a fault, goes back to the start of a character that it does not let end.
  for (std::size_t back = 1; back <= std::min(position, behind); ++back) {
    const std::uint8_t byte = in[position - back];
    if ((byte & 0xC0U) == 0x80U) continue;
    const std::size_t length = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    if (length <= back) break;
    // Three bytes of four have given the high half.
    if (back == 3) --at;
    position -= back;
    break;
  }
  return {position, static_cast<std::size_t>(at - out)};
}

constexpr std::size_t maxUnits = 32;

// Squeezes the bytes that are kept together.
template <class Tag, class Vector>
HWY_ATTR void put(Tag /*tag*/, Vector encoded, Vector kept, std::uint8_t*& out) {
  const hn::Repartition<std::uint8_t, Tag> bytes;
  const auto isKept = hn::MaskFromVec(hn::BitCast(bytes, kept));
  hn::StoreU(hn::Compress(hn::BitCast(bytes, encoded), isKept), bytes, out);
  out += hn::CountTrue(bytes, isKept);
}

// Encodes characters of three bytes, each in four lanes, where no byte of the others is kept.
template <class Tag, class Vector>
HWY_ATTR void encodeLong(Tag tag, Vector units, Vector others, Vector keptOfOthers,
                         std::uint8_t*& out) {
  const auto promote = [&](auto value) HWY_ATTR { return hn::PromoteTo(tag, value); };
  const auto constant = [&](std::uint32_t value) HWY_ATTR { return hn::Set(tag, value); };
  const auto unit = promote(units);
  const auto kept = promote(keptOfOthers);
  const auto isLong = hn::Eq(kept, hn::Zero(tag));
  const auto three = hn::Or(hn::Or(hn::ShiftRight<12>(unit), constant(0x8080E0)),
                            hn::Or(hn::And(hn::ShiftLeft<2>(unit), constant(0x3F00)),
                                   hn::And(hn::ShiftLeft<16>(unit), constant(0x3F0000))));
  put(tag, hn::IfThenElse(isLong, three, promote(others)),
      hn::IfThenElse(isLong, constant(0xFFFFFF), kept), out);
}

// Each unit of a block makes its own bytes, of a pair each half two. Where there are halves, it
// asks `withNeighbours` for the block with what is beside it.
template <class Tag, class Vector, class WithNeighbours>
HWY_ATTR void encodeBlock(Tag tag, Vector unit, WithNeighbours withNeighbours, std::uint8_t*& out) {
  const auto constant = [&](int value)
                            HWY_ATTR { return hn::Set(tag, static_cast<std::uint16_t>(value)); };
  const auto bits = [&](auto value, int mask) HWY_ATTR { return hn::And(value, constant(mask)); };
  const auto isPartOf = [&](auto value, int mask, int start)
                            HWY_ATTR { return hn::Eq(bits(value, mask), constant(start)); };

  const auto isShort = hn::Lt(unit, constant(0x80));
  if (hn::AllTrue(tag, isShort)) {
    const hn::Rebind<std::uint8_t, Tag> narrow;
    const hn::RebindToSigned<Tag> narrowable;
    hn::StoreU(hn::DemoteTo(narrow, hn::BitCast(narrowable, unit)), narrow, out);
    out += hn::Lanes(tag);
    return;
  }

  auto isTwo = hn::Lt(unit, constant(0x800));
  const auto last = bits(hn::ShiftLeft<8>(unit), 0x3F00);
  auto two = hn::Or(hn::Or(hn::ShiftRight<6>(unit), last), constant(0x80C0));
  const auto isHalf = isPartOf(unit, 0xF800, 0xD800);
  if (!hn::AllFalse(tag, isHalf)) {
    const std::uint16_t* const in = withNeighbours();
    const auto before = hn::LoadU(tag, in - 1);
    const auto isHigh = isPartOf(unit, 0xFC00, 0xD800);
    const auto opens = hn::And(isHigh, isPartOf(hn::LoadU(tag, in + 1), 0xFC00, 0xDC00));
    const auto closes = hn::And(hn::AndNot(isHigh, isHalf), isPartOf(before, 0xFC00, 0xD800));
    // What the character has above the low half's bits.
    const auto upper = hn::Add(bits(unit, 0x3FF), constant(0x40));
    const auto opening = hn::Or(hn::Or(hn::ShiftRight<8>(upper), constant(0x80F0)),
                                bits(hn::ShiftLeft<6>(upper), 0x3F00));
    const auto closing = hn::Or(hn::Or(bits(hn::ShiftLeft<4>(before), 0x30), constant(0x8080)),
                                hn::Or(bits(hn::ShiftRight<6>(unit), 0x0F), last));
    two = hn::IfThenElse(opens, opening, hn::IfThenElse(closes, closing, two));
    isTwo = hn::Or(isTwo, hn::Or(opens, closes));
    unit = hn::IfThenElse(isHalf, constant(0xFFFD), unit);
  }

  const auto encoded = hn::IfThenElse(isShort, unit, two);
  const auto kept =
      hn::IfThenElse(isShort, constant(0xFF), hn::IfThenElseZero(isTwo, constant(0xFFFF)));
  if (hn::AllTrue(tag, isTwo)) return put(tag, encoded, kept, out);
  const hn::RepartitionToWide<Tag> wide;
  const hn::Half<Tag> half;
  const auto lower = [&](auto value) HWY_ATTR { return hn::LowerHalf(half, value); };
  const auto higher = [&](auto value) HWY_ATTR { return hn::UpperHalf(half, value); };
  encodeLong(wide, lower(unit), lower(encoded), lower(kept), out);
  encodeLong(wide, higher(unit), higher(encoded), higher(kept), out);
}

HWY_ATTR NSTranscoded encode(const std::uint16_t* in, std::size_t size, std::size_t position,
                             std::uint8_t* out, std::size_t room) {
  const hn::CappedTag<std::uint16_t, maxUnits> tag;
  const std::size_t lanes = hn::Lanes(tag);
  std::uint8_t* at = out;
  const std::uint8_t* const end = out + room;
  std::array<std::uint16_t, 1 + maxUnits + 1> units;
  for (std::size_t count = 0; position < size && at < end; position += count) {
    count = std::min(lanes, size - position);
    const std::size_t missing = lanes - count;
    if (missing != 0 && size >= lanes && static_cast<std::size_t>(at - out) >= missing &&
        hn::AllTrue(tag, hn::Lt(hn::LoadU(tag, in + size - lanes), hn::Set(tag, 0x80)))) {
      // ASCII at the end: a part of it once more, to the same bytes, instead of a copy.
      position = size - lanes;
      count = lanes;
      at -= missing;
    }
    const auto copied = [&]() -> const std::uint16_t* {
      // With zeros around the text.
      const std::size_t before = std::min<std::size_t>(position, 1);
      units.fill(0);
      std::copy(in + position - before, in + std::min(size, position + lanes + 1),
                units.data() + 1 - before);
      return units.data() + 1;
    };
    const std::uint16_t* const block = count < lanes ? copied() : in + position;
    const auto withNeighbours = [&] {
      const bool isAtEdge = position == 0 || position + lanes == size;
      return count == lanes && isAtEdge ? copied() : block;
    };
    encodeBlock(tag, hn::LoadU(tag, block), withNeighbours, at);
    at -= lanes - count;
  }
  return {position, static_cast<std::size_t>(at - out)};
}

#endif

}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(decode);
HWY_EXPORT(encode);

// Highway has no lanes of char and char16_t; its own are the same 8 and 16 bits.

NSTranscoded NSDecodeWellFormed(std::string_view utf8, std::size_t position, char16_t* out) {
  return HWY_DYNAMIC_DISPATCH(decode)(reinterpret_cast<const std::uint8_t*>(utf8.data()),
                                      utf8.size(), position, reinterpret_cast<std::uint16_t*>(out));
}

NSTranscoded NSEncodeBlocks(std::u16string_view text, std::size_t position, char* out,
                            std::size_t room) {
  return HWY_DYNAMIC_DISPATCH(encode)(reinterpret_cast<const std::uint16_t*>(text.data()),
                                      text.size(), position, reinterpret_cast<std::uint8_t*>(out),
                                      room);
}

#endif
