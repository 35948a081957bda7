#include "tests/Support.h"

namespace {

const double notANumber = std::nan("");

// In ascending order; equal values share a row.
const std::vector<std::vector<NSRef<NSNumber>>> ascendingNumbers = {
    {NSMake<NSNumber>(notANumber), NSMake<NSNumber>(-notANumber)},
    {NSMake<NSNumber>(-HUGE_VAL)},
    {NSMake<NSNumber>(NSIntegerMin), NSMake<NSNumber>(-0x1p63)},
    {NSMake<NSNumber>(NSIntegerMin + 1)},
    {NSMake<NSNumber>(-1.5F)},
    {NSMake<NSNumber>(-1), NSMake<NSNumber>(-1.0)},
    {NSMake<NSNumber>(0U), NSMake<NSNumber>(false), NSMake<NSNumber>(-0.0)},
    {NSMake<NSNumber>(0.5)},
    {NSMake<NSNumber>(true), NSMake<NSNumber>(1), NSMake<NSNumber>(1.0F)},
    {NSMake<NSNumber>(0x1p53), NSMake<NSNumber>(std::int64_t{1} << 53)},
    {NSMake<NSNumber>((std::int64_t{1} << 53) + 1)},
    {NSMake<NSNumber>(NSIntegerMax), NSMake<NSNumber>(NSUInteger{NSIntegerMax})},
    {NSMake<NSNumber>(std::uint64_t{1} << 63), NSMake<NSNumber>(0x1p63)},
    {NSMake<NSNumber>((std::uint64_t{1} << 63) + 1)},
    {NSMake<NSNumber>(NSUIntegerMax)},
    {NSMake<NSNumber>(0x1p64)},
    {NSMake<NSNumber>(HUGE_VAL)},
};

TEST(NSNumber, ComparesExactlyAcrossTypes) {
  for (std::size_t a = 0; a < ascendingNumbers.size(); ++a) {
    for (std::size_t b = 0; b < ascendingNumbers.size(); ++b) {
      const int expected = a < b ? -1 : a > b ? 1 : 0;
      for (const auto& x : ascendingNumbers[a]) {
        for (const auto& y : ascendingNumbers[b]) {
          EXPECT_EQ(x->compare(y), expected) << x << " and " << y;
          EXPECT_EQ(x->isEqual(y), a == b);
          EXPECT_TRUE(a != b || x->hash() == y->hash()) << x << " and " << y;
        }
      }
    }
  }
}

TEST(NSNumber, ConvertsWithSaturationAndWrapping) {
  EXPECT_EQ(NSMake<NSNumber>(-1)->unsignedIntegerValue(), NSUIntegerMax);
  EXPECT_EQ(NSMake<NSNumber>(NSUIntegerMax)->integerValue(), -1);
  EXPECT_EQ(NSMake<NSNumber>(0x1'0000'0005)->intValue(), 5);
  EXPECT_EQ(NSMake<NSNumber>(-2.9)->intValue(), -2);
  EXPECT_EQ(NSMake<NSNumber>(-2.9)->unsignedLongValue(), 0U);
  EXPECT_EQ(NSMake<NSNumber>(1e300)->intValue(), std::numeric_limits<int>::max());
  EXPECT_EQ(NSMake<NSNumber>(0x1p63)->longLongValue(), NSIntegerMax);
  EXPECT_EQ(NSMake<NSNumber>(-HUGE_VAL)->integerValue(), NSIntegerMin);
  EXPECT_EQ(NSMake<NSNumber>(HUGE_VAL)->unsignedLongLongValue(), NSUIntegerMax);
  EXPECT_EQ(NSMake<NSNumber>(notANumber)->integerValue(), 0);
  EXPECT_EQ(NSMake<NSNumber>(true)->doubleValue(), 1.0);
  EXPECT_EQ(NSMake<NSNumber>(0.1)->floatValue(), 0.1F);
  EXPECT_TRUE(NSMake<NSNumber>(0.1)->boolValue());
  EXPECT_FALSE(NSMake<NSNumber>(0)->boolValue());
  EXPECT_TRUE(NSMake<NSNumber>(1.0F)->isFloatingPoint());
}

// Numbers that differ in their upper bits alone, and numbers and texts that all meet in a hash
// table which multiplies by 2^64 over the golden ratio.
TEST(NSNumber, IsFoundAmongOthersThatWereChosen) {
  constexpr std::uint64_t inverse = 0xF1DE83E19937733D;
  static_assert(0x9E3779B97F4A7C15 * inverse == 1);
  constexpr std::uint64_t count = 40'000;
  const auto numbers = NSMake<NSMutableSet>();
  const auto texts = NSMake<NSMutableSet>();
  for (std::uint64_t k = 1; k <= count; ++k) {
    for (const std::uint64_t number : {k * inverse, k << 40U, k << 44U}) {
      numbers->addObject(NSMake<NSNumber>(number));
    }
    numbers->addObject(NSMake<NSNumber>(std::ldexp(static_cast<double>(k), -20)));
    texts->addObject(NSMake<NSString>(u"\x7C15\x7F4A\x79B9\x9E37" +
                                      std::u16string(1, static_cast<char16_t>(k)) + u"xxxxx"));
  }
  EXPECT_GT(numbers->count(), 3 * count);
  EXPECT_TRUE(numbers->containsObject(NSMake<NSNumber>(count * inverse)));
  EXPECT_EQ(texts->count(), count);

  // Hashes that are not mixed with random numbers give each of these the hash of its neighbour.
  const auto row = [](int a, int b) { return NSMake<NSArray>({number(a), number(b)}); };
  const auto span = [](NSUInteger k) { return NSRange{k, 0 - k * 0x9E3779B97F4A7C15}; };
  const auto data = NSMake<NSData>(std::string_view("sixteen bytes it"));
  EXPECT_NE(data->hash(), std::hash<std::string_view>()(data->view()));
  EXPECT_NE(row(1, -31)->hash(), row(2, -62)->hash());
  EXPECT_NE(NSMake<NSSet>({row(1, -31)})->hash(), NSMake<NSSet>({row(2, -62)})->hash());
  EXPECT_NE(NSMake<NSValue>(span(1))->hash(), NSMake<NSValue>(span(2))->hash());
  const auto indexes = NSMake<NSMutableIndexSet>(NSRange{1, 1});
  indexes->addIndex(5);
  const auto others = indexes->mutableCopy();
  indexes->addIndex(2);
  others->addIndex(3);
  EXPECT_NE(indexes->hash(), others->hash());
}

TEST(NSNumber, WritesItsValue) {
  const auto text = [](auto value) { return NSMake<NSNumber>(value)->stringValue(); };
  EXPECT_EQ(text(NSUIntegerMax), u"18446744073709551615");
  EXPECT_EQ(text(-2.2250738585072014e-308), u"-2.2250738585072014e-308");
  EXPECT_EQ(text(0.1), u"0.1");
  EXPECT_EQ(text(-0.0001), u"-0.0001");
  EXPECT_EQ(text(0.00001), u"1e-05");
  EXPECT_EQ(text(1e15), u"1000000000000000");
  EXPECT_EQ(text(1e16), u"1e+16");
  EXPECT_EQ(text(true), u"1");
}

TEST(NSValue, KeepsItsKindAndMembers) {
  const auto rect = NSMake<NSValue>(NSMakeRect(1, 2.5, 3, 4));
  EXPECT_EQ(rect->rectValue(), NSMakeRect(1, 2.5, 3, 4));
  EXPECT_EQ(rect->description(), u"{{1, 2.5}, {3, 4}}");
  expectRaises(NSInvalidArgumentException,
               "the value {{1, 2.5}, {3, 4}} is of another kind (in 'rangeValue')",
               [&] { (void)rect->rangeValue(); });
  const auto point = [](double x, double y) { return NSMake<NSValue>(NSMakePoint(x, y)); };
  EXPECT_EQ(point(0.0, 2), point(-0.0, 2));
  EXPECT_EQ(point(0.0, 2)->hash(), point(-0.0, 2)->hash());
  EXPECT_FALSE(point(1, 2)->isEqual(NSMake<NSValue>(NSMakeSize(1, 2))));
  EXPECT_NE(point(1, 1)->hash(), point(2, 2)->hash());
}

TEST(NSValue, IsEqualToItsLikeAlone) {
  const auto make = [] {
    return NSMake<NSArray>(
        {NSMake<NSValue>(NSMakeSize(1, 2)), NSMake<NSValue>(NSMakeRect(1, 2, 3, 4)),
         NSMake<NSValue>(NSRange{1, 2}), NSMake<NSData>("1"), NSMake<NSData>("2"), u"1"_ns,
         NSDate::distantPast(), NSMake<NSDate>(std::chrono::system_clock::time_point())});
  };
  const auto ones = make();
  const auto others = make();
  for (NSUInteger a = 0; a < ones->count(); ++a) {
    EXPECT_EQ(ones[a]->hash(), others[a]->hash()) << ones[a];
    for (NSUInteger b = 0; b < ones->count(); ++b) {
      EXPECT_EQ(ones[a]->isEqual(others[b]), a == b) << ones[a] << " and " << others[b];
    }
  }
}

TEST(NSRange, ComputesWithoutOverflow) {
  EXPECT_TRUE(NSRangeFits({3, 2}, 5));
  EXPECT_FALSE(NSRangeFits({3, 3}, 5));
  EXPECT_FALSE(NSRangeFits({6, 0}, 5));
  EXPECT_FALSE(NSRangeFits({1, NSUIntegerMax}, 5));
  EXPECT_TRUE(NSLocationInRange(3, {3, 1}));
  EXPECT_FALSE(NSLocationInRange(4, {3, 1}));
  EXPECT_EQ(NSIntersectionRange({0, 5}, {3, 9}), (NSRange{3, 2}));
  EXPECT_EQ(NSIntersectionRange({0, 3}, {3, 9}), (NSRange{0, 0}));
  EXPECT_EQ(NSUnionRange({7, 2}, {1, 1}), (NSRange{1, 8}));
  EXPECT_EQ(NSIntersectionRange({1, NSUIntegerMax}, {0, 5}), (NSRange{1, 4}));
}

TEST(NSNumber, TakesPlainNumbersOffTexts) {
  const std::u16string zeros(400, u'0');
  for (const auto& [text, integer, afterInteger, number, afterNumber] :
       Rows<std::u16string, std::optional<NSInteger>, std::u16string, std::optional<double>,
            std::u16string>{
           {u"-12 pages", -12, u" pages", -12.0, u" pages"},
           {u"9223372036854775807", NSIntegerMax, u"", 0x1p63, u""},
           {u"-9223372036854775809", {}, u"-9223372036854775809", -0x1p63, u""},
           {zeros + u"7x", 7, u"x", 7.0, u"x"},
           {u"-.5e-1.5", {}, u"-.5e-1.5", -0.05, u".5"},
           {u"1e3e", 1, u"e3e", 1000.0, u"e"},
           {u"1e+", 1, u"e+", 1.0, u"e+"},
           {u"1.", 1, u".", 1.0, u""},
           {u".", {}, u".", {}, u"."},
           {u"--1", {}, u"--1", {}, u"--1"},
           {u"1e999", 1, u"e999", {}, u"1e999"},
           {u"-Infinity!", {}, u"-Infinity!", -HUGE_VAL, u"!"},
           {u"+1", {}, u"+1", {}, u"+1"},
           {u" 1", {}, u" 1", {}, u" 1"},
           {u"\u0661", {}, u"\u0661", {}, u"\u0661"},
           {u"1\u0131", 1, u"\u0131", 1.0, u"\u0131"},
           {u"", {}, u"", {}, u""},
       }) {
    std::u16string_view rest = text;
    EXPECT_EQ(NSTakeInteger(rest), integer) << NSUTF8FromUnits(text);
    EXPECT_EQ(rest, afterInteger);
    rest = text;
    EXPECT_EQ(NSTakeDouble(rest), number) << NSUTF8FromUnits(text);
    EXPECT_EQ(rest, afterNumber);
  }
  expectProperty("takes back what numbers write", [](double value, NSInteger integer) {
    const auto text =
        NSMake<NSNumber>(value)->stringValue() + u" " + NSMake<NSNumber>(integer)->stringValue();
    std::u16string_view rest = text->view();
    RC_ASSERT(NSTakeDouble(rest) == value);
    rest.remove_prefix(1);
    RC_ASSERT(NSTakeInteger(rest) == integer);
    RC_ASSERT(rest.empty());
  });
}

}  // namespace
