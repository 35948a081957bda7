#include "tests/Files.h"

#include <charconv>

#include <unicode/numberformatter.h>
#include <unicode/uloc.h>

namespace {

NSRef<NSNumberFormatter> decimalFormatter(const char* identifier) {
  auto formatter = NSMake<NSNumberFormatter>();
  formatter->setLocale(locale(identifier));
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  return formatter;
}

template <class Number>
std::string text(const NSRef<NSNumberFormatter>& formatter, Number number) {
  return formatter->stringFromNumber(NSMake<NSNumber>(number))->utf8();
}

// ICU's answer, for comparison.
class Reference {
 public:
  Reference(const char16_t* skeleton, const char* identifier)
      : _formatter(
            icu::number::NumberFormatter::forSkeleton(skeleton, _status).locale(identifier)) {}

  std::string decimal(double value) {
    // Its digits: given the double itself, ICU 72 takes 6,902,322,733,148.125 to the next but one
    // multiple of the single-precision 0.01.
    std::array<char, 400> digits{};
    std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    const auto rounded = _formatter.formatDecimal(digits.data(), _status);
    const auto decimal = rounded.toDecimalNumber<std::string>(_status);
    // ICU forgets the sign of zero here, though not in texts.
    return std::signbit(value) && decimal[0] != '-' ? '-' + decimal : decimal;
  }
  std::string text(const std::string& decimal) {
    std::string utf8;
    _formatter.formatDecimal(decimal, _status).toString(_status).toUTF8String(utf8);
    EXPECT_TRUE(U_SUCCESS(_status));
    return utf8;
  }

 private:
  UErrorCode _status = U_ZERO_ERROR;
  icu::number::LocalizedNumberFormatter _formatter;
};

TEST(NSNumberFormatter, WritesEveryNumber) {
  const auto formatter = decimalFormatter("en");
  EXPECT_EQ(text(formatter, -0.0), "-0");
  EXPECT_EQ(text(formatter, true), "1");
  EXPECT_EQ(text(formatter, std::numeric_limits<double>::quiet_NaN()), "NaN");
  EXPECT_EQ(text(formatter, -std::numeric_limits<double>::infinity()), "-∞");
  EXPECT_EQ(text(formatter, NSUIntegerMax), "18,446,744,073,709,551,615");
  EXPECT_EQ(text(formatter, NSIntegerMin), "-9,223,372,036,854,775,808");
  EXPECT_EQ(text(formatter, 0x1p60), "1,152,921,504,606,846,976");
  EXPECT_EQ(text(formatter, 1e23).substr(0, 30), "99,999,999,999,999,991,611,392");
  EXPECT_EQ(formatter->stringFromNumber(nullptr), nullptr);
  EXPECT_EQ(formatter->stringForObjectValue(u"1"_ns), nullptr);
}

TEST(NSNumberFormatter, FollowsItsSettings) {
  const auto formatter = NSMake<NSNumberFormatter>();
  formatter->setLocale(locale("en"));
  EXPECT_EQ(text(formatter, 1234.5), "1234");
  formatter->setMinimumFractionDigits(2);
  EXPECT_EQ(formatter->maximumFractionDigits(), 2);
  EXPECT_EQ(text(formatter, 1.5), "1.50");
  EXPECT_EQ(text(formatter, 0x1p60), "1152921504606846976.00");
  formatter->setMaximumFractionDigits(1);
  EXPECT_EQ(formatter->minimumFractionDigits(), 1);
  EXPECT_EQ(text(formatter, 1.25), "1.2");
  formatter->setUsesGroupingSeparator(true);
  EXPECT_EQ(text(formatter, 1234), "1,234.0");
  formatter->setMaximumFractionDigits(5000);
  EXPECT_EQ(formatter->maximumFractionDigits(), 340);
  EXPECT_EQ(text(formatter, 1e-300).size(), 302);
  expectRaises(NSInvalidArgumentException, "unknown number style 2 (in 'setNumberStyle:')",
               [&] { formatter->setNumberStyle(static_cast<NSNumberFormatterStyle>(2)); });
}

TEST(NSNumberFormatter, RoundsByItsMode) {
  const auto formatter = NSMake<NSNumberFormatter>();
  formatter->setLocale(locale("en"));
  for (const auto& [mode, texts] : Rows<NSNumberFormatterRoundingMode, std::string>{
           {NSNumberFormatterRoundCeiling, "3 -2 3 3"},
           {NSNumberFormatterRoundFloor, "2 -3 2 2"},
           {NSNumberFormatterRoundDown, "2 -2 2 2"},
           {NSNumberFormatterRoundUp, "3 -3 3 3"},
           {NSNumberFormatterRoundHalfEven, "2 -2 2 3"},
           {NSNumberFormatterRoundHalfDown, "2 -2 2 3"},
           {NSNumberFormatterRoundHalfUp, "3 -3 2 3"},
       }) {
    formatter->setRoundingMode(mode);
    EXPECT_EQ(text(formatter, 2.5) + ' ' + text(formatter, -2.5) + ' ' + text(formatter, 2.4) +
                  ' ' + text(formatter, 2.6),
              texts);
  }
  expectRaises(NSInvalidArgumentException, "unknown rounding mode 7 (in 'setRoundingMode:')",
               [&] { formatter->setRoundingMode(static_cast<NSNumberFormatterRoundingMode>(7)); });
}

TEST(NSNumberFormatter, RoundsToMultiplesFirst) {
  const auto formatter = decimalFormatter("en");
  const auto rounded = [&](double increment, double value) {
    formatter->setRoundingIncrement(NSMake<NSNumber>(increment));
    return text(formatter, value);
  };
  EXPECT_EQ(rounded(0.0625, 0.0624), "0.062");
  EXPECT_EQ(rounded(1000, 0x1p60), "1,152,921,504,606,847,000");
  EXPECT_EQ(rounded(5, 12.5), "10");
  // Too many digits for ICU.
  EXPECT_EQ(rounded(7, 1e35).substr(0, 7), "99,999,");
  EXPECT_EQ(rounded(0x1p53, 1e17), "99,079,191,802,150,912");
  for (const double none : {0.0, -1.0, std::nan(""), HUGE_VAL, 0x1p-60, 0x1p54}) {
    EXPECT_EQ(rounded(none, 12.5), "12.5");
    EXPECT_EQ(formatter->roundingIncrement(), nullptr);
  }
}

// Both the numbers that are rounded in doubles and the others: many lie in the middle or next to
// it.
TEST(NSNumberFormatter, RoundsAsICUDoesStepByStep) {
  const auto formatter = decimalFormatter("en");
  Reference toHundredth(u"precision-increment/0.009999999776482582 rounding-mode-half-even", "en");
  Reference toEighth(u"precision-increment/0.125 rounding-mode-half-even", "en");
  Reference toThousandth(u".### rounding-mode-half-even", "en");
  expectProperty(
      "a number is rounded to a multiple, then to three digits", [&](std::int64_t whole) {
        const auto scale =
            *rc::gen::elementOf(std::vector<double>{1, 8, 64, 1000, 2000, 1e4, 1e6, 1e9});
        const double value = static_cast<double>(whole) / scale;
        RC_PRE(std::abs(value) < 0x1p53);
        formatter->setRoundingIncrement(nullptr);
        RC_ASSERT(text(formatter, value) == toThousandth.text(toThousandth.decimal(value)));
        formatter->setRoundingIncrement(NSMake<NSNumber>(0.01F));
        RC_ASSERT(text(formatter, value) == toThousandth.text(toHundredth.decimal(value)));
        formatter->setRoundingIncrement(NSMake<NSNumber>(0.125));
        RC_ASSERT(text(formatter, value) == toThousandth.text(toEighth.decimal(value)));
      });
}

TEST(NSNumberFormatter, WritesAsICUDoesInEveryLocale) {
  for (std::int32_t k = 0; k < uloc_countAvailable(); ++k) {
    const char* const identifier = uloc_getAvailable(k);
    const auto formatter = decimalFormatter(identifier);
    Reference reference(u".### rounding-mode-half-even", identifier);
    for (const char* const number : {"0", "-7", "123", "1234", "-1234.5", "12345", "123456.789",
                                     "1234567", "-12345678901.25"}) {
      const auto written = formatter->stringFromNumber(NSMake<NSNumber>(std::stod(number)));
      ASSERT_EQ(written->utf8(), reference.text(number)) << identifier;
      std::u16string_view rest = written->view();
      ASSERT_EQ(formatter->takeNumber(rest), std::stod(number)) << identifier;
      ASSERT_TRUE(rest.empty()) << identifier;
    }
  }
}

TEST(NSNumberFormatter, TakesNumbersOffTexts) {
  for (const auto& [identifier, text, number, rest] :
       Rows<const char*, std::u16string, std::optional<double>, std::u16string>{
           {"en", u"1,234.50 a", 1234.5, u" a"},
           {"en", u"1234.", 1234, u"."},
           {"en", u".5", 0.5, u""},
           {"en", u"\u22121,234,567", -1234567, u""},
           {"en", u"1,5", 1, u",5"},
           {"en", u"1234,567", 1234, u",567"},
           {"en", u"1,23,456", 1, u",23,456"},
           {"en", u"1,234,5.6", 1234, u",5.6"},
           {"en", u"1,234,567,8", 1234567, u",8"},
           {"en", u"1,234,5678", 1234, u",5678"},
           {"en", u"1e5", 1, u"e5"},
           {"en", u"\u0661\u0662", 12, u""},
           {"hi", u"12,34,567", 1234567, u""},
           {"hi", u"12,34,567,89", 1234567, u",89"},
           {"hi", u"1,23,45,6", 1, u",23,45,6"},
           {"es", u"1.000", 1000, u""},
           {"fr", u"1 234,5", 1234.5, u""},
           {"fr", u"1\u00A0234 5", 1234, u" 5"},
           {"de_CH", u"1'234.5", 1234.5, u""},
           {"zh@numbers=hanidec", u"一二", 12, u""},
           {"en", u"- 1", {}, u"- 1"},
           {"en", u"+1", {}, u"+1"},
           {"en", std::u16string(400, u'9'), {}, std::u16string(400, u'9')},
           {"en", std::u16string(u"-0.").append(400, u'0') + u"1 m", 0, u" m"},
       }) {
    std::u16string_view left = text;
    EXPECT_EQ(decimalFormatter(identifier)->takeNumber(left), number) << NSUTF8FromUnits(text);
    EXPECT_EQ(left, rest);
  }
}

TEST(NSNumberFormatter, TakesNumbersOffLists) {
  // Where each number read the list to its end, this would take half an hour.
  constexpr double count = 200'000;
  for (const auto& [identifier, item] :
       Rows<const char*, const char16_t*>{{"en", u"7,"}, {"hi", u"42,"}}) {
    const auto formatter = decimalFormatter(identifier);
    std::u16string list;
    for (int k = 0; k < count; ++k) list += item;
    double sum = 0;
    for (std::u16string_view left = list; !left.empty(); left.remove_prefix(1)) {
      sum += formatter->takeNumber(left).value_or(NAN);
    }
    EXPECT_EQ(sum, count * std::stod(NSUTF8FromUnits(item)));
  }
}

TEST(NSNumberFormatter, WritesInLocalesThatICUDoesNotKnow) {
  for (const char* const unknown : {"en@numbers=zzzz", "en@numbers=roman", "en-u-nu-1",
                                    "@=", "grclowuxtamlzharabm0h0artgrclowu"}) {
    EXPECT_EQ(text(decimalFormatter(unknown), 1234.5), "1,234.5") << unknown;
    EXPECT_EQ(NSMake<NSNumber>(-1.5)->descriptionWithLocale(locale(unknown))->utf8(), "-1.5");
    NSLocale::setCurrentLocale(locale(unknown));
    EXPECT_EQ(u"a text"_ns->localizedCapitalizedString()->utf8(), "A Text") << unknown;
  }
  NSLocale::setCurrentLocale(nullptr);
}

TEST(NSNumberFormatter, ComesBackFromAnArchive) {
  const auto original = decimalFormatter("de");
  original->setRoundingIncrement(NSMake<NSNumber>(0.5));
  original->setMinimumFractionDigits(2);
  original->setRoundingMode(NSNumberFormatterRoundUp);
  const auto copy = unarchived<NSNumberFormatter>(original);
  EXPECT_EQ(text(copy, 1234.1), "1.234,50");
  EXPECT_EQ(copy->numberStyle(), NSNumberFormatterDecimalStyle);

  const auto plain = unarchived<NSNumberFormatter>(NSMake<NSNumberFormatter>());
  EXPECT_EQ(plain->locale(), NSLocale::currentLocale());
  EXPECT_EQ(plain->maximumFractionDigits(), 0);
  EXPECT_EQ(plain->roundingIncrement(), nullptr);
}

TEST(NSNumberFormatter, RefusesSettingsThatMakeNoSense) {
  struct Settings : NSObject, NSCoding {
    explicit Settings(NSRef<NSDictionary> values) : settings(std::move(values)) {}
    void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
      coder->encodeObject_forKey(settings, u"NS.attributes"_ns);
    }
    NSRef<NSDictionary> settings;
  };
  NSKeyedUnarchiver::setClass_forClassName<NSNumberFormatter>(NSClass::of<Settings>().name());
  const auto read = [](const NSRef<NSString>& key, const NSRef<NSObject>& value) {
    return unarchived<NSNumberFormatter>(NSMake<Settings>(NSMake<NSDictionary>({{key, value}})));
  };
  EXPECT_EQ(read(u"numberStyle"_ns, number(1))->maximumFractionDigits(), 3);
  for (const auto& [key, value] : Rows<const char*, NSRef<NSObject>>{
           {"numberStyle", number(9)},
           {"numberStyle", number(-1)},
           {"maximumFractionDigits", NSMake<NSNumber>(1.5)},
           {"minimumFractionDigits", number(-1)},
           {"roundingMode", u"up"_ns},
           {"roundingIncrement", u"up"_ns},
           {"locale", number(1)},
       }) {
    expectRaises(NSInvalidUnarchiveOperationException,
                 std::string("the number formatter's ").append(key).append(" cannot be read"),
                 [&, key = key, value = value] { read(NSMake<NSString>(key), value); });
  }
}

TEST(NSLocale, IsNamedByAnIdentifier) {
  EXPECT_TRUE(locale("de_CH")->isEqual(locale("de_CH")));
  EXPECT_FALSE(locale("de_CH")->isEqual(locale("de-CH")));
  EXPECT_EQ(locale("de-CH")->description()->utf8(), "NSLocale de-CH");
  const std::string tooLong(151, 'a');
  for (const char* const wrong : {"", "de CH", "dé", "de/..", tooLong.c_str()}) {
    EXPECT_FALSE(locale(wrong)) << wrong;
  }
  EXPECT_FALSE(NSLocale::localeWithLocaleIdentifier(nullptr));
}

// The environment is read in a process of its own, where nobody reads it at the same time.
TEST(NSLocale, ComesFromTheEnvironment) {
  // LANGUAGE, LC_ALL, LC_MESSAGES, LANG.
  for (const auto& [environment, identifier, languages] :
       Rows<std::array<const char*, 4>, const char*, const char*>{
           {{"", "", "", ""}, "en_US_POSIX", "en"},
           {{"de", "C.UTF-8", "", "fr_FR"}, "en_US_POSIX", "en"},
           {{"", "", "", "de_CH.UTF-8"}, "de_CH", "de-CH"},
           {{"", "", "fr_CH", "de_CH.UTF-8"}, "fr_CH", "fr-CH"},
           {{"gsw_CH:de::../x:fr", "it_CH@euro", "fr_CH", ""}, "it_CH", "gsw-CH, de, fr, it-CH"},
           {{"", "sr_RS.UTF-8@latin", "", ""}, "sr_Latn_RS", "sr-Latn-RS"},
           {{"", "d e", "", ""}, "en_US_POSIX", "en"},
       }) {
    const auto check = [values = environment] {
      const std::array names = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
      for (std::size_t k = 0; k < names.size(); ++k) ::setenv(names[k], values[k], 1);
      NSLocale::setCurrentLocale(nullptr);
      NSLocale::setPreferredLanguages(nullptr);
      std::cerr << NSLocale::currentLocale()->localeIdentifier() << ": "
                << NSLocale::preferredLanguages()->componentsJoinedByString(u", "_ns);
      leave(0);
    };
    std::string expected = identifier;
    EXPECT_EXIT(check(), testing::ExitedWithCode(0),
                expected.append(": ").append(languages).append("$"));
  }
}

}  // namespace
