#include "tests/Support.h"

#include <cstdio>

namespace {

template <class... Arguments>
std::string format(const char* pattern, const Arguments&... arguments) {
  return NSString::stringWithFormat(NSMake<NSString>(pattern), arguments...)->utf8();
}

// The patterns are in tables.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class... Arguments>
std::string printed(const char* pattern, Arguments... arguments) {
  std::array<char, 2048> text{};
  std::snprintf(text.data(), text.size(), pattern, arguments...);
  return text.data();
}
#pragma GCC diagnostic pop

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
  EXPECT_EQ(format("%lu %zd %lld %hhd", NSUIntegerMax, NSIntegerMin, -1LL, 300),
            "18446744073709551615 -9223372036854775808 -1 300");
  EXPECT_EQ(format("%d", NSOrderedAscending), "-1");
  EXPECT_EQ(format("%p", word), printed("%p", static_cast<void*>(word.get())));
  EXPECT_THROW(NSString::stringWithFormat(nullptr), NSException);
}

TEST(NSFormat, SurvivesWrongFormats) {
  const auto word = u"word"_ns;
  EXPECT_EQ(format("%@ %@", word), "word (null)");
  EXPECT_EQ(format("%3$@ %0$@", word), "(null) %0$@");
  EXPECT_EQ(format("%d %f %s %x", word, word, word, 1.5), "word word word 1.5");
  EXPECT_EQ(format("%.1d %.1f", word, word), "word word");
  EXPECT_EQ(format("%f %@ %s", 7, 7U, -7), "7 7 -7");
  EXPECT_EQ(format("%@ %d", -2.5, "text"), "-2.5 text");
  EXPECT_EQ(format("50 % z %q", 1), "50 % z %q");
  EXPECT_EQ(format("%y %*d %", 1), "%y %*d %");
  EXPECT_EQ(format("%99999999999999999999d", 1).size(), 1000);
  EXPECT_EQ(format("%.99999999999999999999f", 1.0).size(), 1002);
  EXPECT_EQ(format("%99999999999999999999$@", 1), "(null)");
}

TEST(NSFormat, WritesNumbersAsPrintfDoes) {
  expectProperty("integers", [](int value) {
    for (const char* const pattern :
         {"%d", "%5i", "%-5d|", "%05d", "%+d", "% d", "%.3d", "%8.3d", "%u", "%x", "%X", "%#x",
          "%#010x", "%o", "%#o", "%-#8o|", "%.0d", "%+.0d", "%-05d|"}) {
      RC_ASSERT(format(pattern, value) == printed(pattern, value));
    }
  });
  const std::vector<double> special = {0.0, -0.0, 1e300, -1e-300, HUGE_VAL, -HUGE_VAL, 0.5, 123456};
  expectProperty("floating-point numbers", [&](double random) {
    const double value = *rc::gen::oneOf(rc::gen::elementOf(special), rc::gen::just(random));
    for (const char* const pattern : {"%f", "%.0f", "%10.2f", "%-12.3e|", "%012.3f", "%+g", "%.10g",
                                      "%E", "%G", "%a", "%.3a", "% F", "%05e"}) {
      RC_ASSERT(format(pattern, value) == printed(pattern, value));
    }
  });
}

}  // namespace
