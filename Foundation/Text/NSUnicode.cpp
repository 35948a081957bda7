#include "Foundation/NSUnicode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include <unicode/uchar.h>

#include <Foundation/Text/UnicodeKernels.h>

namespace {

constexpr char16_t replacementCharacter = 0xFFFD;

bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

struct Decoded {
  char32_t character;
  std::size_t length;
  bool isWellFormed;
};

// Decodes the first character of bytes that are not empty. A broken sequence gives U+FFFD and the
// length of its longest part that could have begun a well-formed one (at least one byte).
Decoded decodeFirst(std::string_view utf8) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(utf8.data());
  const unsigned char lead = bytes[0];
  if (lead < 0x80) return {lead, 1, true};
  if (lead < 0xC2 || lead > 0xF4) return {replacementCharacter, 1, false};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;

  // The second byte's limits keep overlong forms, surrogates and what lies above U+10FFFF out.
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead == 0xE0) low = 0xA0;
  if (lead == 0xED) high = 0x9F;
  if (lead == 0xF0) low = 0x90;
  if (lead == 0xF4) high = 0x8F;
  if (utf8.size() < 2 || bytes[1] < low || bytes[1] > high) return {replacementCharacter, 1, false};

  char32_t character = lead & (0x7FU >> length);
  character = (character << 6U) | (bytes[1] & 0x3FU);
  for (std::size_t k = 2; k < length; ++k) {
    if (k == utf8.size() || !isContinuation(bytes[k])) return {replacementCharacter, k, false};
    character = (character << 6U) | (bytes[k] & 0x3FU);
  }
  return {character, length, true};
}

char16_t* putCharacter(char32_t character, char16_t* out) {
  if (character < 0x10000) {
    *out++ = static_cast<char16_t>(character);
  } else {
    *out++ = static_cast<char16_t>(0xD7C0 + (character >> 10U));
    *out++ = static_cast<char16_t>(0xDC00 + (character & 0x3FFU));
  }
  return out;
}

// How many bytes of well-formed characters lead from a fault to the vector code. It needs three;
// more keep a text with frequent faults from trying it in vain.
constexpr std::size_t leadIn = 16;

// The vector code copies the first and the last block of a text: of one up to this long, all.
constexpr std::size_t edges = 128;

// Widens the pieces of ASCII that a text begins with, and counts their bytes.
std::size_t widenASCII(std::string_view utf8, char16_t* out) {
  constexpr std::size_t piece = NSFewestToTranscode;
  const auto isWidened = [&](std::size_t at) {
    std::array<std::uint64_t, piece / sizeof(std::uint64_t)> words;
    std::memcpy(words.data(), utf8.data() + at, piece);
    if (((words[0] | words[1]) & 0x8080808080808080U) != 0) return false;
    for (std::size_t k = at; k < at + piece; ++k) out[k] = static_cast<unsigned char>(utf8[k]);
    return true;
  };
  std::size_t at = 0;
  for (; at + piece <= utf8.size(); at += piece) {
    if (!isWidened(at)) return at;
  }
  // The rest with the end of the piece before.
  return at != 0 && isWidened(utf8.size() - piece) ? utf8.size() : at;
}

struct DecodedText {
  char16_t* end;
  // Where the first broken sequence begins; the end of the bytes for none.
  std::size_t fault;
};

// Writes at most one unit a byte.
DecodedText decode(std::string_view utf8, char16_t* out) {
  std::size_t fault = utf8.size();
  std::size_t position = utf8.size() <= edges ? widenASCII(utf8, out) : 0;
  out += position;
  while (position < utf8.size()) {
    if (utf8.size() - position >= NSFewestToTranscode) {
      const NSTranscoded block = NSDecodeWellFormed(utf8, position, out);
      position = block.position;
      out += block.written;
    }
    for (std::size_t wellFormed = 0; wellFormed < leadIn && position < utf8.size();) {
      const Decoded decoded = decodeFirst(utf8.substr(position));
      out = putCharacter(decoded.character, out);
      if (!decoded.isWellFormed) fault = std::min(fault, position);
      position += decoded.length;
      wellFormed = decoded.isWellFormed ? wellFormed + decoded.length : 0;
    }
  }
  return {out, fault};
}

char* putUTF8(char32_t character, char* out) {
  if (NSIsSurrogate(character)) character = replacementCharacter;
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0U | (character >> 6U));
    put(0x80U | (character & 0x3FU));
  } else if (character < 0x10000) {
    put(0xE0U | (character >> 12U));
    put(0x80U | ((character >> 6U) & 0x3FU));
    put(0x80U | (character & 0x3FU));
  } else {
    put(0xF0U | (character >> 18U));
    put(0x80U | ((character >> 12U) & 0x3FU));
    put(0x80U | ((character >> 6U) & 0x3FU));
    put(0x80U | (character & 0x3FU));
  }
  return out;
}

// Encodes from `position` on while there are four bytes left in the room.
NSTranscoded encodeCharacters(std::u16string_view text, std::size_t position, char* out,
                              std::size_t room) {
  char* at = out;
  std::u16string_view rest = text.substr(position);
  while (!rest.empty() && at + 4 <= out + room) at = putUTF8(NSTakeCharacter(rest), at);
  return {text.size() - rest.size(), static_cast<std::size_t>(at - out)};
}

}  // namespace

NSUnitBuffer NSUnitsFromUTF8(std::string_view utf8) {
  // A short text asks for memory once it is known how much.
  std::array<char16_t, 256> room;
  if (utf8.size() <= room.size()) {
    return NSUnitBuffer(std::u16string_view(room.data(), decode(utf8, room.data()).end));
  }
  NSUnitBuffer buffer;
  NSAppendUTF8(utf8, buffer);
  buffer.shrink();
  return buffer;
}

std::size_t NSAppendUTF8(std::string_view utf8, NSUnitBuffer& text) {
  const DecodedText decoded = decode(utf8, text.extend(utf8.size()));
  text.truncate(static_cast<std::size_t>(decoded.end - text.data()));
  return decoded.fault;
}

void NSAppendCharacter(char32_t character, NSUnitBuffer& text) {
  std::array<char16_t, 2> units;
  text.append({units.data(), putCharacter(character, units.data())});
}

std::string NSUTF8FromUnits(std::u16string_view text) {
  std::string result;
  // A chunk is encoded in the cache and then appended, so that the result is not filled in advance.
  constexpr std::size_t chunkSize = 8192;
  std::array<char, chunkSize + NSEncodingSlack> chunk;
  for (std::size_t position = 0; position < text.size();) {
    NSTranscoded block = {position, 0};
    if (text.size() >= NSFewestToTranscode) {
      block = NSEncodeBlocks(text, position, chunk.data(), chunkSize);
    }
    if (block.written == 0) block = encodeCharacters(text, position, chunk.data(), chunkSize);
    // Most texts go on as they begin.
    if (position == 0 && block.position < text.size()) {
      result.reserve(text.size() / block.position * (block.written + block.written / 16));
    }
    result.append(chunk.data(), block.written);
    position = block.position;
  }
  return result;
}

bool NSIsWellFormedUTF8(std::string_view utf8) noexcept {
  while (!utf8.empty()) {
    const Decoded first = decodeFirst(utf8);
    if (!first.isWellFormed) return false;
    utf8.remove_prefix(first.length);
  }
  return true;
}

std::size_t NSCountWellFormedUnits(std::u16string_view text) noexcept {
  if (text.empty() || NSIsLowSurrogate(text[0])) return 0;
  // Whether a first half is followed by a second one, or neither is there: in 16 bits, of which a
  // vector holds the most.
  const auto fits = [&](std::size_t at) {
    return ((text[at - 1] & 0xFC00U) == 0xD800U) == ((text[at] & 0xFC00U) == 0xDC00U);
  };
  // Without an early end the loop over a block becomes vector code.
  constexpr std::size_t block = 256;
  const auto allFit = [&](std::size_t from) {
    const std::size_t end = std::min(from + block, text.size());
    char16_t others = 0;
    for (std::size_t at = from; at < end; ++at) others |= fits(at) ? char16_t{0} : char16_t{1};
    return others == 0;
  };
  std::size_t at = 1;
  while (at < text.size() && allFit(at)) at += block;
  while (at < text.size() && fits(at)) ++at;
  at = std::min(at, text.size());
  return NSIsHighSurrogate(text[at - 1]) ? at - 1 : at;
}

bool NSIsWellFormed(std::u16string_view text) noexcept {
  return NSCountWellFormedUnits(text) == text.size();
}

int NSDecimalDigitValue(char32_t character) noexcept {
  return u_charDigitValue(static_cast<UChar32>(character));
}
