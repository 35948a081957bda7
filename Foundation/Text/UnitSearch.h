#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include <Foundation/NSExport.h>

// Searches unit by unit, in time that is linear in the text. An empty needle is not found.

/// Positions of occurrences of the needle at or behind `from`, from left to right without overlap,
/// as many as `places` takes. Gives how many there are; fewer than asked for means that these were
/// the last.
NS_EXPORT std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle,
                                  std::size_t from, std::span<std::size_t> places);

/// The first of them, or `std::u16string_view::npos`.
inline std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle,
                               std::size_t from = 0) {
  std::size_t place = 0;
  return NSFindUnits(text, needle, from, {&place, 1}) == 0 ? std::u16string_view::npos : place;
}

/// The same for texts of which all units are below 0x80, without regard to letter case.
NS_EXPORT std::size_t NSFindASCIIFolded(std::u16string_view text, std::u16string_view needle,
                                        std::size_t from);
