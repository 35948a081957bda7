#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

TEST(NSNumberExtensions, WritesNumbersInEveryStyle) {
  constexpr std::uint64_t largest = 0xFFFF'FFFF'FFFF'FFFF;
  struct Row {
    std::uint64_t value;
    NSUInteger type;
    const char16_t* expected;
  };
  const std::vector<Row> rows = {
      {0, 0, u"NUL"},
      {0, 1, u"NUL"},
      {0, 3, u"NUL"},
      {0, 7, u"NUL"},
      {42, 0, u"42"},
      {largest, 0, u"-1"},
      {1, 1, u"A"},
      {26, 1, u"Z"},
      {27, 1, u"AA"},
      {52, 1, u"AZ"},
      {53, 1, u"BA"},
      {702, 1, u"ZZ"},
      {703, 1, u"AAA"},
      {28, 2, u"ab"},
      {largest / 2, 1, u"CRPXNLSKVLJFHG"},
      {1, 3, u"I"},
      {4, 3, u"IV"},
      {9, 3, u"IX"},
      {14, 3, u"XIV"},
      {40, 3, u"XD"},
      {49, 3, u"XDIX"},
      {50, 3, u"D"},
      {60, 3, u"DX"},
      {90, 3, u"XC"},
      {99, 3, u"XCIX"},
      {400, 3, u"CD"},
      {1994, 3, u"MCMXCIV"},
      {3999, 3, u"MMMCMXCIX"},
      {4000, 3, u"M"},
      {4999, 3, u"MCMXCIX"},
      {5000, 3, u"NUL"},
      {largest, 3, u"NUL"},
      {1888, 3, u"MDCCCDXXXVIII"},
      {1024, 4, u"mxxiv"},
      {58, 4, u"dviii"},
      {5000, 4, u"NUL"},
  };
  for (const auto& [value, type, expected] : rows) {
    EXPECT_TRUE(ZKBinToStr(value, type) == expected)
        << value << " as " << type << ": " << ZKBinToStr(value, type);
  }
  EXPECT_EQ(ZKBinToStr(3, 5), nullptr);
  EXPECT_EQ(ZKBinToStr(largest / 2 + 1, 1), nullptr);
  EXPECT_TRUE(numberToStringWithType(NSMake<NSNumber>(12.9), 3) == u"XII");
  EXPECT_TRUE(numberToStringWithType(NSMake<NSNumber>(-1), 0) == u"-1");
}

TEST(NSNumberExtensions, CountsInLetters) {
  expectProperty("base 26 with the digits 1 to 26", [] {
    const auto value = *rc::gen::inRange<std::uint64_t>(1, std::uint64_t{1} << 62);
    std::uint64_t read = 0;
    const auto text = ZKBinToStr(value, ZKNumberUpperCaseLetters);
    for (const char16_t unit : text->view()) {
      RC_ASSERT(unit >= u'A' && unit <= u'Z');
      read = read * 26 + (unit - u'A' + 1U);
    }
    RC_ASSERT(read == value);
  });
}

TEST(NSNumberExtensions, WritesOneRomanDigit) {
  const auto output = NSMake<NSMutableString>();
  for (int digit = -1; digit <= 10; ++digit) {
    roman_digit(u"i"_ns, u"v"_ns, u"x"_ns, digit, output);
    output->appendUnits(u".");
  }
  EXPECT_TRUE(output == u"..i.ii.iii.iv.v.vi.vii.viii.ix..");
  const auto own = NSMake<NSMutableString>(u"ab");
  roman_digit(own, own, nullptr, 4, own);
  EXPECT_TRUE(own == u"ababab");
}

}  // namespace
