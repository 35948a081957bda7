#include "ZKFoundation/Categories/NSString+ZKFoundationExtensions.h"

#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <limits>

#include <uuid/uuid.h>

#include <Foundation/NSException.h>
#include <Foundation/NSStringComparison.h>
#include <Foundation/Text/StringSearch.h>
#include <ZKFoundation/Categories/NSMutableString+ZKFoundationExtensions.h>

namespace {

// What a unit is to the parsers below; less than 16 is the value of a hexadecimal digit.
constexpr std::uint8_t spaceClass = 16;
constexpr std::uint8_t otherClass = 17;
constexpr std::uint8_t wideClass = 18;

// In the "C" locale, whatever the process's is.
constexpr auto asciiClasses = [] {
  std::array<std::uint8_t, 128> classes{};
  classes.fill(otherClass);
  for (const char16_t space : std::u16string_view(u" \t\n\v\f\r")) classes[space] = spaceClass;
  for (std::uint8_t k = 0; k < 10; ++k) classes['0' + k] = k;
  for (std::uint8_t k = 0; k < 6; ++k) {
    classes['A' + k] = classes['a' + k] = static_cast<std::uint8_t>(10 + k);
  }
  return classes;
}();

std::uint8_t classOf(char16_t unit) {
  return unit < asciiClasses.size() ? asciiClasses[unit] : wideClass;
}

void skipSpace(std::u16string_view& text, auto isSpace) {
  while (!text.empty() && isSpace(text[0])) text.remove_prefix(1);
}

void skipPrefix(std::u16string_view& text, auto isX) {
  if (text.size() >= 2 && text[0] == u'0' && isX(text[1])) text.remove_prefix(2);
}

constexpr std::uint64_t noDigits = std::uint64_t{1} << 32U;

// The value of eight hexadecimal digits at once, or `noDigits` when one of the units is none. Kept
// a function of its own: its many constants would crowd the registers of the loops that call it.
[[gnu::noinline]] std::uint64_t eightDigits(const char16_t* text) {
  static_assert(std::endian::native == std::endian::little, "the first unit is the lowest lane");
  using Units [[gnu::vector_size(16)]] = std::uint16_t;
  using Words [[gnu::vector_size(16)]] = std::uint64_t;
  Units units;
  std::memcpy(&units, text, sizeof(units));
  const Units digit = units - std::uint16_t{u'0'};
  const Units letter = (units | 0x20) - std::uint16_t{u'a'};
  const auto isDigit = reinterpret_cast<Units>(digit < 10);
  const auto isValid = reinterpret_cast<Words>(isDigit | reinterpret_cast<Units>(letter < 6));
  if ((isValid[0] & isValid[1]) != ~std::uint64_t{0}) return noDigits;

  const auto values = reinterpret_cast<Words>((digit & isDigit) | ((letter + 10) & ~isDigit));
  // Gathers four digits in the upper 16 bits: the first by 2^60, the next, in lane 1, by 2^40, …
  const auto gathered = [](std::uint64_t lanes) { return (lanes * 0x1000'0100'0010'0001) >> 48U; };
  return gathered(values[0]) << 16U | gathered(values[1]);
}

// The rules of `hexValue`, with the answer for units above U+007F to the question for white space.
std::uint32_t lenientHexValue(std::u16string_view text, auto isWideSpace) {
  const auto isSpace = [&](char16_t unit) {
    const std::uint8_t unitClass = classOf(unit);
    return unitClass == spaceClass || (unitClass == wideClass && isWideSpace(unit));
  };
  skipSpace(text, isSpace);
  skipPrefix(text, [](char16_t x) { return x == u'x'; });
  // Only the last eight digits count, so the higher bits may fall out.
  std::uint32_t value = 0;
  while (!text.empty()) {
    const std::uint64_t eight = text.size() < 8 ? noDigits : eightDigits(text.data());
    if (eight != noDigits) {
      value = static_cast<std::uint32_t>(eight);
      text.remove_prefix(8);
    } else {
      const std::uint8_t unitClass = classOf(text[0]);
      if (unitClass < 16) {
        value = (value << 4U) | unitClass;
      } else if (!isSpace(text[0])) {
        return 0;
      }
      text.remove_prefix(1);
    }
  }
  return value;
}

// Apart, so that the calls into the C library do not weigh on texts that need none.
[[gnu::noinline]] std::uint32_t wideHexValue(std::u16string_view text) {
  return lenientHexValue(
      text, [](char16_t unit) { return std::iswspace(static_cast<std::wint_t>(unit)) != 0; });
}

}  // namespace

namespace ZKFoundationExtensions {

bool isEmptyString(const NSRef<NSString>& string) noexcept { return NSViewOf(string).empty(); }

const NSRef<NSString>& horizontalEllipsisString() { return NSConstantString<u"…">(); }
const NSRef<NSString>& leftPointingDoubleAngleQuotationMarkString() {
  return NSConstantString<u"«">();
}
const NSRef<NSString>& rightPointingDoubleAngleQuotationMarkString() {
  return NSConstantString<u"»">();
}
const NSRef<NSString>& emdashString() { return NSConstantString<u"—">(); }
const NSRef<NSString>& endashString() { return NSConstantString<u"–">(); }
const NSRef<NSString>& commandKeyIndicatorString() { return NSConstantString<u"⌘">(); }
const NSRef<NSString>& alternateKeyIndicatorString() { return NSConstantString<u"⌥">(); }
const NSRef<NSString>& shiftKeyIndicatorString() { return NSConstantString<u"⇧">(); }

NSRef<NSString> UUIDString() {
  uuid_t uuid;
  uuid_generate_random(uuid);
  std::array<char, UUID_STR_LEN> text;
  uuid_unparse_upper(uuid, text.data());
  return NSMake<NSString>(std::string_view(text.data(), UUID_STR_LEN - 1));
}

NSRef<NSString> stringForId(const NSRef<NSObject>& object) {
  std::array<char, 32> text;
  const int length =
      std::snprintf(text.data(), text.size(), "%p", static_cast<const void*>(object.get()));
  return NSMake<NSString>(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

NSRef<NSString> stringWithStrings(std::initializer_list<NSRef<NSString>> strings) {
  auto result = NSMake<NSMutableString>();
  appendStrings(result, strings);
  return result->copy();
}

std::uint32_t hexValue(const NSRef<NSString>& string) {
  NSCheckArgument("hexValue", "string", string);
  const std::u16string_view text = string->view().substr(0, 40);
  bool isWide = false;
  const std::uint32_t value = lenientHexValue(text, [&](char16_t) { return !(isWide = true); });
  return isWide ? wideHexValue(text) : value;
}

std::uint64_t maxHexValue(const NSRef<NSString>& string) {
  NSCheckArgument("maxHexValue", "string", string);
  std::u16string_view text = string->view();
  skipSpace(text, [](char16_t unit) { return classOf(unit) == spaceClass; });
  const bool isNegative = text.starts_with(u'-');
  if (isNegative || text.starts_with(u'+')) text.remove_prefix(1);
  // "0x" without a digit after it is the number 0, which is what dropping it leaves.
  skipPrefix(text, [](char16_t x) { return x == u'x' || x == u'X'; });

  constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t value = 0;
  while (text.size() >= 8 && value <= largest >> 32U) {
    const std::uint64_t eight = eightDigits(text.data());
    if (eight == noDigits) break;
    value = (value << 32U) | eight;
    text.remove_prefix(8);
  }
  for (const char16_t unit : text) {
    const std::uint8_t digit = classOf(unit);
    if (digit >= 16) break;
    if (value > largest >> 4U) return largest;
    value = (value << 4U) | digit;
  }
  return isNegative ? 0 - value : value;
}

NSRef<NSString> stringByAppendingEllipsis(const NSRef<NSString>& string) {
  NSCheckArgument("stringByAppendingEllipsis", "string", string);
  return string->stringByAppendingString(horizontalEllipsisString());
}

NSRef<NSString> stringByRemovingPrefix(const NSRef<NSString>& string,
                                       const NSRef<NSString>& prefix) {
  NSCheckArgument("stringByRemovingPrefix:", "string", string);
  if (!string->hasPrefix(prefix) || isEmptyString(prefix)) return string;
  return string->substringFromIndex(prefix->length());
}

NSRef<NSString> stringByRemovingSuffix(const NSRef<NSString>& string,
                                       const NSRef<NSString>& suffix) {
  NSCheckArgument("stringByRemovingSuffix:", "string", string);
  if (!string->hasSuffix(suffix) || isEmptyString(suffix)) return string;
  return string->substringToIndex(string->length() - suffix->length());
}

bool hasCaseInsensitivePrefix(const NSRef<NSString>& string, const NSRef<NSString>& prefix) {
  NSCheckArgument("hasCaseInsensitivePrefix:", "string", string);
  const std::u16string_view text = string->view();
  if (!prefix || prefix->length() > text.size()) return false;
  return NSCompareUnits(text.substr(0, prefix->length()), prefix->view(),
                        NSCaseInsensitiveSearch | NSLiteralSearch) == NSOrderedSame;
}

NSRef<NSString> stringByRemovingString(const NSRef<NSString>& string,
                                       const NSRef<NSString>& other) {
  NSCheckArgument("stringByRemovingString:", "string", string);
  const std::u16string_view text = string->view();
  // A line is put together beside the string that it becomes.
  std::array<char16_t, 512> line;
  NSUnitBuffer result(line);
  NSUInteger start = 0;
  NSForEachOccurrence(text, NSViewOf(other), [&](NSRange found) {
    // No memory is asked for before there is something to remove.
    if (start == 0) result.reserve(text.size() - found.length);
    result.append(text.substr(start, found.location - start));
    start = NSMaxRange(found);
  });
  if (start == 0) return string;
  result.append(text.substr(start));
  result.shrink();
  return NSMake<NSString>(std::move(result));
}

}  // namespace ZKFoundationExtensions
