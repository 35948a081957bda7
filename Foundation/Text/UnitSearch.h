#pragma once

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

/// Finds the first occurrence in a text of ASCII units, without regard to letter case; `npos` when
/// there is none. Needs an ASCII needle.
[[nodiscard]] NS_EXPORT std::size_t NSFindASCIIFolded(std::u16string_view text,
                                                      std::u16string_view needle, std::size_t from);
