#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

namespace {

// What the user's locale and languages are in one test.
class Habits {
 public:
  explicit Habits(const char* identifier, const char* language = "xx") {
    NSLocale::setCurrentLocale(locale(identifier));
    NSLocale::setPreferredLanguages(NSMake<NSArray>({string(language)}));
  }
  Habits(const Habits&) = delete;
  ~Habits() {
    NSLocale::setCurrentLocale(nullptr);
    NSLocale::setPreferredLanguages(nullptr);
  }
};

NSRef<ZKUnitOfInformationFormatter> formatter(bool bytes, bool binary, bool iec) {
  auto result = NSMake<ZKUnitOfInformationFormatter>();
  result->setDisplaysInTermsOfBytes(bytes);
  result->setUsesIECBinaryPrefixesForCalculation(binary);
  result->setUsesIECBinaryPrefixesForDisplay(iec);
  return result;
}

template <class Number>
std::string text(const NSRef<ZKUnitOfInformationFormatter>& formatter, Number bits) {
  return formatter->stringFromNumberOfBits(NSMake<NSNumber>(bits))->utf8();
}

TEST(ZKUnitOfInformationFormatter, WritesSizes) {
  const Habits habits("en");
  const std::array formatters = {NSMake<ZKUnitOfInformationFormatter>(),
                                 formatter(true, true, true), formatter(true, false, false),
                                 formatter(false, true, false), formatter(false, false, true)};
  for (const auto& [bits, texts] : Rows<long, std::array<const char*, 5>>{
           {8, {"1 bytes", "1 bytes", "1 bytes", "8 bits", "8 bits"}},
           {7992, {"999 bytes", "999 bytes", "999 bytes", "7.8 kbit", "7.99 Kibit"}},
           {8000, {"1,000 bytes", "1,000 bytes", "1 KB", "7.81 kbit", "8 Kibit"}},
           {8184, {"1,023 bytes", "1,023 bytes", "1.02 KB", "7.99 kbit", "8.18 Kibit"}},
           {8192, {"1 KB", "1 KiB", "1.02 KB", "8 kbit", "8.19 Kibit"}},
           {12288, {"1.5 KB", "1.5 KiB", "1.54 KB", "12 kbit", "12.29 Kibit"}},
           {999, {"124.88 bytes", "124.88 bytes", "124.88 bytes", "999 bits", "999 bits"}},
           // The prefix follows the bits, the number the bytes.
           {1048576, {"128 KB", "128 KiB", "0.13 MB", "1,024 kbit", "1.05 Mibit"}},
           {1048577, {"0.13 MB", "0.13 MiB", "0.13 MB", "1 Mbit", "1.05 Mibit"}},
           {-64, {"-8 bytes", "-8 bytes", "-8 bytes", "-64 bits", "-64 bits"}},
           // The increment is not quite a hundredth.
           {-987648,
            {"-123,455.997 bytes", "-123,455.997 bytes", "-123,455.997 bytes", "-987,647.998 bits",
             "-987,647.998 bits"}},
           {(1L << 60) + 1, {"128 PB", "128 PiB", "0.14 EB", "1,024 Pbit", "1.15 (null)"}},
       }) {
    for (std::size_t k = 0; k < texts.size(); ++k) {
      EXPECT_EQ(text(formatters[k], bits), texts[k]) << bits << " in column " << k;
    }
  }
}

TEST(ZKUnitOfInformationFormatter, NamesUnits) {
  const Habits habits("en");
  const std::array<std::array<const char*, 6>, 4> names = {
      {{"KB", "MB", "GB", "TB", "PB", "EB"},
       {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"},
       {"kbit", "Mbit", "Gbit", "Tbit", "Pbit", "(null)"},
       {"Kibit", "Mibit", "Gibit", "Tibit", "Pibit", "(null)"}}};
  for (std::size_t column = 0; column < names.size(); ++column) {
    for (std::size_t prefix = 0; prefix < 6; ++prefix) {
      const auto sizes = formatter(column < 2, true, column % 2 == 1);
      // Half as much again as the prefix's factor, in bits; bytes are an eighth of them.
      const long bits = 3L << (10 * prefix + (prefix == 0 && column < 2 ? 12 : 9));
      const std::string written = text(sizes, bits);
      EXPECT_EQ(written.substr(written.find(' ') + 1), names[column][prefix]) << bits;
    }
  }
}

TEST(ZKUnitOfInformationFormatter, TakesUnitsAndPrefixes) {
  const Habits habits("en");
  const auto bits = formatter(false, true, false);
  const auto units = [&](auto number, NSInteger unit) {
    return bits->stringFromNumber_ofUnit(NSMake<NSNumber>(number), unit)->utf8();
  };
  EXPECT_EQ(units(100, ZKUnitOfInformationBit), "100 bits");
  EXPECT_EQ(units(100, ZKUnitOfInformationNibble), "400 bits");
  EXPECT_EQ(units(100.9, ZKUnitOfInformationByte), "800 bits");
  EXPECT_EQ(units(10, ZKUnitOfInformationWord), "160 bits");
  EXPECT_EQ(units(10, ZKUnitOfInformationDoubleWord), "320 bits");
  for (const NSInteger unit : {-1, 5, 7}) EXPECT_EQ(units(100, unit), "100 bits");
  EXPECT_EQ(units((1L << 61) + 1, ZKUnitOfInformationByte), "8 bits");
  EXPECT_EQ(units(1e300, ZKUnitOfInformationByte), "-8 bits");

  const auto bytes = NSMake<ZKUnitOfInformationFormatter>();
  const auto scaled = [&](auto number, NSInteger prefix) {
    return bytes
        ->stringFromNumber_ofUnit_withPrefix(NSMake<NSNumber>(number), ZKUnitOfInformationByte,
                                             prefix)
        ->utf8();
  };
  EXPECT_EQ(scaled(2, ZKUnitOfInformationPrefixMega), "2 MB");
  EXPECT_EQ(scaled(2.9, ZKUnitOfInformationPrefixKilo), "2 KB");
  for (const NSInteger prefix : {-1, 6, 9}) EXPECT_EQ(scaled(2, prefix), "2 KB");
  EXPECT_EQ(scaled(3, ZKUnitOfInformationPrefixPeta), "3 PB");
  EXPECT_EQ(scaled(100, ZKUnitOfInformationPrefixExa), "-1 bytes");
}

TEST(ZKUnitOfInformationFormatter, ChoosesThePrefixByTheUnsignedNumber) {
  for (const bool isBinary : {true, false}) {
    const auto sizes = formatter(true, isBinary, false);
    double factor = 1;
    for (NSInteger prefix = 0; prefix < 6; ++prefix) {
      factor *= isBinary ? 1024 : 1000;
      EXPECT_EQ(sizes->scaleFactorForPrefix(prefix), factor);
      const auto number = static_cast<NSInteger>(factor);
      EXPECT_EQ(sizes->prefixForInteger(number), std::max<NSInteger>(prefix - 1, 0));
      // One more is not to be told from 2^60 as a double.
      EXPECT_EQ(sizes->prefixForInteger(number + 1024), prefix);
    }
    EXPECT_EQ(sizes->scaleFactorForPrefix(-1), isBinary ? 1024 : 1000);
    EXPECT_EQ(sizes->scaleFactorForPrefix(6), isBinary ? 1024 : 1000);
    EXPECT_EQ(sizes->prefixForInteger(-1), ZKUnitOfInformationPrefixExa);
  }

  struct Dozens : ZKUnitOfInformationFormatter {
    double scaleFactorForPrefix(NSInteger prefix) const override {
      return prefix == 0 ? 12 : prefix == 1 ? 144 : 1e30;
    }
  };
  const Habits habits("en");
  const auto dozens = NSMake<Dozens>();
  EXPECT_EQ(text(dozens, 11 * 8), "11 bytes");
  EXPECT_EQ(text(dozens, 12 * 8), "1 KB");
  EXPECT_EQ(text(dozens, 24 * 8), "0.17 MB");
}

TEST(ZKUnitOfInformationFormatter, FormatsNumbersOnly) {
  const Habits habits("en");
  const auto sizes = NSMake<ZKUnitOfInformationFormatter>();
  EXPECT_EQ(sizes->stringForObjectValue(number(80)), u"10 bytes");
  EXPECT_FALSE(sizes->stringForObjectValue(u"80"_ns));
  EXPECT_FALSE(sizes->stringForObjectValue(nullptr));
  EXPECT_THROW((void)sizes->stringFromNumberOfBits(nullptr), NSException);
  EXPECT_TRUE(sizes->valueForKey(u"displaysInTermsOfBytes"_ns).as<NSNumber>()->boolValue());
  NSRef<NSObject> object = sizes;
  EXPECT_FALSE(sizes->getObjectValue_forString_errorDescription(object, u"1 KB"_ns, nullptr));
  EXPECT_FALSE(object);

  sizes->numberFormatter()->setMaximumFractionDigits(0);
  EXPECT_EQ(text(sizes, 12800), "2 KB");
}

TEST(ZKUnitOfInformationFormatter, WritesNumbersAsTheyAreInTheLocale) {
  for (const auto& [locale, isInBytes, number, native] :
       Rows<const char*, bool, double, const char*>{
           {"de", true, 1536, "1536 bytes"},
           {"de", true, -1536.25, "-1536,25 bytes"},
           {"de", false, 1e300, "1e+300 bits"},
           {"ar-EG", false, 1e5, "١٠٠٠٠٠ bits"},
           {"ar-EG", false, 1234567890.5, "١٢٣٤٥٦٧٨٩٠٫٥ bits"}}) {
    const Habits habits(locale);
    const auto sizes = formatter(isInBytes, true, false);
    EXPECT_EQ(sizes->nativeStringFromNumber(NSMake<NSNumber>(number))->utf8(), native);
  }
}

TEST(ZKUnitOfInformationFormatter, FollowsTheLocaleAndTheTablesOfTheProgram) {
  for (const auto& [locale, language, kilobytes, bytes] :
       Rows<const char*, const char*, const char*, const char*>{
           {"en", "en", "1.5 KB", "-1,234,567 bytes"},
           {"de", "de", "1,5 KB", "-1.234.567 Byte"},
           {"de_CH", "de-CH", "1.5 KB", "-1’234’567 Byte"},
           {"es", "es", "1,5 KB", "-1.234.567 bytes"},
           {"ar_EG", "ar", "KB \u200F١٫٥", "bytes \u200F\u061C-١٬٢٣٤٬٥٦٧"},
       }) {
    const Habits habits(locale, language);
    const auto sizes = NSMake<ZKUnitOfInformationFormatter>();
    EXPECT_EQ(text(sizes, 12288), kilobytes) << locale;
    sizes->numberFormatter()->setRoundingIncrement(nullptr);
    EXPECT_EQ(text(sizes, -1234567 * 8), bytes) << locale;
  }
  const Habits habits("es");
  EXPECT_EQ(text(NSMake<ZKUnitOfInformationFormatter>(), 8000), "1000 bytes");
}

TEST(ZKUnitOfInformationFormatter, ReadsSizes) {
  // What is read, or where it stopped.
  const auto read = [](const NSRef<ZKUnitOfInformationFormatter>& sizes,
                       const std::u16string& text) {
    NSUInteger index = NSNotFound;
    const auto bits = sizes->numberOfBitsFromString_stoppedAt(NSMake<NSString>(text), &index);
    EXPECT_TRUE(!bits || index == text.size());
    return bits ? bits->stringValue()->utf8() : "stopped at " + std::to_string(index);
  };
  for (const auto& [language, text, result] : Rows<const char*, std::u16string, const char*>{
           {"en", u"1.5 KB", "12288"},
           {"en", u" 1.5KB\t", "12288"},
           {"en", u"-8 bytes", "-64"},
           {"en", u"124.88 bytes", "999"},
           {"en", u"1 EB", "9.223372036854776e+18"},
           {"en", u"1.5", "stopped at 3"},
           {"en", u"1,5 KB", "stopped at 1"},
           {"en", u"1.5 KiB", "stopped at 4"},
           {"en", u"1.5 KBs", "stopped at 6"},
           {"en", std::u16string(300, u'9') + u" EB", "stopped at 303"},
           {"fr", u"12,3 Mo", "103179878"},
           {"fr", u"12,3\u00A0MB", "103179878"},
           {"fr", u"1 023 octets", "8184"},
           {"ar_EG", u"KB \u200F١٫٥", "12288"},
           {"ar_EG", u"KB 1٫5", "12288"},
           {"ar_EG", u"1٫5 KB", "stopped at 0"},
       }) {
    const Habits habits(language, language);
    EXPECT_EQ(read(NSMake<ZKUnitOfInformationFormatter>(), text), result) << NSUTF8FromUnits(text);
  }
  const Habits habits("en");
  EXPECT_EQ(read(formatter(true, false, true), u"1.5 KiB"), "12000");
  EXPECT_EQ(read(formatter(false, true, false), u"1.5 kbit"), "1536");
  EXPECT_EQ(read(formatter(false, true, false), u"2 (null)"), "2305843009213693952");
  EXPECT_FALSE(
      NSMake<ZKUnitOfInformationFormatter>()->numberOfBitsFromString_stoppedAt(nullptr, nullptr));
}

TEST(ZKUnitOfInformationFormatter, ReadsWhatItWrites) {
  for (const char* const language : {"en", "fr", "ar_EG", "de_CH", "hi"}) {
    const Habits habits(language, language);
    expectProperty(std::string("a size comes back in ") + language, [](std::int64_t any) {
      const auto switches = *rc::gen::inRange(0, 8);
      const auto sizes = formatter((switches & 1) != 0, (switches & 2) != 0, (switches & 4) != 0);
      const auto bits = any >> *rc::gen::inRange(0, 60);
      const auto written = sizes->stringFromNumberOfBits(NSMake<NSNumber>(bits));
      const auto read = sizes->numberOfBitsFromString_stoppedAt(written, nullptr);
      RC_ASSERT(read.get() != nullptr);
      const double unit = sizes->displaysInTermsOfBytes() ? 8 : 1;
      if (static_cast<double>(bits) < sizes->scaleFactorForPrefix(0) * unit) {
        // Doubles have no room for all thousandths of larger ones.
        RC_ASSERT(read->longLongValue() == bits || std::abs(bits) > (1LL << 48));
      } else {
        // Half a hundredth of the unit away, and half a bit.
        const double factor = sizes->scaleFactorForPrefix(sizes->prefixForInteger(bits)) * unit;
        RC_ASSERT(std::abs(read->doubleValue() - static_cast<double>(bits)) <=
                  0.0051 * factor + 0.5);
        // One of a prefix is the largest number that is written with the prefix before.
        const bool isFactor = read->doubleValue() == factor;
        RC_ASSERT(isFactor || sizes->stringFromNumberOfBits(read)->isEqual(written));
      }
    });
  }
}

TEST(ZKUnitOfInformationFormatter, KeepsTheNamesThatItIsUsing) {
  // The fault of this language's table is logged while the name is looked up; the languages change
  // before the pattern is.
  const Habits habits("en", "yi");
  const auto former = NSSetLogSink([](const NSRef<NSString>& /*line*/) {
    NSLocale::setPreferredLanguages(NSMake<NSArray>({u"de"_ns}));
  });
  const auto sizes = NSMake<ZKUnitOfInformationFormatter>();
  EXPECT_EQ(text(sizes, 8), "1 a name that is long enough for memory of its own");
  EXPECT_EQ(text(sizes, 8), "1 Byte");
  NSSetLogSink(former);
}

TEST(ZKUnitOfInformationFormatter, IsArchivedWithItsSwitches) {
  const Habits habits("en");
  for (int bits = 0; bits < 8; ++bits) {
    const auto original = formatter((bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0);
    original->numberFormatter()->setMinimumFractionDigits(1);
    const auto copy = unarchived<ZKUnitOfInformationFormatter>(original);
    for (const long size : {8L, 8000L, 12288L, 123456789L}) {
      EXPECT_EQ(text(copy, size), text(original, size));
    }
  }
}

TEST(ZKUnitOfInformationFormatter, ReadsAnArchiveWithoutItsKeys) {
  struct Plain : NSObject, NSCoding {
    void encodeWithCoder(const NSRef<NSCoder>& /*coder*/) const override {}
  };
  const auto name = NSClass::of<Plain>().name();
  NSKeyedUnarchiver::setClass_forClassName<ZKUnitOfInformationFormatter>(name);
  const Habits habits("en");
  const auto sizes = unarchived<ZKUnitOfInformationFormatter>(NSMake<Plain>());
  EXPECT_FALSE(sizes->displaysInTermsOfBytes());
  EXPECT_FALSE(sizes->usesIECBinaryPrefixesForCalculation());
  EXPECT_FALSE(sizes->usesIECBinaryPrefixesForDisplay());
  EXPECT_FALSE(sizes->numberFormatter());
  EXPECT_EQ(text(sizes, 2000), "(null) kbit");
}

}  // namespace
