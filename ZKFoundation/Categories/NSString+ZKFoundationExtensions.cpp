#include "ZKFoundation/Categories/NSString+ZKFoundationExtensions.h"

#include <uuid/uuid.h>

#include <array>
#include <cstdio>
#include <cwctype>
#include <limits>

#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSStringComparison.h"
#include "Foundation/NSUnitSearch.h"
#include "ZKFoundation/Categories/NSMutableString+ZKFoundationExtensions.h"

namespace {

constexpr std::uint8_t spaceClass = 16;
constexpr std::uint8_t otherClass = 17;

// The value of a hexadecimal digit, or the class of any other unit, in the "C" locale's ASCII.
constexpr auto unitClasses = [] {
  std::array<std::uint8_t, 128> classes{};
  classes.fill(otherClass);
  for (const char c : {' ', '\t', '\n', '\v', '\f', '\r'}) {
    classes[static_cast<std::size_t>(c)] = spaceClass;
  }
  for (std::uint8_t k = 0; k < 10; ++k) classes['0' + k] = k;
  for (std::uint8_t k = 0; k < 6; ++k) {
    classes['A' + k] = classes['a' + k] = static_cast<std::uint8_t>(10 + k);
  }
  return classes;
}();

std::uint8_t asciiClass(char16_t unit) {
  return unit < unitClasses.size() ? unitClasses[unit] : otherClass;
}

std::uint8_t lenientClass(char16_t unit) {
  if (unit < unitClasses.size()) return unitClasses[unit];
  return std::iswspace(static_cast<std::wint_t>(unit)) != 0 ? spaceClass : otherClass;
}

std::size_t skipSpace(std::u16string_view text, std::uint8_t (*classOf)(char16_t)) {
  std::size_t k = 0;
  while (k < text.size() && classOf(text[k]) == spaceClass) ++k;
  return k;
}

// One slot for each constant, made by whichever thread comes first; the others wait for it.
template <unichar unit>
const NSRef<NSString>& constantString() {
  static const NSNeverDestroyed<NSRef<NSString>> string(
      ZKFoundationExtensions::stringWithCharacter(unit));
  return *string;
}

}  // namespace

namespace ZKFoundationExtensions {

bool isEmptyString(const NSRef<NSString>& string) noexcept { return NSViewOf(string).empty(); }

const NSRef<NSString>& horizontalEllipsisString() { return constantString<0x2026>(); }
const NSRef<NSString>& leftPointingDoubleAngleQuotationMarkString() {
  return constantString<0x00AB>();
}
const NSRef<NSString>& rightPointingDoubleAngleQuotationMarkString() {
  return constantString<0x00BB>();
}
const NSRef<NSString>& emdashString() { return constantString<0x2014>(); }
const NSRef<NSString>& endashString() { return constantString<0x2013>(); }
const NSRef<NSString>& commandKeyIndicatorString() { return constantString<0x2318>(); }
const NSRef<NSString>& alternateKeyIndicatorString() { return constantString<0x2325>(); }
const NSRef<NSString>& shiftKeyIndicatorString() { return constantString<0x21E7>(); }

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
  std::u16string_view text = string->view().substr(0, 40);
  text.remove_prefix(skipSpace(text, lenientClass));
  if (text.starts_with(u"0x")) text.remove_prefix(2);
  // Only the last eight digits count, so the higher bits may fall out.
  std::uint32_t value = 0;
  for (const char16_t unit : text) {
    const std::uint8_t unitClass = lenientClass(unit);
    if (unitClass < 16) {
      value = (value << 4U) | unitClass;
    } else if (unitClass != spaceClass) {
      return 0;
    }
  }
  return value;
}

std::uint64_t maxHexValue(const NSRef<NSString>& string) {
  std::u16string_view text = string->view();
  text.remove_prefix(skipSpace(text, asciiClass));
  const bool isNegative = text.starts_with(u'-');
  if (isNegative || text.starts_with(u'+')) text.remove_prefix(1);
  // "0x" without a digit behind it is the number 0, which is what dropping it leaves.
  if (text.starts_with(u"0x") || text.starts_with(u"0X")) text.remove_prefix(2);

  constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t value = 0;
  for (const char16_t unit : text) {
    const std::uint8_t digit = asciiClass(unit);
    if (digit >= 16) break;
    if (value > largest >> 4U) return largest;
    value = (value << 4U) | digit;
  }
  return isNegative ? 0 - value : value;
}

NSRef<NSString> stringByAppendingEllipsis(const NSRef<NSString>& string) {
  return string->stringByAppendingString(horizontalEllipsisString());
}

NSRef<NSString> stringByRemovingPrefix(const NSRef<NSString>& string,
                                       const NSRef<NSString>& prefix) {
  if (isEmptyString(prefix) || !string->hasPrefix(prefix)) return string;
  return string->substringFromIndex(prefix->length());
}

NSRef<NSString> stringByRemovingSuffix(const NSRef<NSString>& string,
                                       const NSRef<NSString>& suffix) {
  if (isEmptyString(suffix) || !string->hasSuffix(suffix)) return string;
  return string->substringToIndex(string->length() - suffix->length());
}

bool hasCaseInsensitivePrefix(const NSRef<NSString>& string, const NSRef<NSString>& prefix) {
  if (!prefix || prefix->length() > string->length()) return false;
  return NSCompareUnits(string->view().substr(0, prefix->length()), prefix->view(),
                        NSCaseInsensitiveSearch) == NSOrderedSame;
}

NSRef<NSString> stringByRemovingString(const NSRef<NSString>& string,
                                       const NSRef<NSString>& other) {
  const std::u16string_view text = string->view();
  const std::u16string_view needle = NSViewOf(other);
  std::size_t place = NSFindUnits(text, needle);
  if (place == std::u16string_view::npos) return string;

  NSUnitBuffer result;
  result.reserve(text.size() - needle.size());
  std::size_t start = 0;
  while (place != std::u16string_view::npos) {
    result.append(text.substr(start, place - start));
    start = place + needle.size();
    place = NSFindUnits(text, needle, start);
  }
  result.append(text.substr(start));
  result.shrink();
  return NSMake<NSString>(std::move(result));
}

}  // namespace ZKFoundationExtensions
