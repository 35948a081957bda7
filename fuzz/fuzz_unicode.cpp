#include "fuzz/Support.h"

#include <algorithm>

#include <ZKFoundation/ZKFoundation.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Whatever is decoded is well-formed, so that encoding and decoding it again changes nothing.
  const NSUnitBuffer decoded = NSUnitsFromUTF8(bytesOf(data, size));
  const std::string encoded = NSUTF8FromUnits(decoded.view());
  require(NSUnitsFromUTF8(encoded).view() == decoded.view());
  require(decoded.size() <= size);

  // Any units give well-formed bytes, in which a lone half counts as one replacement.
  const std::u16string units = unitsOf(data, size);
  const NSUnitBuffer again = NSUnitsFromUTF8(NSUTF8FromUnits(units));
  require(again.size() == units.size());
  require(std::ranges::equal(units, again.view(), [](char16_t before, char16_t after) {
    return before == after || (after == 0xFFFD && (before & 0xF800U) == 0xD800);
  }));

  // A file's text, whole or damaged: what is read of it comes back with its encoding once it is
  // written.
  const std::string_view bytes = bytesOf(data, size);
  const NSStringEncoding encoding = NSDetectEncoding(bytes);
  NSUnitBuffer text;
  require(NSAppendDecoded(bytes, encoding, text) <= size);
  require(text.size() <= size);
  const std::string written = NSEncodedText(text.view(), encoding);
  NSUnitBuffer readAgain;
  const bool isAmbiguous = text.view().starts_with(u'\0');
  require(isAmbiguous || NSDetectEncoding(written) == encoding);
  require(NSAppendDecoded(written, encoding, readAgain) == written.size());
  require(readAgain.size() == text.size());
  require(!NSIsWellFormed(text.view()) || readAgain.view() == text.view());
  return 0;
}
