#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include <Foundation/NSExport.h>

/// Contiguous, growable UTF-16 storage: what a `std::u16string` is, with growth that does not fill
/// new units first. Short texts (up to `inlineCapacity` units) are kept without an allocation.
///
/// A change that runs out of memory throws `std::bad_alloc` and leaves the text as it was.
class NS_EXPORT NSUnitBuffer {
 public:
  /// Words and short titles; with it a string still fits the allocator's block of 96 bytes.
  static constexpr std::size_t inlineCapacity = 24;

  NSUnitBuffer() noexcept : _units(_inline.data()) {}
  explicit NSUnitBuffer(std::u16string_view text) : NSUnitBuffer() { append(text); }
  NSUnitBuffer(const NSUnitBuffer& other) : NSUnitBuffer(other.view()) {}
  NSUnitBuffer(NSUnitBuffer&& other) noexcept : NSUnitBuffer() { takeOver(other); }
  NSUnitBuffer& operator=(NSUnitBuffer other) noexcept;
  ~NSUnitBuffer();

  std::u16string_view view() const noexcept { return {_units, _size}; }
  char16_t* data() noexcept { return _units; }
  const char16_t* data() const noexcept { return _units; }
  std::size_t size() const noexcept { return _size; }
  std::size_t capacity() const noexcept { return _capacity; }

  /// Makes room for a text of `capacity` units altogether.
  void reserve(std::size_t capacity);
  /// Appends `count` units whose values are the caller's to write, and gives the first of them.
  char16_t* extend(std::size_t count);
  /// Cuts the text off behind `size` units, at most its present size.
  void truncate(std::size_t size) noexcept { _size = size; }
  /// Gives back memory when much of it is unused. Never fails.
  void shrink() noexcept;

  /// The text may be a part of this buffer.
  void append(std::u16string_view text) {
    if (text.size() > _capacity - _size) return replace(_size, 0, text);
    std::char_traits<char16_t>::copy(_units + _size, text.data(), text.size());
    _size += text.size();
  }
  /// Puts the text in the place of `count` units at `position`; it may be a part of this buffer.
  void replace(std::size_t position, std::size_t count, std::u16string_view text);

 private:
  bool isInline() const noexcept { return _units == _inline.data(); }
  void takeOver(NSUnitBuffer& other) noexcept;
  void grow(std::size_t needed);

  std::array<char16_t, inlineCapacity> _inline {};
  char16_t* _units;
  std::size_t _size = 0;
  std::size_t _capacity = inlineCapacity;
};
