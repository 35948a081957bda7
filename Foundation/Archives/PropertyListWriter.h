#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <Foundation/detail/HashIndex.h>

/// Builds a binary property list. Equal values stand in it once; containers are filled at any time
/// until the bytes are asked for, which is possible again and again.
class NSPropertyListWriter {
 public:
  /// Stands for an object in containers; it may be in any number of them.
  using Reference = std::uint32_t;

  Reference boolean(bool value);
  Reference integer(std::int64_t value);
  Reference largeInteger(std::uint64_t value);
  Reference real(double value);
  Reference uid(std::uint64_t value);
  Reference data(std::span<const std::byte> bytes);
  /// Adds a text; one that is not shared also where there is an equal one.
  Reference text(std::u16string_view units, bool isShared = true);

  /// Begins an empty array with room for that many elements.
  Reference array(std::size_t capacity) { return container(false, capacity); }
  /// Begins an empty dictionary. Most get one or two values and a class.
  Reference dictionary() { return container(true, 6); }
  void append(Reference array, Reference element);
  /// Enters the value for the key; gives false when the key has one.
  [[nodiscard]] bool add(Reference dictionary, Reference key, Reference value);

  [[nodiscard]] std::vector<std::byte> bytes(Reference top) const;

 private:
  // A dictionary has each key with its value behind it.
  struct Container {
    bool isDictionary;
    std::vector<Reference> references;
  };

  Reference value(std::size_t start, bool isShared = true);
  Reference number(std::uint8_t marker, std::uint64_t value, std::size_t size);
  Reference container(bool isDictionary, std::size_t capacity);
  [[nodiscard]] std::size_t indexOf(Reference reference) const noexcept;
  void write(const Container& container, std::size_t referenceSize, std::string& bytes) const;

  std::string _values;  // One after the other, as they will be written.
  std::vector<std::size_t> _starts;
  NSHashIndex _index;
  std::vector<Container> _containers;
  // The keys of large dictionaries, each with its dictionary.
  std::unordered_set<std::uint64_t> _entries;
};
