#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>
#include <utility>

#include <Foundation/NSExport.h>

/// Contiguous, growable UTF-16 storage: what a `std::u16string` is, with growth that does not fill
/// new units first, and with short texts wherever their owner has room for them.
///
/// A change that runs out of memory throws `std::bad_alloc` and leaves the text as it was.
class NS_EXPORT NSUnitBuffer {
 public:
  NSUnitBuffer() noexcept = default;
  /// Starts in memory that is lent to it and outlives it. A text that needs more moves out.
  explicit NSUnitBuffer(std::span<char16_t> lent) noexcept
      : _units(lent.data()), _capacity(lent.size() & largest) {}
  explicit NSUnitBuffer(std::u16string_view text) { append(text); }
  NSUnitBuffer(const NSUnitBuffer& other) : NSUnitBuffer(other.view()) {}
  /// Copies a text in lent memory, and takes any other over. The other buffer is empty afterwards.
  NSUnitBuffer(NSUnitBuffer&& other) { *this = std::move(other); }  // NOLINT(*-noexcept-move*)
  NSUnitBuffer& operator=(const NSUnitBuffer& other);
  NSUnitBuffer& operator=(NSUnitBuffer&& other);  // NOLINT(*-noexcept-move*): may copy.
  ~NSUnitBuffer() { giveBack(); }

  [[nodiscard]] std::u16string_view view() const noexcept { return {_units, _size}; }
  [[nodiscard]] char16_t* data() noexcept { return _units; }
  [[nodiscard]] const char16_t* data() const noexcept { return _units; }
  [[nodiscard]] std::size_t size() const noexcept { return _size; }
  /// Whether the text lies in memory that belongs to somebody else.
  [[nodiscard]] bool isLent() const noexcept { return _isLent; }

  /// Makes room for a text of `capacity` units altogether.
  void reserve(std::size_t capacity);
  /// Appends `count` units whose values are the caller's to write, and gives the first of them.
  char16_t* extend(std::size_t count) {
    if (count > _capacity - _size) makeRoom(count);
    char16_t* const start = _units + _size;
    _size += count;
    return start;
  }
  /// Keeps the first `size` units, at most as many as there are.
  void truncate(std::size_t size) noexcept { _size = size; }
  /// Gives back memory when much of it is unused. Never fails.
  void shrink() noexcept;

  /// The text may be a part of this buffer.
  void append(std::u16string_view text) {
    if (text.size() > _capacity - _size) return replace(_size, 0, text);
    std::char_traits<char16_t>::copy(_units + _size, text.data(), text.size());
    _size += text.size();
  }
  /// Appends the number's decimal digits.
  void appendDecimal(std::uint64_t value);
  /// Puts the text in the place of `count` units at `position`; it may be a part of this buffer.
  void replace(std::size_t position, std::size_t count, std::u16string_view text);

 private:
  static constexpr std::size_t largest = SIZE_MAX / 2;

  void giveBack() noexcept {
    if (!_isLent) std::free(_units);  // NOLINT(*-unix.Malloc): once, also in a std::optional.
  }
  void makeRoom(std::size_t count);

  // What a buffer without memory is lent.
  inline static char16_t _nothing = 0;

  char16_t* _units = &_nothing;
  std::size_t _size = 0;
  std::size_t _capacity : 63 = 0;
  bool _isLent : 1 = true;
};
