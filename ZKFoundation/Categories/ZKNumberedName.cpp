#include "ZKFoundation/Categories/ZKNumberedName.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>

#include <Foundation/NSUnicode.h>

namespace {

constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};

// Faster than views, which compare unit by unit.
bool areSame(std::u16string_view a, std::u16string_view b) { return std::ranges::equal(a, b); }

// Where the digits at the end begin. The first unit is none of them.
std::size_t startOfDigits(std::u16string_view name) {
  std::size_t start = name.size();
  while (start > 1 && NSDecimalDigitValue(name[start - 1]) >= 0) --start;
  return start;
}

// The value of digits of any script, if it has a successor.
std::optional<std::uint64_t> valueOf(std::u16string_view digits) {
  std::uint64_t value = 0;
  for (const char16_t unit : digits) {
    const auto digit = static_cast<std::uint64_t>(NSDecimalDigitValue(unit));
    if (value > (largest - 1 - digit) / 10) return std::nullopt;
    value = value * 10 + digit;
  }
  return value;
}

// The number that a text is when it is written as numbers are appended; 0 for every other text.
std::uint64_t plainNumber(std::u16string_view text) {
  constexpr std::size_t mostDigits = std::numeric_limits<std::uint64_t>::digits10;
  if (text.empty() || text.size() > mostDigits || text[0] == u'0') return 0;
  std::uint64_t number = 0;
  for (const char16_t unit : text) {
    const auto digit = static_cast<std::uint64_t>(unit) - u'0';
    if (digit > 9) return 0;
    number = number * 10 + digit;
  }
  return number;
}

}  // namespace

ZKNumberedName::ZKNumberedName(std::u16string_view name, std::size_t count)
    : _base(name), _numbers(1, count) {
  const std::size_t start = startOfDigits(name);
  if (const auto number = valueOf(name.substr(start))) {
    _base = name.substr(0, start);
    _digits = name.substr(start);
    _numbers = ZKFreeNumber(*number + 1, count);
  }
}

void ZKNumberedName::take(std::u16string_view name) {
  if (name.size() < _base.size() || !areSame(name.substr(0, _base.size()), _base)) return;
  const std::u16string_view rest = name.substr(_base.size());
  _isTaken = _isTaken || areSame(rest, _digits);
  _numbers.take(plainNumber(rest));
}

std::u16string ZKNumberedName::freeName() const {
  if (!_isTaken) return std::u16string(_base).append(_digits);
  std::array<char, 20> digits;
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), _numbers.smallest()).ptr;
  return std::u16string(_base).append(digits.data(), end);
}
