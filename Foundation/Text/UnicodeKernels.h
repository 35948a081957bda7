#pragma once

#include <cstddef>
#include <string_view>

// The vector parts of the conversions between UTF-8 and UTF-16. They take the long, well-formed
// stretches; the scalar code around them takes what is broken, the beginning and the end.

struct NSTranscoded {
  /// Where the scalar code goes on: the start of a character.
  std::size_t position;
  std::size_t written;
};

/// Decodes from `position` on, the start of a character with at least three bytes of well-formed
/// characters before it. Stops in front of what is not well-formed and near the end. Writes into
/// the room for one unit a byte.
[[nodiscard]] NSTranscoded NSDecodeWellFormed(std::string_view utf8, std::size_t position,
                                              char16_t* out);

/// Encodes from `position` on, the start of a character that follows another one. Stops near the
/// end of the text and of the room, which must be `NSEncodingSlack` bytes more than is used of it.
[[nodiscard]] NSTranscoded NSEncodeBlocks(std::u16string_view text, std::size_t position, char* out,
                                          std::size_t room);

/// A vector of the widest machine with every unit in three bytes.
inline constexpr std::size_t NSEncodingSlack = 256;
