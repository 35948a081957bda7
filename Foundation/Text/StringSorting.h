#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <Foundation/NSExport.h>

/// Gives the places of the texts in the order of `NSCompareUnits` without options, those that
/// compare as the same in their order. Each text is brought into its form once.
[[nodiscard]] NS_EXPORT std::vector<std::size_t> NSSortedPlaces(
    std::span<const std::u16string_view> texts);
