#include "Foundation/NSPropertyListCheck.h"

#include "Foundation/NSUnicode.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr std::size_t deepest = 64;
// Keys and class names are named by every object; they may add up to a multiple of the list.
constexpr std::uint64_t copiesPerByte = 16;
constexpr std::uint64_t copiesAlways = std::uint64_t{1} << 20U;

using Bytes = std::span<const std::byte>;

// The kinds of objects, by the upper half of the byte that each begins with.
enum class Kind : std::uint8_t {
  constant = 0x0,
  integer = 0x1,
  real = 0x2,
  date = 0x3,
  data = 0x4,
  ascii = 0x5,
  utf16 = 0x6,
  uid = 0x8,
  array = 0xA,
  set = 0xC,
  dictionary = 0xD,
};

std::uint64_t bigEndian(Bytes bytes) {
  std::uint64_t value = 0;
  for (const std::byte byte : bytes) value = value << 8U | std::to_integer<std::uint64_t>(byte);
  return value;
}

struct Object {
  std::uint64_t size = 0;  // Of the value's bytes, or of the references.
  Bytes references;
};

// One object of the list: the byte that tells its kind, a count where the kind has one, its bytes.
class ObjectReader {
 public:
  ObjectReader(Bytes bytes, std::size_t referenceSize)
      : _bytes(bytes), _referenceSize(referenceSize) {}

  std::optional<Object> read() {
    const auto first = take(1);
    if (!first) return std::nullopt;
    const auto marker = static_cast<unsigned>(bigEndian(*first));
    const std::uint64_t low = marker & 0xFU;
    switch (static_cast<Kind>(marker >> 4U)) {
      case Kind::constant:
        return Object{};
      case Kind::integer:
        return integer(low);
      case Kind::real:
        return low == 2 || low == 3 ? value(std::uint64_t{1} << low) : std::nullopt;
      case Kind::date:
        return low == 3 ? value(8) : std::nullopt;
      case Kind::uid:
        return low < 8 ? value(low + 1) : std::nullopt;
      case Kind::data:
        return values(low, 1);
      case Kind::ascii:
        return text(low, 1);
      case Kind::utf16:
        return text(low, 2);
      case Kind::array:
      case Kind::set:
        return references(low, 1);
      case Kind::dictionary:
        return references(low, 2);
    }
    return std::nullopt;
  }

 private:
  std::optional<Bytes> take(std::uint64_t size) {
    if (size > _bytes.size()) return std::nullopt;
    const Bytes taken = _bytes.first(size);
    _bytes = _bytes.subspan(size);
    return taken;
  }
  std::optional<Object> value(std::uint64_t size) {
    return take(size) ? std::optional(Object{size, {}}) : std::nullopt;
  }
  // A count of 15 stands for an integer object that follows.
  std::optional<std::uint64_t> count(std::uint64_t low) {
    if (low < 0xF) return low;
    const auto marker = take(1);
    if (!marker) return std::nullopt;
    const std::uint64_t kind = bigEndian(*marker);
    if (kind < 0x10 || kind > 0x13) return std::nullopt;
    const auto digits = take(std::uint64_t{1} << (kind & 0xFU));
    return digits ? std::optional(bigEndian(*digits)) : std::nullopt;
  }
  // libplist keeps the low half of an integer of 16 bytes, as a signed one.
  std::optional<Object> integer(std::uint64_t low) {
    if (low > 4) return std::nullopt;
    const auto digits = take(std::uint64_t{1} << low);
    if (!digits) return std::nullopt;
    const bool isKept = low < 4 || (bigEndian(digits->first(8)) == 0 &&
                                    std::to_integer<unsigned>((*digits)[8]) < 0x80);
    return isKept ? std::optional(Object{digits->size(), {}}) : std::nullopt;
  }
  std::optional<Bytes> units(std::uint64_t low, std::uint64_t unitSize) {
    const auto number = count(low);
    return number && *number <= _bytes.size() ? take(*number * unitSize) : std::nullopt;
  }
  std::optional<Object> values(std::uint64_t low, std::uint64_t unitSize) {
    const auto taken = units(low, unitSize);
    return taken ? std::optional(Object{taken->size(), {}}) : std::nullopt;
  }
  // libplist ends texts at a zero, and what is not well-formed does not come through it.
  std::optional<Object> text(std::uint64_t low, std::size_t unitSize) {
    const auto taken = units(low, unitSize);
    if (!taken) return std::nullopt;
    bool needsLowHalf = false;
    for (std::size_t at = 0; at < taken->size(); at += unitSize) {
      const auto unit = static_cast<char32_t>(bigEndian(taken->subspan(at, unitSize)));
      const bool isAllowed = unit != 0 && (unitSize == 2 || unit < 0x80);
      if (!isAllowed || NSIsLowSurrogate(unit) != needsLowHalf) return std::nullopt;
      needsLowHalf = NSIsHighSurrogate(unit);
    }
    return needsLowHalf ? std::nullopt : std::optional(Object{taken->size(), {}});
  }
  std::optional<Object> references(std::uint64_t low, std::uint64_t perElement) {
    const auto elements = count(low);
    if (!elements || *elements > _bytes.size()) return std::nullopt;
    const auto taken = take(*elements * perElement * _referenceSize);
    return taken ? std::optional(Object{taken->size(), *taken}) : std::nullopt;
  }

  Bytes _bytes;
  std::size_t _referenceSize;
};

class List {
 public:
  static std::optional<List> open(Bytes bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (bytes.size() < magic.size() + trailerSize || !text.starts_with(magic)) return std::nullopt;
    const Bytes trailer = bytes.last(trailerSize);
    List list;
    list._offsetSize = bigEndian(trailer.subspan(6, 1));
    list._referenceSize = bigEndian(trailer.subspan(7, 1));
    const std::uint64_t count = bigEndian(trailer.subspan(8, 8));
    list._top = bigEndian(trailer.subspan(16, 8));
    const std::uint64_t table = bigEndian(trailer.subspan(24, 8));
    const auto isSize = [](std::uint64_t size) { return (size > 0 && size <= 4) || size == 8; };
    if (!isSize(list._offsetSize) || !isSize(list._referenceSize)) return std::nullopt;
    const std::size_t tableEnd = bytes.size() - trailerSize;
    if (list._top >= count || table < magic.size() || table > tableEnd ||
        count > (tableEnd - table) / list._offsetSize) {
      return std::nullopt;
    }
    list._offsets = bytes.subspan(table, count * list._offsetSize);
    list._bytes = bytes.first(table);
    list._count = count;
    list._isNamed.resize(table);
    return list;
  }

  // Walks from the top and copies as libplist will, but only in numbers.
  bool isFlat() {
    std::vector<std::pair<std::uint64_t, std::size_t>> open{{_top, 0}};
    std::uint64_t copied = 0;
    std::uint64_t references = 0;
    const std::uint64_t most = copiesAlways + copiesPerByte * _bytes.size();
    while (!open.empty()) {
      const auto [index, depth] = open.back();
      open.pop_back();
      const auto offset = offsetOf(index);
      if (!offset || depth > deepest) return false;
      const auto object = ObjectReader(_bytes.subspan(*offset), _referenceSize).read();
      if (!object) return false;
      if (!object->references.empty() && _isNamed[*offset]) return false;
      _isNamed[*offset] = true;
      copied += object->size;
      // Containers that overlap could name more than there are bytes.
      references += object->references.size() / _referenceSize;
      if (copied > most || references > _bytes.size()) return false;
      for (std::size_t at = 0; at < object->references.size(); at += _referenceSize) {
        open.emplace_back(bigEndian(object->references.subspan(at, _referenceSize)), depth + 1);
      }
    }
    return true;
  }

 private:
  std::optional<std::uint64_t> offsetOf(std::uint64_t index) const {
    if (index >= _count) return std::nullopt;
    const std::uint64_t offset = bigEndian(_offsets.subspan(index * _offsetSize, _offsetSize));
    if (offset < magic.size() || offset >= _bytes.size()) return std::nullopt;
    return offset;
  }

  std::uint64_t _offsetSize = 0;
  std::uint64_t _referenceSize = 0;
  std::uint64_t _top = 0;
  std::uint64_t _count = 0;
  Bytes _offsets;
  Bytes _bytes;
  std::vector<bool> _isNamed;  // By offset.
};

}  // namespace

bool NSIsFlatBinaryPropertyList(std::span<const std::byte> bytes) {
  auto list = List::open(bytes);
  return list && list->isFlat();
}
