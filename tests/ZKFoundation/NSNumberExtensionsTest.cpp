#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

TEST(NSNumberExtensions, WritesNumbersInEveryStyle) {
  constexpr std::uint64_t largest = 0xFFFF'FFFF'FFFF'FFFF;
  for (const auto& [type, pairs] : Rows<NSUInteger, const char*>{
           {0, "0 NUL 42 42 18446744073709551615 -1"},
           {1, "0 NUL 1 A 26 Z 27 AA 52 AZ 53 BA 702 ZZ 703 AAA"},
           {1, "9223372036854775807 CRPXNLSKVLJFHG"},
           {2, "28 ab"},
           {3, "0 NUL 1 I 4 IV 9 IX 14 XIV 40 XD 49 XDIX 50 D 60 DX 90 XC 99 XCIX 400 CD"},
           {3, "1994 MCMXCIV 3999 MMMCMXCIX 4000 M 4999 MCMXCIX 5000 NUL 1888 MDCCCDXXXVIII"},
           {3, "18446744073709551615 NUL"},
           {4, "1024 mxxiv 58 dviii 5000 NUL"},
           {7, "0 NUL"},
       }) {
    std::istringstream list(pairs);
    std::string expected;
    for (std::uint64_t value = 0; list >> value >> expected;) {
      EXPECT_EQ(ZKBinToStr(value, type)->utf8(), expected) << value << " as " << type;
    }
    EXPECT_TRUE(list.eof()) << pairs;
  }
  EXPECT_EQ(ZKBinToStr(3, 5), nullptr);
  EXPECT_EQ(ZKBinToStr(largest / 2 + 1, 1), nullptr);
  EXPECT_EQ(numberToStringWithType(NSMake<NSNumber>(12.9), 3), u"XII");
  EXPECT_EQ(numberToStringWithType(NSMake<NSNumber>(-1), 0), u"-1");
}

TEST(NSNumberExtensions, WritesOneRomanDigit) {
  const auto output = NSMake<NSMutableString>();
  for (int digit = -1; digit <= 10; ++digit) {
    roman_digit(u"i"_ns, u"v"_ns, u"x"_ns, digit, output);
    output->appendUnits(u".");
  }
  EXPECT_EQ(output, u"..i.ii.iii.iv.v.vi.vii.viii.ix..");
  const auto own = NSMake<NSMutableString>(u"ab");
  roman_digit(own, own, nullptr, 4, own);
  EXPECT_EQ(own, u"ababab");
}

}  // namespace
