#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include <Foundation/NSExport.h>

// Searches unit by unit, in time that is linear in the text. An empty needle is not found.

/// Finds occurrences of the needle at or after `from`, from left to right without overlap, as many
/// as `places` takes. Gives how many there are; fewer than asked for means that these were
/// the last.
[[nodiscard]] NS_EXPORT std::size_t NSFindUnits(std::u16string_view text,
                                                std::u16string_view needle, std::size_t from,
                                                std::span<std::size_t> places);

/// Finds the first occurrence at or after `from`; `std::u16string_view::npos` when there is none.
[[nodiscard]] inline std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle,
                                             std::size_t from = 0) {
  std::size_t place = 0;
  return NSFindUnits(text, needle, from, {&place, 1}) == 0 ? std::u16string_view::npos : place;
}

/// A set of units that is tested a vector at a time: a few exactly, those beyond them with all that
/// lie between.
class NSUnitChoice {
 public:
  void add(char16_t unit) {
    if (_count == 0) _units.fill(unit);
    if (contains(unit)) {
      _count = std::max(_count, std::size_t{1});
    } else if (_count < _units.size()) {
      _units[_count++] = unit;
    } else {
      _low = std::min(_low, unit);
      _high = std::max(_high, unit);
    }
  }
  /// Whether the unit is one of the choice, which is not empty, or lies between some of them.
  [[nodiscard]] bool contains(char16_t unit) const {
    return std::ranges::find(_units, unit) != _units.end() || (unit >= _low && unit <= _high);
  }
  /// Whether the choice is between one or two units.
  [[nodiscard]] bool isSmall() const { return _count <= 2; }
  [[nodiscard]] const std::array<char16_t, 8>& units() const { return _units; }
  [[nodiscard]] char16_t low() const { return _low; }
  [[nodiscard]] char16_t high() const { return _high; }

 private:
  // Those that are not taken repeat the first.
  std::array<char16_t, 8> _units{};
  std::size_t _count = 0;
  char16_t _low = 0xFFFF;
  char16_t _high = 0;
};

/// Finds places at or after `from` with a unit of the first choice, and `distance` units after it
/// one of the second, as many as `places` takes; gives how many there are.
[[nodiscard]] NS_EXPORT std::size_t NSFindChoices(std::u16string_view text,
                                                  const std::array<NSUnitChoice, 2>& choices,
                                                  std::size_t distance, std::size_t from,
                                                  std::span<std::size_t> places);
