#pragma once

#include <cstddef>
#include <string_view>

#include <Foundation/NSExport.h>

/// Position of the first occurrence of the needle at or behind `from`, unit by unit;
/// `std::u16string_view::npos` when there is none. An empty needle is not found.
NS_EXPORT std::size_t NSFindUnits(std::u16string_view text, std::u16string_view needle,
                                  std::size_t from = 0) noexcept;
