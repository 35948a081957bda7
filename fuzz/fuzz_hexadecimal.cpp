#include "fuzz/Support.h"

#include <cinttypes>

#include <ZKFoundation/ZKFoundation.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto string = NSMake<NSString>(bytesOf(data, size));
  const std::uint64_t value = ZKFoundationExtensions::maxHexValue(string);
  require(value == std::strtoumax(string->utf8().c_str(), nullptr, 16));
  // The lenient parser looks at 40 units and gives nothing or what only white space hides.
  const auto start = string->substringToIndex(std::min<NSUInteger>(string->length(), 40));
  require(ZKFoundationExtensions::hexValue(string) == ZKFoundationExtensions::hexValue(start));
  (void)ZKFoundationExtensions::hexValue(NSMake<NSString>(unitsOf(data, size)));
  return 0;
}
