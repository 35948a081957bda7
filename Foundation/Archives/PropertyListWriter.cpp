#include "Foundation/Archives/PropertyListWriter.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <Foundation/Archives/PropertyListReader.h>
#include <Foundation/Objects/ContentHash.h>
#include <Foundation/Text/ASCII.h>

namespace {

using Form = NSPropertyListForm;
using Kind = NSPropertyListKind;
using Reference = NSPropertyListWriter::Reference;

// Tells references to containers, which are written after all values, from those to values.
constexpr Reference containerBit = Reference{1} << 31U;

constexpr std::uint8_t marker(Kind kind, std::size_t low) {
  return static_cast<std::uint8_t>(static_cast<std::size_t>(kind) << 4U | low);
}

void appendDigits(std::string& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t shift = 8 * size; shift != 0; shift -= 8) {
    bytes.push_back(static_cast<char>(value >> (shift - 8) & 0xFFU));
  }
}

// How many bytes hold the value, 1 at least.
std::size_t width(std::uint64_t value) {
  return std::max<std::size_t>((static_cast<std::size_t>(std::bit_width(value)) + 7) / 8, 1);
}

// Integers have 1, 2, 4 or 8 bytes; this is the logarithm.
std::size_t integerWidth(std::uint64_t value) {
  return static_cast<std::size_t>(std::bit_width(width(value) - 1));
}

void appendHead(std::string& bytes, Kind kind, std::size_t count) {
  bytes.push_back(static_cast<char>(marker(kind, std::min<std::size_t>(count, 0xF))));
  if (count < 0xF) return;
  const std::size_t digits = integerWidth(count);
  bytes.push_back(static_cast<char>(marker(Kind::integer, digits)));
  appendDigits(bytes, count, std::size_t{1} << digits);
}

}  // namespace

Reference NSPropertyListWriter::value(std::size_t start, bool isShared) {
  const std::string_view bytes = std::string_view(_values).substr(start);
  // What is not shared gets a hash that nobody looks for: many equal ones would be passed by.
  const NSUInteger hash = isShared ? NSHashText(bytes) : start;
  const auto isSame = [&](std::size_t position) {
    const std::size_t end = position + 1 < _starts.size() ? _starts[position + 1] : start;
    return std::string_view(_values).substr(_starts[position], end - _starts[position]) == bytes;
  };
  const std::size_t known = isShared ? _index.find(hash, isSame) : NSHashIndex::notFound;
  if (known != NSHashIndex::notFound) {
    _values.resize(start);
    return static_cast<Reference>(known);
  }
  if (_starts.size() == containerBit) throw std::length_error("NSPropertyListWriter: 2^31 values");
  _index.insert(_starts.size(), hash);
  _starts.push_back(start);
  return static_cast<Reference>(_starts.size() - 1);
}

Reference NSPropertyListWriter::number(std::uint8_t marker, std::uint64_t value, std::size_t size) {
  const std::size_t start = _values.size();
  _values.push_back(static_cast<char>(marker));
  appendDigits(_values, value, size);
  return this->value(start);
}

Reference NSPropertyListWriter::boolean(bool value) {
  return number(marker(Kind::constant, value ? 9 : 8), 0, 0);
}

Reference NSPropertyListWriter::integer(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  const std::size_t digits = integerWidth(bits);
  return number(marker(Kind::integer, digits), bits, std::size_t{1} << digits);
}

Reference NSPropertyListWriter::largeInteger(std::uint64_t value) {
  const std::size_t start = _values.size();
  _values.push_back(static_cast<char>(marker(Kind::integer, 4)));
  appendDigits(_values, 0, 8);
  appendDigits(_values, value, 8);
  return this->value(start);
}

Reference NSPropertyListWriter::real(double value) {
  return number(marker(Kind::real, 3), std::bit_cast<std::uint64_t>(value), 8);
}

Reference NSPropertyListWriter::uid(std::uint64_t value) {
  const std::size_t size = width(value);
  return number(marker(Kind::uid, size - 1), value, size);
}

Reference NSPropertyListWriter::data(std::span<const std::byte> bytes) {
  const std::size_t start = _values.size();
  appendHead(_values, Kind::data, bytes.size());
  _values.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return value(start);
}

Reference NSPropertyListWriter::text(std::u16string_view units, bool isShared) {
  const std::size_t start = _values.size();
  const bool isASCII = NSIsASCII(units);
  appendHead(_values, isASCII ? Kind::ascii : Kind::utf16, units.size());
  std::size_t at = _values.size();
  _values.resize(at + units.size() * (isASCII ? 1 : 2));
  for (const char16_t unit : units) {
    if (!isASCII) _values[at++] = static_cast<char>(unit >> 8U);
    _values[at++] = static_cast<char>(unit & 0xFFU);
  }
  return value(start, isShared);
}

Reference NSPropertyListWriter::container(bool isDictionary, std::size_t capacity) {
  if (_containers.size() == containerBit) {
    throw std::length_error("NSPropertyListWriter: 2^31 containers");
  }
  _containers.push_back({isDictionary, {}});
  _containers.back().references.reserve(capacity);
  return static_cast<Reference>(_containers.size() - 1) | containerBit;
}

void NSPropertyListWriter::append(Reference array, Reference element) {
  _containers[array ^ containerBit].references.push_back(element);
}

bool NSPropertyListWriter::add(Reference dictionary, Reference key, Reference value) {
  auto& entries = _containers[dictionary ^ containerBit].references;
  constexpr std::size_t mostSearched = 64;
  const auto entryOf = [=](Reference each) { return std::uint64_t{dictionary} << 32U | each; };
  if (entries.size() == mostSearched) {
    for (std::size_t at = 0; at < mostSearched; at += 2) _entries.insert(entryOf(entries[at]));
  }
  if (entries.size() >= mostSearched) {
    if (!_entries.insert(entryOf(key)).second) return false;
  } else {
    for (std::size_t at = 0; at < entries.size(); at += 2) {
      if (entries[at] == key) return false;
    }
  }
  entries.insert(entries.end(), {key, value});
  return true;
}

std::size_t NSPropertyListWriter::indexOf(Reference reference) const noexcept {
  return reference < containerBit ? reference : _starts.size() + (reference ^ containerBit);
}

void NSPropertyListWriter::write(const Container& container, std::size_t referenceSize,
                                 std::string& bytes) const {
  const auto& references = container.references;
  const std::size_t step = container.isDictionary ? 2 : 1;
  appendHead(bytes, container.isDictionary ? Kind::dictionary : Kind::array,
             references.size() / step);
  for (std::size_t first = 0; first < step; ++first) {
    for (std::size_t at = first; at < references.size(); at += step) {
      appendDigits(bytes, indexOf(references[at]), referenceSize);
    }
  }
}

std::vector<std::byte> NSPropertyListWriter::bytes(Reference top) const {
  const std::size_t count = _starts.size() + _containers.size();
  const std::size_t referenceSize = width(count - 1);
  std::string bytes(Form::magic);
  std::vector<std::size_t> offsets;
  offsets.reserve(count);
  for (const std::size_t start : _starts) offsets.push_back(bytes.size() + start);
  bytes += _values;
  for (const Container& container : _containers) {
    offsets.push_back(bytes.size());
    write(container, referenceSize, bytes);
  }
  const std::size_t table = bytes.size();
  const std::size_t offsetSize = width(table);
  for (const std::size_t offset : offsets) appendDigits(bytes, offset, offsetSize);
  appendDigits(bytes, 0, Form::offsetSizeAt);
  appendDigits(bytes, offsetSize, 1);
  appendDigits(bytes, referenceSize, 1);
  appendDigits(bytes, count, 8);
  appendDigits(bytes, indexOf(top), 8);
  appendDigits(bytes, table, 8);
  const auto written = std::as_bytes(std::span(bytes));
  return {written.begin(), written.end()};
}
