#pragma once

#include <cstddef>
#include <span>

/// Whether bytes are a binary property list that libplist can read within memory proportional to
/// their number and without deep recursion: every size and offset lies within the bytes, nothing
/// contains itself, containers nest at most 64 deep, a container that is not empty stands in one
/// place only, and long values are not named again and again. What writers of archives produce is
/// so. Values that libplist would change are refused too: text with U+0000 or half of a surrogate
/// pair, and integers beyond 64 bits with a sign.
bool NSIsFlatBinaryPropertyList(std::span<const std::byte> bytes);
