#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <Foundation/NSString.h>

/// The kinds of objects in a binary property list, by the upper half of the byte that each begins
/// with.
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

  bool is(NSPropertyListKind other) const noexcept { return kind == other; }
  bool isText() const noexcept {
    return is(NSPropertyListKind::ascii) || is(NSPropertyListKind::utf16);
  }
  bool isContainer() const noexcept { return kind >= NSPropertyListKind::array; }
  std::optional<bool> boolean() const noexcept;
  /// Of an integer of 64 bits with a sign.
  std::optional<std::int64_t> integer() const noexcept;
  /// Of an integer of 64 bits without a sign that has no room with one.
  std::optional<std::uint64_t> largeInteger() const noexcept;
  std::optional<double> real() const noexcept;
  std::optional<std::uint64_t> uid() const noexcept;
  /// Of a text.
  std::size_t unitCount() const noexcept;
  NSRef<NSString> text() const;
  bool isText(std::u16string_view text) const noexcept;
};

/// Reads a binary property list where it stands: it keeps nothing but the places of its parts.
///
/// A list is checked as a whole when it is opened, in time proportional to its bytes: every size
/// and offset lies within them, the objects together are no longer than they are, containers form a
/// tree of at most 64 in each other (values and empty containers may be shared), the keys of
/// dictionaries are texts, ASCII is ASCII, and integers have at most 64 bits. What writers of
/// archives produce is so.
class NSPropertyListReader {
 public:
  using Index = std::uint32_t;

  /// Nothing when the bytes are no such list. They must outlive the reader.
  static std::optional<NSPropertyListReader> open(std::span<const std::byte> bytes);

  std::size_t size() const noexcept { return _bytes.size(); }
  Index count() const noexcept { return _count; }
  Index top() const noexcept { return _top; }
  /// Of an index below the count, and of what the top refers to.
  NSPropertyListObject object(Index index) const noexcept { return *read(index); }

  /// How many references a container holds; dictionaries hold two for each entry.
  std::size_t references(const NSPropertyListObject& container) const noexcept {
    return container.bytes.size() / _referenceSize;
  }
  Index reference(const NSPropertyListObject& container, std::size_t at) const noexcept;
  /// The value under the key; nothing for what is no dictionary. Entries are looked at from the
  /// place on, which then is that behind the found one: keys are mostly asked for in their order.
  std::optional<Index> find(Index dictionary, std::u16string_view key, std::size_t& place) const;
  std::optional<Index> find(Index dictionary, std::u16string_view key) const {
    std::size_t place = 0;
    return find(dictionary, key, place);
  }

 private:
  NSPropertyListReader() noexcept = default;
  bool isSound() const;
  bool isNamed(std::uint64_t index, std::vector<bool>& named, std::uint64_t& total,
               NSPropertyListObject& object) const;
  std::optional<NSPropertyListObject> read(std::uint64_t index) const noexcept;

  std::span<const std::byte> _bytes;
  std::span<const std::byte> _offsets;
  std::size_t _offsetSize = 0;
  std::size_t _referenceSize = 0;
  Index _count = 0;
  Index _top = 0;
};
