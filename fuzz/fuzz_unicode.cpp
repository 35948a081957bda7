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
  return 0;
}
