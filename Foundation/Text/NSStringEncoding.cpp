#include "Foundation/NSStringEncoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

#include <Foundation/NSException.h>
#include <Foundation/NSUnicode.h>

namespace {

using namespace std::string_view_literals;

struct Encoding {
  NSStringEncoding code;
  std::string_view name;
  std::string_view mark;
  std::size_t unitSize;
  bool isBigEndian;
};
// UTF-32 before UTF-16, whose mark its own begins with.
constexpr std::array<Encoding, 5> encodings = {{
    {NSUTF32LittleEndianStringEncoding, "UTF-32LE", "\xFF\xFE\0\0"sv, 4, false},
    {NSUTF32BigEndianStringEncoding, "UTF-32BE", "\0\0\xFE\xFF"sv, 4, true},
    {NSUTF16LittleEndianStringEncoding, "UTF-16LE", "\xFF\xFE"sv, 2, false},
    {NSUTF16BigEndianStringEncoding, "UTF-16BE", "\xFE\xFF"sv, 2, true},
    {NSUTF8StringEncoding, "UTF-8", "\xEF\xBB\xBF"sv, 1, false},
}};

const Encoding& encodingOf(NSStringEncoding code) {
  const auto* const found = std::ranges::find(encodings, code, &Encoding::code);
  if (found == encodings.end()) {
    NSException::raise(NSInvalidArgumentException,
                       std::to_string(static_cast<NSUInteger>(code)) + " is no known encoding");
  }
  return *found;
}

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t beyondUnicode = 0x110000;

// One unit of bytes in either order; compilers make a load of it.
template <std::size_t size>
char32_t unitAt(const char* bytes, bool isBigEndian) {
  char32_t unit = 0;
  for (std::size_t k = 0; k < size; ++k) {
    const auto byte = static_cast<std::uint8_t>(bytes[isBigEndian ? k : size - 1 - k]);
    unit = unit << 8U | byte;
  }
  return unit;
}

template <std::size_t size>
void appendUnit(char32_t unit, bool isBigEndian, std::string& bytes) {
  for (std::size_t k = 0; k < size; ++k) {
    bytes.push_back(static_cast<char>(unit >> 8U * (isBigEndian ? size - 1 - k : k)));
  }
}

// These two give the offset of the first fault among whole units.

std::size_t appendUTF16(std::string_view bytes, bool isBigEndian, NSUnitBuffer& text) {
  const std::size_t count = bytes.size() / 2;
  char16_t* const units = text.extend(count);
  const auto copy = [&](auto order) {
    for (std::size_t k = 0; k < count; ++k) {
      units[k] = static_cast<char16_t>(unitAt<2>(bytes.data() + 2 * k, order.value));
    }
  };
  isBigEndian ? copy(std::true_type()) : copy(std::false_type());
  return 2 * NSCountWellFormedUnits({units, count});
}

std::size_t appendUTF32(std::string_view bytes, bool isBigEndian, NSUnitBuffer& text) {
  std::size_t fault = bytes.size() / 4 * 4;
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    char32_t character = unitAt<4>(bytes.data() + at, isBigEndian);
    if (NSIsSurrogate(character) || character >= beyondUnicode) {
      fault = std::min(fault, at);
      character = replacementCharacter;
    }
    NSAppendCharacter(character, text);
  }
  return fault;
}

}  // namespace

std::string_view NSNameOfEncoding(NSStringEncoding encoding) { return encodingOf(encoding).name; }

NSStringEncoding NSDetectEncoding(std::string_view bytes) noexcept {
  for (const Encoding& encoding : encodings) {
    if (bytes.starts_with(encoding.mark)) return encoding.code;
  }
  return NSUTF8StringEncoding;
}

std::size_t NSAppendDecoded(std::string_view bytes, NSStringEncoding encoding, NSUnitBuffer& text) {
  const Encoding& known = encodingOf(encoding);
  const std::size_t start = bytes.starts_with(known.mark) ? known.mark.size() : 0;
  bytes.remove_prefix(start);
  if (known.unitSize == 1) return start + NSAppendUTF8(bytes, text);
  if (known.unitSize == 2) return start + appendUTF16(bytes, known.isBigEndian, text);
  return start + appendUTF32(bytes, known.isBigEndian, text);
}

std::string NSEncodedText(std::u16string_view text, NSStringEncoding encoding) {
  const auto& [code, name, mark, unitSize, isBigEndian] = encodingOf(encoding);
  if (unitSize == 1) {
    std::string bytes = NSUTF8FromUnits(text);
    return bytes.starts_with(mark) ? bytes.insert(0, mark) : bytes;
  }
  std::string bytes(mark);
  bytes.reserve(mark.size() + unitSize * text.size());
  while (!text.empty()) {
    const std::u16string_view before = text;
    char32_t character = NSTakeCharacter(text);
    if (NSIsSurrogate(character)) character = replacementCharacter;
    if (unitSize == 4) {
      appendUnit<4>(character, isBigEndian, bytes);
    } else if (character < 0x10000) {
      appendUnit<2>(character, isBigEndian, bytes);
    } else {
      appendUnit<2>(before[0], isBigEndian, bytes);
      appendUnit<2>(before[1], isBigEndian, bytes);
    }
  }
  return bytes;
}
