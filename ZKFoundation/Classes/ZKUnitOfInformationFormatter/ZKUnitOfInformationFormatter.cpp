#include "ZKFoundation/Classes/ZKUnitOfInformationFormatter/ZKUnitOfInformationFormatter.h"

#include <array>
#include <cmath>
#include <tuple>

#include <Foundation/NSBundle.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

namespace {

[[gnu::constructor]] void registerClass() {
  NSKeyedUnarchiver::registerClass<ZKUnitOfInformationFormatter>();
}

constexpr std::size_t prefixCount = 6;
constexpr std::array<double, prefixCount> binaryFactors = {0x1p10, 0x1p20, 0x1p30,
                                                           0x1p40, 0x1p50, 0x1p60};
constexpr std::array<double, prefixCount> decimalFactors = {1e3, 1e6, 1e9, 1e12, 1e15, 1e18};

// Where the texts are: for each prefix the names of bytes, IEC and short, and of bits; then these.
constexpr std::size_t namesPerPrefix = 4;
enum Text : std::size_t {
  bytesText = prefixCount * namesPerPrefix,
  bitsText,
  patternText,
  placesText
};

// The keys of the names; empty where there is no such unit.
constexpr std::array<std::u16string_view, patternText> nameKeys = {
    u"KiB",   u"KB",    u"Kibit", u"kbit", u"MiB", u"MB",    u"Mibit", u"Mbit", u"GiB",
    u"GB",    u"Gibit", u"Gbit",  u"TiB",  u"TB",  u"Tibit", u"Tbit",  u"PiB",  u"PB",
    u"Pibit", u"Pbit",  u"EiB",   u"EB",   u"",    u"",      u"bytes", u"bits"};
constexpr std::u16string_view patternKey = u"Unit of Information Format String";

// Mark where the pattern puts the number and the unit; no text has them.
constexpr char16_t numberPlace = 0xFDD0;
constexpr char16_t unitPlace = 0xFDD1;

constexpr std::u16string_view missingName = u"(null)";

// White space, and marks of the writing direction.
void skipBlanks(std::u16string_view& text) {
  constexpr std::u16string_view directions = u"\u200E\u200F\u061C";
  const auto& blanks = NSCharacterSet::whitespaceCharacterSet();
  while (!text.empty() && (blanks->characterIsMember(text[0]) ||
                           directions.find(text[0]) != std::u16string_view::npos)) {
    text.remove_prefix(1);
  }
}

std::size_t prefixAt(NSInteger index) {
  const auto position = static_cast<NSUInteger>(index);
  return position < prefixCount ? position : 0;
}

NSUInteger bitsPerUnit(NSInteger unit) {
  constexpr std::array<NSUInteger, 5> bits = {1, 4, 8, 16, 32};
  const auto position = static_cast<NSUInteger>(unit);
  return position < bits.size() ? bits[position] : 1;
}

}  // namespace

ZKUnitOfInformationFormatter::ZKUnitOfInformationFormatter()
    : _numberFormatter(NSMake<NSNumberFormatter>()) {
  _numberFormatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  _numberFormatter->setRoundingIncrement(NSMake<NSNumber>(0.01F));
  setDisplaysInTermsOfBytes(true);
  setUsesIECBinaryPrefixesForCalculation(true);
  setUsesIECBinaryPrefixesForDisplay(false);
}

ZKUnitOfInformationFormatter::ZKUnitOfInformationFormatter(const NSRef<NSCoder>& coder)
    : NSFormatter(coder) {
  setDisplaysInTermsOfBytes(coder->decodeBoolForKey(u"displaysInTermsOfBytes"_ns));
  setUsesIECBinaryPrefixesForCalculation(
      coder->decodeBoolForKey(u"usesIECBinaryPrefixesForCalculation"_ns));
  setUsesIECBinaryPrefixesForDisplay(
      coder->decodeBoolForKey(u"usesIECBinaryPrefixesForDisplay"_ns));
  _numberFormatter = coder->decodeObjectOfClass<NSNumberFormatter>(u"numberFormatter"_ns);
}

void ZKUnitOfInformationFormatter::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  NSFormatter::encodeWithCoder(coder);
  coder->encodeBool_forKey(displaysInTermsOfBytes(), u"displaysInTermsOfBytes"_ns);
  coder->encodeBool_forKey(usesIECBinaryPrefixesForCalculation(),
                           u"usesIECBinaryPrefixesForCalculation"_ns);
  coder->encodeBool_forKey(usesIECBinaryPrefixesForDisplay(),
                           u"usesIECBinaryPrefixesForDisplay"_ns);
  coder->encodeObject_forKey(_numberFormatter, u"numberFormatter"_ns);
}

const NSPropertyTable& ZKUnitOfInformationFormatter::propertyTable() const {
  using Self = ZKUnitOfInformationFormatter;
  static const NSPropertyTable table(
      {{u"numberFormatter", &Self::numberFormatter},
       {u"displaysInTermsOfBytes", &Self::displaysInTermsOfBytes},
       {u"usesIECBinaryPrefixesForCalculation", &Self::usesIECBinaryPrefixesForCalculation},
       {u"usesIECBinaryPrefixesForDisplay", &Self::usesIECBinaryPrefixesForDisplay}},
      NSFormatter::propertyTable());
  return table;
}

double ZKUnitOfInformationFormatter::scaleFactorForPrefix(NSInteger prefix) const {
  return (_calculatesInBinary ? binaryFactors : decimalFactors)[prefixAt(prefix)];
}

NSInteger ZKUnitOfInformationFormatter::prefixForInteger(NSInteger number) const {
  const auto magnitude = static_cast<double>(static_cast<NSUInteger>(number));
  NSInteger prefix = ZKUnitOfInformationPrefixExa;
  while (prefix > ZKUnitOfInformationPrefixKilo && !(magnitude > scaleFactorForPrefix(prefix))) {
    --prefix;
  }
  return prefix;
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringForObjectValue(
    const NSRef<NSObject>& object) const {
  const auto number = object.as<NSNumber>();
  return number ? stringFromNumberOfBits(number) : nullptr;
}

// By value: the user's languages may change on another thread before the next is asked for.
NSRef<NSString> ZKUnitOfInformationFormatter::localized(std::size_t text) const {
  static_assert(std::tuple_size_v<decltype(_texts)> == placesText + 1);
  const std::uint64_t generation = NSLocale::languagesGeneration();
  if (generation != _languagesGeneration) {
    _texts = {};
    _languagesGeneration = generation;
  }
  NSRef<NSString>& result = _texts[text];
  if (text == placesText) {
    if (!result) {
      result =
          NSString::stringWithFormat(localized(patternText), std::u16string_view(&numberPlace, 1),
                                     std::u16string_view(&unitPlace, 1));
    }
    return result;
  }
  const auto key = text == patternText ? patternKey : nameKeys[text];
  if (!result && !key.empty()) {
    static const NSNeverDestroyed<NSRef<NSString>> table(u"ZKUnitOfInformationFormatter"_ns);
    result = NSBundle::mainBundle()->localizedStringForKey_value_table(
        NSMake<NSString>(key), text == patternText ? u"%@ %@"_ns : nullptr, *table);
  }
  return result;
}

NSRef<NSString> ZKUnitOfInformationFormatter::joined(std::u16string_view number,
                                                     std::size_t unit) const {
  const auto name = localized(unit);
  return NSString::stringWithFormat(localized(patternText), number,
                                    name ? name.get()->view() : missingName);
}

std::size_t ZKUnitOfInformationFormatter::unitWithPrefix(NSInteger prefix) const noexcept {
  return prefixAt(prefix) * namesPerPrefix + (_displaysInTermsOfBytes ? 0U : 2U) +
         (_displaysBinaryNames ? 0U : 1U);
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumberOfBits(
    const NSRef<NSNumber>& number) const {
  double value = number->doubleValue();
  if (_displaysInTermsOfBytes) value *= 0.125;
  std::size_t unit = _displaysInTermsOfBytes ? bytesText : bitsText;
  if (!(value < scaleFactorForPrefix(ZKUnitOfInformationPrefixKilo))) {
    // By the bits, also where bytes are shown.
    const NSInteger prefix = prefixForInteger(number->integerValue());
    unit = unitWithPrefix(prefix);
    value /= scaleFactorForPrefix(prefix);
  }
  std::array<char16_t, 64> room;
  NSUnitBuffer text(room);
  if (_numberFormatter) {
    _numberFormatter->appendNumber(value, text);
  } else {
    text.append(missingName);
  }
  return joined(text.view(), unit);
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumber_ofUnit(const NSRef<NSNumber>& number,
                                                                      NSInteger unit) const {
  const NSUInteger bits = bitsPerUnit(unit) * static_cast<NSUInteger>(number->integerValue());
  return stringFromNumberOfBits(NSMake<NSNumber>(static_cast<long long>(bits)));
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumber_ofUnit_withPrefix(
    const NSRef<NSNumber>& number, NSInteger unit, NSInteger prefix) const {
  const double value = static_cast<double>(number->integerValue()) * scaleFactorForPrefix(prefix);
  return stringFromNumber_ofUnit(NSMake<NSNumber>(value), unit);
}

NSRef<NSString> ZKUnitOfInformationFormatter::nativeStringFromNumber(
    const NSRef<NSNumber>& number) const {
  return joined(number->descriptionWithLocale(NSLocale::currentLocale())->view(),
                _displaysInTermsOfBytes ? bytesText : bitsText);
}

// Takes the longest name of a unit, and gives how many bits that has.
std::optional<double> ZKUnitOfInformationFormatter::takeUnit(std::u16string_view& text) const {
  std::size_t longest = 0;
  double factor = 0;
  const auto consider = [&](std::u16string_view name, double nameFactor) {
    if (name.size() <= longest || !text.starts_with(name)) return;
    longest = name.size();
    factor = nameFactor;
  };
  const auto considerUnit = [&](std::size_t unit, double unitFactor) {
    const auto name = localized(unit);
    consider(name ? name.get()->view() : missingName, unitFactor);
    consider(nameKeys[unit], unitFactor);
  };
  considerUnit(_displaysInTermsOfBytes ? bytesText : bitsText, 1);
  for (NSInteger prefix = 0; prefix < static_cast<NSInteger>(prefixCount); ++prefix) {
    considerUnit(unitWithPrefix(prefix), scaleFactorForPrefix(prefix));
  }
  if (longest == 0) return std::nullopt;
  text.remove_prefix(longest);
  return _displaysInTermsOfBytes ? factor * 8 : factor;
}

std::optional<double> ZKUnitOfInformationFormatter::takeBits(std::u16string_view& text) const {
  std::optional<double> number;
  std::optional<double> bitsPerUnit;
  const auto places = localized(placesText);
  for (std::u16string_view rest = places->view();; rest.remove_prefix(1)) {
    skipBlanks(rest);
    skipBlanks(text);
    if (rest.empty()) break;
    if (rest[0] == numberPlace) {
      number = _numberFormatter ? _numberFormatter->takeNumber(text) : std::nullopt;
      if (!number) return std::nullopt;
    } else if (rest[0] == unitPlace) {
      bitsPerUnit = takeUnit(text);
      if (!bitsPerUnit) return std::nullopt;
    } else if (!text.empty() && text[0] == rest[0]) {
      text.remove_prefix(1);
    } else {
      return std::nullopt;
    }
  }
  if (!number || !bitsPerUnit || !text.empty()) return std::nullopt;
  const double bits = std::round(*number * *bitsPerUnit);
  return std::isfinite(bits) ? std::optional(bits) : std::nullopt;
}

NSRef<NSNumber> ZKUnitOfInformationFormatter::numberOfBitsFromString_stoppedAt(
    const NSRef<NSString>& string, NSUInteger* index) const {
  const std::u16string_view text = NSViewOf(string);
  std::u16string_view rest = text;
  const auto bits = takeBits(rest);
  if (index != nullptr) *index = text.size() - rest.size();
  if (!bits) return nullptr;
  const bool isInteger = std::abs(*bits) < 0x1p63;
  return isInteger ? NSMake<NSNumber>(static_cast<long long>(*bits)) : NSMake<NSNumber>(*bits);
}
