#pragma once

#include <cstddef>
#include <string_view>

// The vector parts of the conversions between UTF-8 and UTF-16. The scalar code around them takes
// very short texts, UTF-8 that is broken, and machines without vectors, where these do nothing.

struct NSTranscoded {
  /// Where to go on.
  std::size_t position;
  std::size_t written;
};

/// Shorter texts are not worth the vector code, which counts on so many bytes or units.
inline constexpr std::size_t NSFewestToTranscode = 16;

/// Decodes from `position` on, the start of the text or of a character with at least three bytes of
/// well-formed characters before it. Stops in front of what is not well-formed, some characters
/// earlier at most. Writes into the room for one unit a byte.
[[nodiscard]] NSTranscoded NSDecodeWellFormed(std::string_view utf8, std::size_t position,
                                              char16_t* out);

/// Encodes from `position` on, where it has stopped before, or the start. Stops at the end of the
/// text or of the room, which must be `NSEncodingSlack` bytes more than is used of it.
[[nodiscard]] NSTranscoded NSEncodeBlocks(std::u16string_view text, std::size_t position, char* out,
                                          std::size_t room);

/// A vector of the widest machine with every unit in three bytes.
inline constexpr std::size_t NSEncodingSlack = 256;
