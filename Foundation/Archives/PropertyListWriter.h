#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/detail/HashIndex.h>

/// Builds a binary property list. Equal values stand in it once; containers are filled at any time
/// until the bytes are asked for, which is possible again and again.
class NSPropertyListWriter {
 public:
  /// What containers hold of an object, which may be in any number of them.
  using Reference = std::uint32_t;

  Reference boolean(bool value);
  Reference integer(std::int64_t value);
  Reference largeInteger(std::uint64_t value);
  Reference real(double value);
  Reference uid(std::uint64_t value);
  Reference data(std::span<const std::byte> bytes);
  Reference text(std::u16string_view units) { return text(units, true); }
  /// A text that stands for itself, also where there is an equal one.
  Reference ownText(std::u16string_view units) { return text(units, false); }

  /// An empty one with room for so many elements.
  Reference array(std::size_t capacity);
  Reference dictionary();
  void append(Reference array, Reference element);
  /// Replaces the value that the key had.
  void set(Reference dictionary, Reference key, Reference value);

  std::vector<std::byte> bytes(Reference top) const;

 private:
  // Of a dictionary each key with its value behind it.
  struct Container {
    bool isDictionary;
    std::vector<Reference> references;
  };

  Reference text(std::u16string_view units, bool isShared);
  Reference value(std::size_t start, bool isShared = true);
  Reference number(std::uint8_t marker, std::uint64_t value, std::size_t size);
  Reference container(bool isDictionary, std::size_t capacity);
  std::size_t indexOf(Reference reference) const noexcept;
  std::size_t sizeOf(const Container& container, std::size_t referenceSize) const noexcept;
  void write(const Container& container, std::size_t referenceSize, std::string& bytes) const;

  std::string _values;  // One behind the other, as they will be written.
  std::vector<std::size_t> _starts;
  NSHashIndex _index;
  std::vector<Container> _containers;
};
