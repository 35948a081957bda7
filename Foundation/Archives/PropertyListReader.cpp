#include "Foundation/Archives/PropertyListReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>

#include <Foundation/Objects/ContentHash.h>

namespace {

using Bytes = std::span<const std::byte>;
using Form = NSPropertyListForm;
using Kind = NSPropertyListKind;
using Object = NSPropertyListObject;

constexpr std::size_t deepest = 64;
constexpr std::size_t longestStart = 64;

std::uint64_t bigEndian(Bytes bytes) noexcept {
  std::uint64_t value = 0;
  for (const std::byte byte : bytes) value = value << 8U | std::to_integer<std::uint64_t>(byte);
  return value;
}

char16_t unitAt(const Object& text, std::size_t at) noexcept {
  if (text.is(Kind::ascii)) return std::to_integer<char16_t>(text.bytes[at]);
  return static_cast<char16_t>(std::to_integer<unsigned>(text.bytes[2 * at]) << 8U |
                               std::to_integer<unsigned>(text.bytes[2 * at + 1]));
}

std::optional<Bytes> take(Bytes& bytes, std::uint64_t size) noexcept {
  if (size > bytes.size()) return std::nullopt;
  const Bytes taken = bytes.first(size);
  bytes = bytes.subspan(size);
  return taken;
}

// A count of 15 stands for an integer object that follows.
std::optional<std::uint64_t> takeCount(Bytes& bytes, std::uint64_t low) noexcept {
  if (low < 0xF) return low;
  const auto marker = take(bytes, 1);
  if (!marker) return std::nullopt;
  const std::uint64_t kind = bigEndian(*marker);
  if (kind < 0x10 || kind > 0x13) return std::nullopt;
  const auto digits = take(bytes, std::uint64_t{1} << (kind & 0xFU));
  return digits ? std::optional(bigEndian(*digits)) : std::nullopt;
}

std::optional<Bytes> takeElements(Bytes& bytes, std::uint64_t low, std::size_t size) noexcept {
  const auto count = takeCount(bytes, low);
  return count && *count <= bytes.size() ? take(bytes, *count * size) : std::nullopt;
}

// Takes what follows the first byte, by the kind and the rest of that byte.
std::optional<Bytes> takeValue(Bytes& bytes, Kind kind, std::uint64_t low,
                               std::size_t referenceSize) noexcept {
  switch (kind) {
    case Kind::constant:
      return low == 0 || low == 8 || low == 9 ? take(bytes, 0) : std::nullopt;
    case Kind::integer:
      return low <= 4 ? take(bytes, std::uint64_t{1} << low) : std::nullopt;
    case Kind::real:
      return low == 2 || low == 3 ? take(bytes, std::uint64_t{1} << low) : std::nullopt;
    case Kind::date:
      return low == 3 ? take(bytes, 8) : std::nullopt;
    case Kind::uid:
      return low < 8 ? take(bytes, low + 1) : std::nullopt;
    case Kind::data:
    case Kind::ascii:
      return takeElements(bytes, low, 1);
    case Kind::utf16:
      return takeElements(bytes, low, 2);
    case Kind::array:
    case Kind::set:
      return takeElements(bytes, low, referenceSize);
    case Kind::dictionary:
      return takeElements(bytes, low, 2 * referenceSize);
  }
  return std::nullopt;
}

bool isAllowed(const Object& object) noexcept {
  if (object.is(Kind::ascii)) {
    return std::ranges::all_of(object.bytes, [](std::byte byte) { return byte < std::byte{0x80}; });
  }
  return !object.is(Kind::integer) || object.integer() || object.largeInteger();
}

}  // namespace

std::optional<bool> NSPropertyListObject::boolean() const noexcept {
  if (!is(Kind::constant) || detail == 0) return std::nullopt;
  return detail == 9;
}

// Those of 8 bytes have a sign, shorter ones have none; longer ones hold what lies beyond both.
std::optional<std::int64_t> NSPropertyListObject::integer() const noexcept {
  if (!is(Kind::integer)) return std::nullopt;
  const auto value = static_cast<std::int64_t>(bigEndian(bytes.last(std::min(bytes.size(), 8UL))));
  if (bytes.size() <= 8) return value;
  const auto above = static_cast<std::int64_t>(bigEndian(bytes.first(8)));
  return above == (value < 0 ? -1 : 0) ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> NSPropertyListObject::largeInteger() const noexcept {
  if (!is(Kind::integer) || bytes.size() <= 8 || bigEndian(bytes.first(8)) != 0) {
    return std::nullopt;
  }
  const std::uint64_t value = bigEndian(bytes.last(8));
  return value > std::numeric_limits<std::int64_t>::max() ? std::optional(value) : std::nullopt;
}

std::optional<double> NSPropertyListObject::real() const noexcept {
  if (!is(Kind::real)) return std::nullopt;
  const std::uint64_t bits = bigEndian(bytes);
  if (bytes.size() == 8) return std::bit_cast<double>(bits);
  return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
}

std::optional<std::uint64_t> NSPropertyListObject::uid() const noexcept {
  return is(Kind::uid) ? std::optional(bigEndian(bytes)) : std::nullopt;
}

std::size_t NSPropertyListObject::unitCount() const noexcept {
  return is(Kind::utf16) ? bytes.size() / 2 : bytes.size();
}

NSRef<NSString> NSPropertyListObject::text() const {
  const std::size_t count = unitCount();
  const auto copyTo = [&](char16_t* units) {
    for (std::size_t k = 0; k < count; ++k) units[k] = unitAt(*this, k);
  };
  // Short ones, which most are, go into one block with their string.
  std::array<char16_t, 64> room;
  if (count <= room.size()) {
    copyTo(room.data());
    return NSMake<NSString>(std::u16string_view(room.data(), count));
  }
  NSUnitBuffer text;
  text.reserve(count);
  copyTo(text.extend(count));
  return NSMake<NSString>(std::move(text));
}

bool NSPropertyListObject::isText(std::u16string_view text) const noexcept {
  if (!isText() || unitCount() != text.size()) return false;
  for (std::size_t k = 0; k < text.size(); ++k) {
    if (unitAt(*this, k) != text[k]) return false;
  }
  return true;
}

std::uint64_t NSPropertyListObject::hashOfStart(std::u16string_view text) noexcept {
  return NSHashWith(text.size(), NSHashText(text.substr(0, longestStart)));
}

std::uint64_t NSPropertyListObject::hashOfStart() const noexcept {
  std::array<char16_t, longestStart> start;
  const std::size_t taken = std::min(unitCount(), start.size());
  for (std::size_t k = 0; k < taken; ++k) start[k] = unitAt(*this, k);
  return NSHashWith(unitCount(), NSHashText(std::u16string_view(start.data(), taken)));
}

std::optional<NSPropertyListReader> NSPropertyListReader::open(Bytes bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (bytes.size() < Form::magic.size() + Form::trailerSize || !text.starts_with(Form::magic)) {
    return std::nullopt;
  }
  const Bytes trailer = bytes.last(Form::trailerSize);
  NSPropertyListReader list;
  list._offsetSize = bigEndian(trailer.subspan(Form::offsetSizeAt, 1));
  list._referenceSize = bigEndian(trailer.subspan(Form::referenceSizeAt, 1));
  const std::uint64_t count = bigEndian(trailer.subspan(Form::countAt, 8));
  const std::uint64_t top = bigEndian(trailer.subspan(Form::topAt, 8));
  const std::uint64_t table = bigEndian(trailer.subspan(Form::tableAt, 8));
  const auto isSize = [](std::size_t size) { return size > 0 && size <= 8; };
  const std::size_t tableEnd = bytes.size() - Form::trailerSize;
  if (!isSize(list._offsetSize) || !isSize(list._referenceSize) || top >= count ||
      count > std::numeric_limits<Index>::max() || table < Form::magic.size() || table > tableEnd ||
      count > (tableEnd - table) / list._offsetSize) {
    return std::nullopt;
  }
  list._bytes = bytes.first(table);
  list._offsets = bytes.subspan(table, count * list._offsetSize);
  list._count = static_cast<Index>(count);
  list._top = static_cast<Index>(top);
  return list.isSound() ? std::optional(list) : std::nullopt;
}

std::optional<Object> NSPropertyListReader::read(std::uint64_t index) const noexcept {
  if (index >= _count) return std::nullopt;
  const std::uint64_t offset = bigEndian(_offsets.subspan(index * _offsetSize, _offsetSize));
  if (offset < Form::magic.size() || offset >= _bytes.size()) return std::nullopt;
  const auto marker = std::to_integer<std::uint8_t>(_bytes[offset]);
  const auto kind = static_cast<Kind>(marker >> 4U);
  const auto low = static_cast<std::uint8_t>(marker & 0xFU);
  Bytes rest = _bytes.subspan(offset + 1);
  const auto value = takeValue(rest, kind, low, _referenceSize);
  return value ? std::optional(Object{kind, low, *value}) : std::nullopt;
}

// Notes that something refers to the object, and whether it may: containers stand in one place, or
// a walk over lists that double at each step would never end.
bool NSPropertyListReader::isNamed(std::uint64_t index, std::vector<bool>& named,
                                   std::uint64_t& total, Object& object) const {
  const auto found = read(index);
  if (!found) return false;
  object = *found;
  if (named[index]) return !object.isContainer() || object.bytes.empty();
  named[index] = true;
  // Objects that overlap could hold more than there are bytes.
  total += 1 + object.bytes.size();
  return total <= _bytes.size() && isAllowed(object);
}

bool NSPropertyListReader::isSound() const {
  struct Open {
    Object container;
    std::size_t next = 0;
  };
  std::vector<bool> named(_count);
  std::uint64_t total = 0;
  std::vector<Open> open(1);
  if (!isNamed(_top, named, total, open.back().container)) return false;
  while (!open.empty()) {
    auto& [container, next] = open.back();
    if (!container.isContainer() || next == references(container)) {
      open.pop_back();
      continue;
    }
    Object object{};
    const std::size_t at = next++;
    const Bytes bytes = container.bytes.subspan(at * _referenceSize, _referenceSize);
    if (!isNamed(bigEndian(bytes), named, total, object)) return false;
    const bool isKey = container.is(Kind::dictionary) && at < references(container) / 2;
    if (isKey && !object.isText()) return false;
    if (!object.isContainer()) continue;
    if (open.size() > deepest) return false;
    open.push_back({object});
  }
  return true;
}

NSPropertyListReader::Index NSPropertyListReader::reference(const Object& container,
                                                            std::size_t at) const noexcept {
  return static_cast<Index>(
      bigEndian(container.bytes.subspan(at * _referenceSize, _referenceSize)));
}

std::optional<NSPropertyListReader::Index> NSPropertyListReader::find(
    Index dictionary, std::u16string_view key) const {
  return NSPropertyListKeys(*this, dictionary).find(key);
}

NSPropertyListKeys::NSPropertyListKeys(const NSPropertyListReader& list, Index dictionary)
    : _list(&list), _dictionary(list.object(dictionary)) {
  if (_dictionary.is(Kind::dictionary)) _count = list.references(_dictionary) / 2;
}

std::optional<NSPropertyListKeys::Index> NSPropertyListKeys::find(std::u16string_view key) {
  const std::size_t at = _count <= mostSearched ? search(key) : lookUp(key);
  if (at == _count) return std::nullopt;
  _place = at + 1;
  return _list->reference(_dictionary, _count + at);
}

bool NSPropertyListKeys::isAt(std::size_t place, std::u16string_view key) const {
  return place < _count && keyAt(place).isText(key);
}

std::size_t NSPropertyListKeys::search(std::u16string_view key) const {
  for (std::size_t step = 0; step < _count; ++step) {
    const std::size_t at = (_place + step) % _count;
    if (isAt(at, key)) return at;
  }
  return _count;
}

std::size_t NSPropertyListKeys::lookUp(std::u16string_view key) {
  if (isAt(_place, key)) return _place;
  if (_index.empty()) {
    _index.reserve(_count);
    for (std::size_t at = 0; at < _count; ++at) {
      _index.emplace_back(keyAt(at).hashOfStart(), static_cast<Index>(at));
    }
    std::ranges::sort(_index);
  }
  const std::uint64_t hash = Object::hashOfStart(key);
  auto entry = std::ranges::lower_bound(_index, std::pair(hash, Index{0}));
  for (; entry != _index.end() && entry->first == hash; ++entry) {
    if (isAt(entry->second, key)) return entry->second;
  }
  return _count;
}
