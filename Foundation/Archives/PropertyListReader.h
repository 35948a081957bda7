#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <Foundation/NSString.h>

/// The kinds of objects in a binary property list, by the upper half of their first bytes.
enum class NSPropertyListKind : std::uint8_t {
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

/// The places of the parts that a binary property list has: "bplist00", the objects, a table of
/// their offsets, and a trailer with the sizes of offsets and references, the number of objects,
/// the number of the top one, and the table's place.
struct NSPropertyListForm {
  static constexpr std::string_view magic = "bplist00";
  static constexpr std::size_t trailerSize = 32;
  static constexpr std::size_t offsetSizeAt = 6;
  static constexpr std::size_t referenceSizeAt = 7;
  static constexpr std::size_t countAt = 8;
  static constexpr std::size_t topAt = 16;
  static constexpr std::size_t tableAt = 24;
};

/// An object of a list, in place.
struct NSPropertyListObject {
  NSPropertyListKind kind;
  /// The lower half of the first byte, which tells constants apart.
  std::uint8_t detail;
  /// The value, or the references of a container: of a dictionary all keys, then all values.
  std::span<const std::byte> bytes;

  [[nodiscard]] bool is(NSPropertyListKind other) const noexcept { return kind == other; }
  [[nodiscard]] bool isText() const noexcept {
    return is(NSPropertyListKind::ascii) || is(NSPropertyListKind::utf16);
  }
  [[nodiscard]] bool isContainer() const noexcept { return kind >= NSPropertyListKind::array; }
  [[nodiscard]] std::optional<bool> boolean() const noexcept;
  /// Gives an integer that fits 64 bits with a sign.
  [[nodiscard]] std::optional<std::int64_t> integer() const noexcept;
  /// Gives an integer that fits 64 bits only without a sign.
  [[nodiscard]] std::optional<std::uint64_t> largeInteger() const noexcept;
  [[nodiscard]] std::optional<double> real() const noexcept;
  [[nodiscard]] std::optional<std::uint64_t> uid() const noexcept;
  /// Counts the UTF-16 units of a text.
  [[nodiscard]] std::size_t unitCount() const noexcept;
  [[nodiscard]] NSRef<NSString> text() const;
  [[nodiscard]] bool isText(std::u16string_view text) const noexcept;
  /// Hashes the beginning of a text: one text may be the key of any number of dictionaries.
  [[nodiscard]] std::uint64_t hashOfStart() const noexcept;
  [[nodiscard]] static std::uint64_t hashOfStart(std::u16string_view text) noexcept;
};

/// Reads a binary property list in place: it keeps nothing but the places of its parts.
///
/// A list is checked as a whole when it is opened, in time proportional to its bytes: every size
/// and offset lies within them, the objects together are no longer than they are, containers form a
/// tree of at most 64 in each other (values and empty containers may be shared), the keys of
/// dictionaries are texts, ASCII is ASCII, and integers have at most 64 bits. So archives are.
class NSPropertyListReader {
 public:
  using Index = std::uint32_t;

  /// Opens a list; gives nothing when the bytes are none. They must outlive the reader.
  [[nodiscard]] static std::optional<NSPropertyListReader> open(std::span<const std::byte> bytes);

  [[nodiscard]] std::size_t size() const noexcept { return _bytes.size(); }
  [[nodiscard]] Index count() const noexcept { return _count; }
  [[nodiscard]] Index top() const noexcept { return _top; }
  /// Gives the object of an index that the top one refers to, directly or through others.
  [[nodiscard]] NSPropertyListObject object(Index index) const noexcept { return *read(index); }

  /// Counts the references of a container; dictionaries hold two for each entry.
  [[nodiscard]] std::size_t references(const NSPropertyListObject& container) const noexcept {
    return container.bytes.size() / _referenceSize;
  }
  [[nodiscard]] Index reference(const NSPropertyListObject& container,
                                std::size_t at) const noexcept;
  /// Finds the value under the key; gives nothing for what is no dictionary.
  [[nodiscard]] std::optional<Index> find(Index dictionary, std::u16string_view key) const;

 private:
  NSPropertyListReader() noexcept = default;
  [[nodiscard]] bool isSound() const;
  [[nodiscard]] bool isNamed(std::uint64_t index, std::vector<bool>& named, std::uint64_t& total,
                             NSPropertyListObject& object) const;
  [[nodiscard]] std::optional<NSPropertyListObject> read(std::uint64_t index) const noexcept;

  std::span<const std::byte> _bytes;
  std::span<const std::byte> _offsets;
  std::size_t _offsetSize = 0;
  std::size_t _referenceSize = 0;
  Index _count = 0;
  Index _top = 0;
};

/// The keys of a dictionary, looked for from the one after that which was found last, as they are
/// mostly asked for in their order. A large dictionary gets an index when one is elsewhere.
class NSPropertyListKeys {
 public:
  using Index = NSPropertyListReader::Index;

  /// Has no keys.
  NSPropertyListKeys() noexcept = default;
  /// Has no keys of what is no dictionary. The list must outlive this.
  NSPropertyListKeys(const NSPropertyListReader& list, Index dictionary);

  /// Finds the value under the key.
  [[nodiscard]] std::optional<Index> find(std::u16string_view key);

 private:
  static constexpr std::size_t mostSearched = 32;

  [[nodiscard]] NSPropertyListObject keyAt(std::size_t place) const {
    return _list->object(_list->reference(_dictionary, place));
  }
  [[nodiscard]] bool isAt(std::size_t place, std::u16string_view key) const;
  // These give the place of a key, or the number of keys for one that is not there.
  [[nodiscard]] std::size_t search(std::u16string_view key) const;
  [[nodiscard]] std::size_t lookUp(std::u16string_view key);

  const NSPropertyListReader* _list = nullptr;
  NSPropertyListObject _dictionary{};
  std::size_t _count = 0;
  std::size_t _place = 0;
  // Places by the hashes of their keys.
  std::vector<std::pair<std::uint64_t, Index>> _index;
};
