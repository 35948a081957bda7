#include "fuzz/Support.h"

#include <array>
#include <cmath>

#include <ZKFoundation/ZKFoundation.h>

// Any text as a size, in a locale and under switches that its first byte chooses: what is read lies
// within the text, and what is written of it, to a hundredth of its unit, is read as that size
// again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::array<const char*, 4> locales = {"en", "fr", "ar_EG", "hi"};
  if (size == 0) return 0;
  const unsigned choice = data[0];
  const auto formatter = NSMake<ZKUnitOfInformationFormatter>();
  formatter->numberFormatter()->setLocale(
      NSLocale::localeWithLocaleIdentifier(NSMake<NSString>(locales[choice % 4])));
  formatter->setDisplaysInTermsOfBytes((choice & 4U) != 0);
  formatter->setUsesIECBinaryPrefixesForCalculation((choice & 8U) != 0);
  formatter->setUsesIECBinaryPrefixesForDisplay((choice & 16U) != 0);
  const auto text = NSMake<NSString>(bytesOf(data + 1, size - 1));
  NSUInteger index = NSNotFound;
  const auto bits = formatter->numberOfBitsFromString_stoppedAt(text, &index);
  require(index <= text->length());
  if (!bits) return 0;
  require(index == text->length());
  const auto written = formatter->stringFromNumberOfBits(bits);
  const auto again = formatter->numberOfBitsFromString_stoppedAt(written, &index);
  require(again != nullptr);
  require(index == written->length());
  // Prefixes follow the bits, so that at least an eighth of the unit is written, in hundredths; and
  // they are chosen for integers of 64 bits.
  const double wanted = bits->doubleValue();
  const double difference = std::abs(again->doubleValue() - wanted);
  require(difference <= 0.05 * std::abs(wanted) + 0.1 || std::abs(wanted) >= 0x1p62);
  return 0;
}
