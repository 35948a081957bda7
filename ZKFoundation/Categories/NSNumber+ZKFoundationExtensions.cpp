#include "ZKFoundation/Categories/NSNumber+ZKFoundationExtensions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include <Foundation/NSException.h>

namespace {

NSRef<NSString> decimal(std::int64_t value) {
  std::array<char, 20> digits;  // "-9223372036854775808"
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::array<char16_t, digits.size()> text;
  const char16_t* const textEnd = std::copy(std::as_const(digits).data(), end, text.data());
  return NSMake<NSString>(std::u16string_view(text.data(), textEnd));
}

// The longest letters, of 2^63 - 1, are 14.
constexpr std::size_t mostLetters = 14;

NSRef<NSString> letters(std::uint64_t value, char16_t base) {
  if (value >> 63U != 0) return nullptr;
  std::array<char16_t, mostLetters> text;
  auto* const end = text.end();
  auto* start = end;
  // Bijective: the digits are 1 to 26.
  while (value != 0) {
    --value;
    *--start = static_cast<char16_t>(base + value % 26);
    value /= 26;
  }
  return NSMake<NSString>(std::u16string_view(start, end));
}

// How a decimal digit is put together, 'o' for one, 'f' for five and 't' for ten units of its
// place.
constexpr std::array<std::string_view, 10> digitPatterns = {
    "", "o", "oo", "ooo", "of", "f", "fo", "foo", "fooo", "ot",
};

// The letters for one, five and ten units of a place, from the thousands to the units. Thousands
// have no five, and that of the tens is the hundreds': both are rules of this style.
struct Place {
  std::uint64_t divisor;
  std::u16string_view one;
  std::u16string_view five;
  std::u16string_view ten;
};
constexpr std::array<Place, 4> places{{
    {1000, u"M", u"", u""},
    {100, u"C", u"D", u"M"},
    {10, u"X", u"D", u"C"},
    {1, u"I", u"V", u"X"},
}};

constexpr std::u16string_view partOf(const Place& place, char unit) {
  return unit == 'o' ? place.one : unit == 'f' ? place.five : place.ten;
}

// All digits of all places, so that writing one is a copy of four letters.
struct Digit {
  std::array<char16_t, 4> letters;
  std::size_t size;
};
constexpr auto digitsOfPlaces = [] {
  std::array<std::array<Digit, 10>, places.size()> table{};
  for (std::size_t k = 0; k < places.size(); ++k) {
    for (std::size_t digit = 0; digit < 10; ++digit) {
      auto& [letters, size] = table[k][digit];
      for (const char unit : digitPatterns[digit]) {
        for (const char16_t letter : partOf(places[k], unit)) letters[size++] = letter;
      }
    }
  }
  return table;
}();

// `caseBit` is what lower-case letters have more.
NSRef<NSString> romanNumeral(std::uint64_t value, char16_t caseBit) {
  if (value >= 5000) return u"NUL"_ns;
  std::array<char16_t, 16 + 4> text;  // The longest is "MMMDCCCDXXXVIII".
  auto* end = text.begin();
  for (std::size_t k = 0; k < places.size(); ++k) {
    const Digit& digit = digitsOfPlaces[k][value / places[k].divisor % 10];
    std::ranges::transform(digit.letters, end, [=](char16_t letter) {
      return static_cast<char16_t>(letter | caseBit);
    });
    end += digit.size;
  }
  return NSMake<NSString>(std::u16string_view(text.begin(), end));
}

}  // namespace

NSRef<NSString> ZKBinToStr(std::uint64_t value, NSOptions<ZKNumberStyle> type) {
  if (value == 0) return u"NUL"_ns;
  switch (type) {
    case ZKNumberDecimal:
      return decimal(static_cast<std::int64_t>(value));
    case ZKNumberUpperCaseLetters:
      return letters(value, u'A');
    case ZKNumberLowerCaseLetters:
      return letters(value, u'a');
    case ZKNumberUpperCaseRoman:
      return romanNumeral(value, 0);
    case ZKNumberLowerCaseRoman:
      return romanNumeral(value, u'a' - u'A');
    default:
      return nullptr;
  }
}

void roman_digit(const NSRef<NSString>& one, const NSRef<NSString>& five,
                 const NSRef<NSString>& ten, int digit, const NSRef<NSMutableString>& output) {
  if (digit < 0 || digit > 9) return;
  const Place place = {1, NSViewOf(one), NSViewOf(five), NSViewOf(ten)};
  // Collected first: the texts may be the output itself.
  std::array<char16_t, 16> room;
  NSUnitBuffer text{std::span(room)};
  for (const char unit : digitPatterns[static_cast<std::size_t>(digit)]) {
    text.append(partOf(place, unit));
  }
  output->appendUnits(text.view());
}

namespace ZKFoundationExtensions {

NSRef<NSString> numberToStringWithType(const NSRef<NSNumber>& number,
                                       NSOptions<ZKNumberStyle> type) {
  NSCheckArgument("numberToStringWithType:", "number", number);
  return ZKBinToStr(number->unsignedLongValue(), type);
}

}  // namespace ZKFoundationExtensions
