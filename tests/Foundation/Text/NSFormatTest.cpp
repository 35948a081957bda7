#include "tests/Support.h"

#include <Foundation/NSStandardFormat.h>

namespace {

template <class... Arguments>
std::string format(const char* pattern, const Arguments&... arguments) {
  return NSString::stringWithFormat(NSMake<NSString>(pattern), arguments...)->utf8();
}

TEST(NSFormat, ReplacesConversions) {
  const auto word = u"Größe"_ns;
  const NSRef<NSString> nothing;
  EXPECT_EQ(format(""), "");
  EXPECT_EQ(format("100 %% of %@", word), "100 % of Größe");
  EXPECT_EQ(format("%@ %@", word, nothing), "Größe (null)");
  EXPECT_EQ(format("%2$@ %1$@ %2$@", word, NSMake<NSNumber>(2)), "2 Größe 2");
  EXPECT_EQ(format("%@ %1$@ %@", 1, 2), "1 1 2");
  EXPECT_EQ(format("%s|%@|%s", "naïve", "d", static_cast<const char*>(nullptr)), "naïve|d|(null)");
  EXPECT_EQ(format("%.3s|%.2@|%5.1@|%.0s", "naïve", word, word, u"d"), "naï|Gr|    G|");
  EXPECT_EQ(format("%.2@|%.3@|%.9@|%.2@", u"a𝒜b", u"a𝒜b", u"a𝒜b", -12), "a|a𝒜|a𝒜b|-1");
  EXPECT_EQ(format("[%8@] [%-8@]", word, word), "[   Größe] [Größe   ]");
  EXPECT_EQ(format("%C%c", u'ß', 'x'), "ßx");
  EXPECT_EQ(format("%C|%3C|%-3c|%c", U'😀', U'😀', 0x1F600, 0x10FFFF), "😀| 😀|😀 |\U0010FFFF");
  EXPECT_EQ(format("%lu %zd %lld %hhd", NSUIntegerMax, NSIntegerMin, -1LL, 300),
            "18446744073709551615 -9223372036854775808 -1 300");
  EXPECT_EQ(format("%d", NSOrderedAscending), "-1");
  std::ostringstream address;
  address << static_cast<void*>(word.get());
  EXPECT_EQ(format("%p", word), address.str());
  EXPECT_EQ(format("%-5p|%05p", nullptr, nullptr), "0x0  |  0x0");
  EXPECT_THROW((void)NSString::stringWithFormat(nullptr), NSException);
}

TEST(NSFormat, SurvivesWrongFormats) {
  const auto word = u"word"_ns;
  EXPECT_EQ(format("%@ %@", word), "word (null)");
  EXPECT_EQ(format("%3$@ %0$@", word), "(null) %0$@");
  EXPECT_EQ(format("%d %f %s %x", word, word, word, 1.5), "word word word 1.5");
  EXPECT_EQ(format("%.1d %.1f", word, word), "word word");
  EXPECT_EQ(format("%f %@ %s", 7, 7U, -7), "7 7 -7");
  EXPECT_EQ(format("%C %c", 0x110000, -1), "1114112 -1");
  EXPECT_EQ(format("%@ %d", -2.5, "text"), "-2.5 text");
  EXPECT_EQ(format("50 % z %q", 1), "50 % z %q");
  EXPECT_EQ(format("%y %*d %", 1), "%y %*d %");
  EXPECT_EQ(format("%99999999999999999999d", 1).size(), 1000);
  EXPECT_EQ(format("%.99999999999999999999f", 1.0).size(), 1002);
  EXPECT_EQ(format("%99999999999999999999$@", 1), "(null)");
}

TEST(NSFormat, WritesNumbersAsPrintfDoes) {
  const auto* const integers =
      "%1$d|%1$5i|%1$-5d|%1$05d|%1$+d|%1$ "
      "d|%1$.4d|%1$8.4d|%1$.0d|%1$u|%1$x|%1$X|%1$#x|%1$#010x|%1$o|"
      "%1$#o|%1$-#8o|%1$-05d|";
  EXPECT_EQ(
      format(integers, 42),
      "42|   42|42   |00042|+42| 42|0042|    0042|42|42|2a|2A|0x2a|0x0000002a|52|052|052     |"
      "42   |");
  EXPECT_EQ(format(integers, -42),
            "-42|  -42|-42  |-0042|-42|-42|-0042|   -0042|-42|4294967254|ffffffd6|FFFFFFD6|"
            "0xffffffd6|0xffffffd6|37777777726|037777777726|037777777726|-42  |");
  EXPECT_EQ(format(integers, 0),
            "0|    0|0    |00000|+0| 0|0000|    0000||0|0|0|0|0000000000|0|0|0       |0    |");
  const auto* const numbers =
      "%1$f|%1$.0f|%1$10.2f|%1$-12.3e|%1$012.3f|%1$+g|%1$.3g|%1$E|%1$G|%1$a|%1$.3A|%1$ F|%1$05e|"
      "%1$#.0f";
  EXPECT_EQ(format(numbers, 1234.5),
            "1234.500000|1234|   1234.50|1.234e+03   |00001234.500|+1234.5|1.23e+03|1.234500E+03|"
            "1234.5|0x1.34ap+10|0X1.34AP+10| 1234.500000|1.234500e+03|1234.");
  EXPECT_EQ(format(numbers, -HUGE_VAL),
            "-inf|-inf|      -inf|-inf        |        -inf|-inf|-inf|-INF|-INF|-inf|-INF|-INF| "
            "-inf|-inf");
}

#ifdef __cpp_lib_format
TEST(NSFormat, StandardFormattingWritesWhatStreamsDo) {
  EXPECT_EQ(std::format("{:>5}|{}|{:.3}|{}|{}", NSMake<NSNumber>(1.5), NSRef<NSString>(),
                        u"words"_ns, NSRect{{1, 2}, {3, 4}}, NSRange{5, 6}),
            "  1.5|(null)|wor|{{1, 2}, {3, 4}}|{5, 6}");
}
#endif

}  // namespace
