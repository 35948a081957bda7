#include "Foundation/NSUnicode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr char16_t replacementCharacter = 0xFFFD;

// Long enough for the compiler to use whole vector registers, short enough for mixed text.
constexpr std::size_t blockSize = 16;

bool isASCIIBlock(const char* bytes) {
  std::array<std::uint64_t, blockSize / 8> words;
  std::memcpy(words.data(), bytes, blockSize);
  return ((words[0] | words[1]) & 0x8080808080808080U) == 0;
}

bool isASCIIBlock(const char16_t* units) {
  std::array<std::uint64_t, blockSize / 4> words;
  std::memcpy(words.data(), units, blockSize * sizeof(char16_t));
  return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80U) == 0;
}

void widenBlock(const char* bytes, char16_t* units) {
  for (std::size_t k = 0; k < blockSize; ++k) units[k] = static_cast<unsigned char>(bytes[k]);
}

void narrowBlock(const char16_t* units, char* bytes) {
  for (std::size_t k = 0; k < blockSize; ++k) bytes[k] = static_cast<char>(units[k]);
}

bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

struct Decoded {
  char32_t character;
  std::size_t length;
};

// Decodes the sequence that starts with a byte of 0x80 or above. A broken sequence gives U+FFFD and
// the length of its longest part that could have begun a well-formed one (at least one byte).
Decoded decodeSequence(const unsigned char* bytes, std::size_t available) {
  const unsigned char lead = bytes[0];
  if (lead < 0xC2 || lead > 0xF4) return {replacementCharacter, 1};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;

  // The second byte's limits keep overlong forms, surrogates and what lies above U+10FFFF out.
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead == 0xE0) low = 0xA0;
  if (lead == 0xED) high = 0x9F;
  if (lead == 0xF0) low = 0x90;
  if (lead == 0xF4) high = 0x8F;
  if (available < 2 || bytes[1] < low || bytes[1] > high) return {replacementCharacter, 1};

  char32_t character = lead & (0x7FU >> length);
  character = (character << 6U) | (bytes[1] & 0x3FU);
  for (std::size_t k = 2; k < length; ++k) {
    if (k == available || !isContinuation(bytes[k])) return {replacementCharacter, k};
    character = (character << 6U) | (bytes[k] & 0x3FU);
  }
  return {character, length};
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

// Writes at most one unit a byte and gives the end of what it wrote.
char16_t* decode(std::string_view utf8, char16_t* out) {
  const char* at = utf8.data();
  const char* const end = at + utf8.size();
  while (at != end) {
    if (static_cast<std::size_t>(end - at) >= blockSize && isASCIIBlock(at)) {
      widenBlock(at, out);
      at += blockSize;
      out += blockSize;
      continue;
    }
    // Character by character through what is left of a block, so that a single letter with an
    // accent costs no more than its own block of ASCII.
    const char* const pause = at + std::min<std::ptrdiff_t>(end - at, blockSize);
    while (at < pause) {
      const auto* const bytes = reinterpret_cast<const unsigned char*>(at);
      const auto available = static_cast<std::size_t>(end - at);
      if (bytes[0] < 0x80) {
        *out++ = bytes[0];
        at += 1;
      } else if (bytes[0] >= 0xC2 && bytes[0] < 0xE0 && available > 1 && isContinuation(bytes[1])) {
        *out++ = static_cast<char16_t>(((bytes[0] & 0x1FU) << 6U) | (bytes[1] & 0x3FU));
        at += 2;
      } else {
        const Decoded decoded = decodeSequence(bytes, available);
        out = putCharacter(decoded.character, out);
        at += decoded.length;
      }
    }
  }
  return out;
}

char* putUTF8(char32_t character, char* out) {
  if ((character & 0xFFFFF800U) == 0xD800U) character = replacementCharacter;
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

}  // namespace

NSUnitBuffer NSUnitsFromUTF8(std::string_view utf8) {
  NSUnitBuffer buffer;
  char16_t* const start = buffer.extend(utf8.size());
  const char16_t* const end = decode(utf8, start);
  buffer.truncate(static_cast<std::size_t>(end - start));
  buffer.shrink();
  return buffer;
}

std::string NSUTF8FromUnits(std::u16string_view text) {
  // A chunk is encoded in the cache and then appended, which never fills the result in advance.
  constexpr std::size_t chunkSize = 4096;
  std::array<char, chunkSize + 3 * blockSize> chunk;
  std::string result;
  result.reserve(text.size());
  char* out = chunk.data();
  while (!text.empty()) {
    if (text.size() >= blockSize && isASCIIBlock(text.data())) {
      narrowBlock(text.data(), out);
      text.remove_prefix(blockSize);
      out += blockSize;
    } else {
      const std::size_t rest = text.size() - std::min(text.size(), blockSize);
      while (text.size() > rest) out = putUTF8(NSTakeCharacter(text), out);
    }
    if (out - chunk.data() >= static_cast<std::ptrdiff_t>(chunkSize) || text.empty()) {
      result.append(chunk.data(), out);
      out = chunk.data();
    }
  }
  return result;
}
