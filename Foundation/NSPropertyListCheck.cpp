#include "Foundation/NSPropertyListCheck.h"

#include <algorithm>
#include <bit>
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
        return low <= 4 ? value(std::uint64_t{1} << low) : std::nullopt;
      case Kind::real:
        return low == 2 || low == 3 ? value(std::uint64_t{1} << low) : std::nullopt;
      case Kind::date:
        return low == 3 ? value(8) : std::nullopt;
      case Kind::uid:
        return low < 8 ? value(low + 1) : std::nullopt;
      case Kind::data:
      case Kind::ascii:
        return values(low, 1);
      case Kind::utf16:
        return values(low, 2);
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
  std::optional<Object> values(std::uint64_t low, std::uint64_t unitSize) {
    const auto units = count(low);
    return units && *units <= _bytes.size() ? value(*units * unitSize) : std::nullopt;
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
    const auto isSize = [](std::uint64_t size) {
      return size > 0 && size <= 8 && std::has_single_bit(size);
    };
    if (!isSize(list._offsetSize) || !isSize(list._referenceSize)) return std::nullopt;
    const std::size_t tableEnd = bytes.size() - trailerSize;
    if (list._top >= count || table < magic.size() || table > tableEnd ||
        count > (tableEnd - table) / list._offsetSize) {
      return std::nullopt;
    }
    list._offsets = bytes.subspan(table, count * list._offsetSize);
    list._bytes = bytes.first(table);
    list._isNamed.resize(count);
    return list;
  }

  // Walks from the top and copies as libplist will, but only in numbers.
  bool isFlat() {
    std::vector<std::pair<std::uint64_t, std::size_t>> open{{_top, 0}};
    std::uint64_t copied = 0;
    const std::uint64_t most = copiesAlways + copiesPerByte * _bytes.size();
    while (!open.empty()) {
      const auto [index, depth] = open.back();
      open.pop_back();
      const auto object = read(index);
      if (!object || depth > deepest) return false;
      const bool isContainer = !object->references.empty();
      if (isContainer && _isNamed[index]) return false;
      _isNamed[index] = true;
      copied += object->size;
      if (copied > most) return false;
      for (std::size_t at = 0; at < object->references.size(); at += _referenceSize) {
        open.emplace_back(bigEndian(object->references.subspan(at, _referenceSize)), depth + 1);
      }
    }
    return true;
  }

 private:
  std::optional<Object> read(std::uint64_t index) const {
    if (index >= _isNamed.size()) return std::nullopt;
    const std::uint64_t offset = bigEndian(_offsets.subspan(index * _offsetSize, _offsetSize));
    if (offset < magic.size() || offset >= _bytes.size()) return std::nullopt;
    return ObjectReader(_bytes.subspan(offset), _referenceSize).read();
  }

  std::uint64_t _offsetSize = 0;
  std::uint64_t _referenceSize = 0;
  std::uint64_t _top = 0;
  Bytes _offsets;
  Bytes _bytes;
  std::vector<bool> _isNamed;
};

}  // namespace

bool NSIsFlatBinaryPropertyList(std::span<const std::byte> bytes) {
  auto list = List::open(bytes);
  return list && list->isFlat();
}
