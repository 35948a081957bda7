#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>
#include <Foundation/NSUnitBuffer.h>

/// How a text stands in bytes; the values are the platform's.
enum NSStringEncoding : NSUInteger {
  NSUTF8StringEncoding = 4,
  NSUTF16BigEndianStringEncoding = 0x90000100,
  NSUTF16LittleEndianStringEncoding = 0x94000100,
  NSUTF32BigEndianStringEncoding = 0x98000100,
  NSUTF32LittleEndianStringEncoding = 0x9C000100,
};

// Functions for other numbers than these raise `NSInvalidArgumentException`.

/// Gives the encoding's name for people, such as "UTF-16LE".
[[nodiscard]] NS_EXPORT std::string_view NSNameOfEncoding(NSStringEncoding encoding);

/// Tells by the byte-order mark at their beginning in which encoding the bytes are; UTF-8 without.
[[nodiscard]] NS_EXPORT NSStringEncoding NSDetectEncoding(std::string_view bytes) noexcept;

/// Appends the text of bytes in this encoding, without the mark at their beginning, if any. Gives
/// where the first bytes stand that are no character, or the number of bytes if all are: in their
/// place is U+FFFD, lone surrogate halves of UTF-16 are kept, and half a unit at the end is left
/// out. Needs room for as many units as there are bytes.
NS_EXPORT std::size_t NSAppendDecoded(std::string_view bytes, NSStringEncoding encoding,
                                      NSUnitBuffer& text);

/// Gives the bytes of a text as they stand in a file: in UTF-16 and UTF-32 after a byte-order mark,
/// in UTF-8 only before a text that begins with U+FEFF itself. So `NSDetectEncoding` tells the
/// encoding again. Lone surrogate halves become U+FFFD.
[[nodiscard]] NS_EXPORT std::string NSEncodedText(std::u16string_view text,
                                                  NSStringEncoding encoding);
