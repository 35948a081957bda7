#include "Foundation/NSUnitBuffer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

namespace {

// Keeps every size in bytes below PTRDIFF_MAX, so that no arithmetic on it overflows.
constexpr std::size_t maxUnits = (PTRDIFF_MAX / sizeof(char16_t)) - 1;

void moveUnits(char16_t* to, const char16_t* from, std::size_t count) {
  if (count != 0) std::memmove(to, from, count * sizeof(char16_t));
}

}  // namespace

NSUnitBuffer& NSUnitBuffer::operator=(const NSUnitBuffer& other) {
  if (this != &other) replace(0, _size, other.view());
  return *this;
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): may copy.
NSUnitBuffer& NSUnitBuffer::operator=(NSUnitBuffer&& other) {
  if (this == &other) return *this;
  if (other._isLent) {
    replace(0, _size, other.view());
    other._size = 0;
    return *this;
  }
  giveBack();
  _units = std::exchange(other._units, &_nothing);
  _size = std::exchange(other._size, 0);
  _capacity = other._capacity;
  _isLent = false;
  other._capacity = 0;
  other._isLent = true;
  return *this;
}

void NSUnitBuffer::reserve(std::size_t capacity) {
  if (capacity <= _capacity) return;
  if (capacity > maxUnits) throw std::bad_alloc();
  void* const old = _isLent ? nullptr : _units;
  auto* const units = static_cast<char16_t*>(std::realloc(old, capacity * sizeof(char16_t)));
  if (units == nullptr) throw std::bad_alloc();
  if (old == nullptr) moveUnits(units, _units, _size);
  _units = units;
  _capacity = capacity & largest;
  _isLent = false;
}

void NSUnitBuffer::makeRoom(std::size_t count) {
  if (count > maxUnits - _size) throw std::bad_alloc();
  // The first text gets what it asks for, as most never grow again. Later at least half as much is
  // added again, so that appending costs constant time on the average.
  const std::size_t grown = std::min<std::size_t>(_capacity + _capacity / 2, maxUnits);
  reserve(_size == 0 ? count : std::max(_size + count, grown));
}

void NSUnitBuffer::shrink() noexcept {
  if (_isLent || _size > _capacity - _capacity / 4) return;
  const std::size_t wanted = std::max<std::size_t>(_size, 1);
  auto* const units = static_cast<char16_t*>(std::realloc(_units, wanted * sizeof(char16_t)));
  if (units == nullptr) return;
  _units = units;
  _capacity = wanted & largest;
}

void NSUnitBuffer::appendDecimal(std::uint64_t value) {
  std::array<char, 20> digits;  // "18446744073709551615"
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::copy(std::as_const(digits).data(), end,
            extend(static_cast<std::size_t>(end - digits.data())));
}

void NSUnitBuffer::replace(std::size_t position, std::size_t count, std::u16string_view text) {
  const std::less_equal<> before;
  const bool isOwnPart = !text.empty() && before(_units, text.data()) &&
                         before(text.data(), _units + _size) && text.data() != _units + _size;
  if (isOwnPart && position != _size) {
    replace(position, count, NSUnitBuffer(text).view());
    return;
  }
  const std::size_t tail = _size - position - count;
  if (text.size() > count) {
    const auto ownOffset = static_cast<std::size_t>(isOwnPart ? text.data() - _units : 0);
    extend(text.size() - count);
    if (isOwnPart) text = {_units + ownOffset, text.size()};
  } else {
    _size -= count - text.size();
  }
  char16_t* const place = _units + position;
  moveUnits(place + text.size(), place + count, tail);
  moveUnits(place, text.data(), text.size());
}
