#include "Foundation/Text/UnicodeKernels.h"

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

// Every byte of a block gives a unit of its own, from it and the bytes around it; those of
// continuation bytes are then squeezed out. A character of four bytes gives its high half at the
// first byte and its low half at the second. False when the block is not well-formed.
template <class Tag>
HWY_ATTR bool decodeBlock(Tag tag, const std::uint8_t* in, std::uint16_t*& out) {
  const hn::Rebind<std::uint8_t, Tag> bytes;
  const auto load = [&](std::ptrdiff_t offset)
                        HWY_ATTR { return hn::PromoteTo(tag, hn::LoadU(bytes, in + offset)); };
  const auto constant = [&](int value)
                            HWY_ATTR { return hn::Set(tag, static_cast<std::uint16_t>(value)); };
  const auto isAtLeast = [&](auto value, int bound)
                             HWY_ATTR { return hn::Gt(value, constant(bound - 1)); };
  const auto payload = [&](auto byte) HWY_ATTR { return hn::And(byte, constant(0x3F)); };
  const auto isContinuation = [&](auto byte) HWY_ATTR {
    return hn::Eq(hn::And(byte, constant(0xC0)), constant(0x80));
  };

  const auto byte = load(0);
  if (hn::AllTrue(tag, hn::Lt(byte, constant(0x80)))) {
    hn::StoreU(byte, tag, out);
    out += hn::Lanes(tag);
    return true;
  }
  const auto next = load(1);
  const auto second = load(2);
  const auto third = load(3);
  const auto before = load(-1);

  const auto startsTwo = isAtLeast(byte, 0xC0);
  const auto startsThree = isAtLeast(byte, 0xE0);
  const auto startsFour = isAtLeast(byte, 0xF0);
  const auto continues = isContinuation(byte);
  const auto isSecondOfFour = isAtLeast(before, 0xF0);

  const auto two = hn::Or(hn::ShiftLeft<6>(hn::And(byte, constant(0x1F))), payload(next));
  const auto three =
      hn::Or(hn::ShiftLeft<12>(byte), hn::Or(hn::ShiftLeft<6>(payload(next)), payload(second)));
  // The high half less U+D800, for characters below U+110000 less than 0x400.
  const auto aboveHigh =
      hn::Sub(hn::Or(hn::ShiftLeft<8>(hn::And(byte, constant(0x0F))),
                     hn::Or(hn::ShiftLeft<2>(payload(next)), hn::ShiftRight<4>(payload(second)))),
              constant(0x40));
  const auto low = hn::Or(constant(0xDC00),
                          hn::Or(hn::ShiftLeft<6>(hn::And(next, constant(0x0F))), payload(second)));

  const auto isClaimed =
      hn::Or(isAtLeast(before, 0xC0), hn::Or(isAtLeast(load(-2), 0xE0), isAtLeast(load(-3), 0xF0)));
  auto isBroken = hn::AndNot(isClaimed, continues);
  isBroken = hn::Or(isBroken, hn::AndNot(isContinuation(next), startsTwo));
  isBroken = hn::Or(isBroken, hn::AndNot(isContinuation(second), startsThree));
  isBroken = hn::Or(isBroken, hn::AndNot(isContinuation(third), startsFour));
  // Overlong forms, surrogates, and what lies above U+10FFFF.
  isBroken =
      hn::Or(isBroken, hn::AndNot(startsThree, hn::And(startsTwo, hn::Lt(two, constant(0x80)))));
  const auto isSurrogate = hn::Eq(hn::And(three, constant(0xF800)), constant(0xD800));
  isBroken =
      hn::Or(isBroken,
             hn::AndNot(startsFour,
                        hn::And(startsThree, hn::Or(hn::Lt(three, constant(0x800)), isSurrogate))));
  isBroken = hn::Or(isBroken, hn::And(startsFour, isAtLeast(aboveHigh, 0x400)));
  if (!hn::AllFalse(tag, isBroken)) return false;

  auto unit = hn::IfThenElse(startsTwo, two, byte);
  unit = hn::IfThenElse(startsThree, three, unit);
  unit = hn::IfThenElse(startsFour, hn::Add(aboveHigh, constant(0xD800)), unit);
  unit = hn::IfThenElse(isSecondOfFour, low, unit);
  const auto isKept = hn::Or(hn::Not(continues), isSecondOfFour);
  hn::StoreU(hn::Compress(unit, isKept), tag, out);
  out += hn::CountTrue(tag, isKept);
  return true;
}

HWY_ATTR NSTranscoded decode(const std::uint8_t* in, std::size_t size, std::size_t position,
                             std::uint16_t* out) {
  const hn::ScalableTag<std::uint16_t> tag;
  const std::size_t lanes = hn::Lanes(tag);
  std::uint16_t* at = out;
  while (position + lanes + 3 <= size && decodeBlock(tag, in + position, at)) position += lanes;

  // The last character may reach over the end of its block, whose part of it has been written.
  for (std::size_t back = 1; back <= 3; ++back) {
    const std::uint8_t byte = in[position - back];
    if ((byte & 0xC0U) == 0x80U) continue;
    const std::size_t length = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    if (length <= back) break;
    if (length == 4 && back == 1) {
      *at++ = static_cast<std::uint16_t>(0xDC00U | ((in[position + 1] & 0xFU) << 6U) |
                                         (in[position + 2] & 0x3FU));
    }
    position += length - back;
    break;
  }
  return {position, static_cast<std::size_t>(at - out)};
}

// Every unit becomes four bytes, of which those that its length does not need are squeezed out. A
// high half takes its low half in; the low half's own bytes all go.
template <class Tag>
HWY_ATTR void encodeLong(Tag tag, const std::uint16_t* in, std::uint8_t*& out) {
  const hn::Rebind<std::uint16_t, Tag> units;
  const hn::Repartition<std::uint8_t, Tag> bytes;
  const auto load = [&](std::ptrdiff_t offset)
                        HWY_ATTR { return hn::PromoteTo(tag, hn::LoadU(units, in + offset)); };
  const auto constant = [&](std::uint32_t value) HWY_ATTR { return hn::Set(tag, value); };
  const auto startsWith = [&](auto unit, std::uint32_t bits) HWY_ATTR {
    return hn::Eq(hn::And(unit, constant(0xFC00)), constant(bits));
  };
  const auto bits = [&](auto value, std::uint32_t mask)
                        HWY_ATTR { return hn::And(value, constant(mask)); };

  const auto unit = load(0);
  const auto next = load(1);
  const auto isFirst = hn::And(startsWith(unit, 0xD800), startsWith(next, 0xDC00));
  const auto isLast = hn::And(startsWith(unit, 0xDC00), startsWith(load(-1), 0xD800));
  const auto isHalf = hn::Eq(bits(unit, 0xF800), constant(0xD800));
  const auto pair =
      hn::Add(hn::Add(hn::ShiftLeft<10>(bits(unit, 0x3FF)), bits(next, 0x3FF)), constant(0x10000));
  auto character = hn::IfThenElse(isHalf, constant(0xFFFD), unit);
  character = hn::IfThenElse(isFirst, pair, character);

  const auto isShort = hn::Lt(character, constant(0x80));
  const auto isTwo = hn::Lt(character, constant(0x800));
  const auto last = bits(character, 0x3F);
  const auto middle = bits(hn::ShiftRight<6>(character), 0x3F);
  const auto upper = bits(hn::ShiftRight<12>(character), 0x3F);
  const auto two =
      hn::Or(hn::ShiftRight<6>(character), hn::Or(hn::ShiftLeft<8>(last), constant(0x80C0)));
  const auto three = hn::Or(hn::Or(upper, hn::ShiftLeft<8>(middle)),
                            hn::Or(hn::ShiftLeft<16>(last), constant(0x8080E0)));
  const auto four = hn::Or(hn::Or(hn::Or(hn::ShiftRight<18>(character), hn::ShiftLeft<8>(upper)),
                                  hn::Or(hn::ShiftLeft<16>(middle), hn::ShiftLeft<24>(last))),
                           constant(0x808080F0));

  auto encoded = hn::IfThenElse(isTwo, two, three);
  encoded = hn::IfThenElse(isShort, character, encoded);
  encoded = hn::IfThenElse(isFirst, four, encoded);
  auto kept = hn::IfThenElse(isTwo, constant(0xFFFF), constant(0xFFFFFF));
  kept = hn::IfThenElse(isShort, constant(0xFF), kept);
  kept = hn::IfThenElse(isFirst, constant(0xFFFFFFFF), kept);
  kept = hn::IfThenZeroElse(isLast, kept);
  const auto isKept = hn::MaskFromVec(hn::BitCast(bytes, kept));
  hn::StoreU(hn::Compress(hn::BitCast(bytes, encoded), isKept), bytes, out);
  out += hn::CountTrue(bytes, isKept);
}

// Keeps what is stored within the slack.
constexpr std::size_t maxLanes = 32;

template <class Tag>
HWY_ATTR void encodeBlock(Tag tag, const std::uint16_t* in, std::uint8_t*& out) {
  const hn::Rebind<std::uint8_t, Tag> narrow;
  const hn::Repartition<std::uint8_t, Tag> bytes;
  const auto constant = [&](int value)
                            HWY_ATTR { return hn::Set(tag, static_cast<std::uint16_t>(value)); };
  const auto units = hn::LoadU(tag, in);
  const auto isShort = hn::Lt(units, constant(0x80));
  if (hn::AllTrue(tag, isShort)) {
    const hn::RebindToSigned<Tag> narrowable;
    hn::StoreU(hn::DemoteTo(narrow, hn::BitCast(narrowable, units)), narrow, out);
    out += hn::Lanes(tag);
  } else if (hn::AllTrue(tag, hn::Lt(units, constant(0x800)))) {
    const auto two =
        hn::Or(hn::ShiftRight<6>(units),
               hn::Or(hn::ShiftLeft<8>(hn::And(units, constant(0x3F))), constant(0x80C0)));
    const auto encoded = hn::IfThenElse(isShort, units, two);
    const auto kept = hn::IfThenElse(isShort, constant(0xFF), constant(0xFFFF));
    const auto isKept = hn::MaskFromVec(hn::BitCast(bytes, kept));
    hn::StoreU(hn::Compress(hn::BitCast(bytes, encoded), isKept), bytes, out);
    out += hn::CountTrue(bytes, isKept);
  } else {
    const hn::RepartitionToWide<Tag> wide;
    encodeLong(wide, in, out);
    encodeLong(wide, in + hn::Lanes(wide), out);
  }
}

HWY_ATTR NSTranscoded encode(const std::uint16_t* in, std::size_t size, std::size_t position,
                             std::uint8_t* out, std::size_t room) {
  const hn::CappedTag<std::uint16_t, maxLanes> tag;
  const std::size_t lanes = hn::Lanes(tag);
  std::uint8_t* at = out;
  const std::uint8_t* const end = out + room;
  while (position + lanes + 1 <= size && at < end) {
    encodeBlock(tag, in + position, at);
    position += lanes;
  }
  const auto startsWith = [](std::uint16_t unit, std::uint16_t bits) {
    return (unit & 0xFC00U) == bits;
  };
  if (startsWith(in[position - 1], 0xD800) && position < size && startsWith(in[position], 0xDC00)) {
    ++position;
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
