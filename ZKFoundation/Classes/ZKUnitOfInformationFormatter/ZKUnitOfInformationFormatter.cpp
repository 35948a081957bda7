#include "ZKFoundation/Classes/ZKUnitOfInformationFormatter/ZKUnitOfInformationFormatter.h"

#include <array>

#include <Foundation/NSBundle.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

namespace {

[[gnu::constructor]] void registerClass() {
  NSKeyedUnarchiver::registerClass<ZKUnitOfInformationFormatter>();
}

struct Prefix {
  double binaryFactor;
  double decimalFactor;
  const char16_t* bytesIEC;
  const char16_t* bytesShort;
  const char16_t* bitsIEC;
  const char16_t* bitsShort;
};

constexpr std::array<Prefix, 6> prefixes = {{
    {0x1p10, 1e3, u"KiB", u"KB", u"Kibit", u"kbit"},
    {0x1p20, 1e6, u"MiB", u"MB", u"Mibit", u"Mbit"},
    {0x1p30, 1e9, u"GiB", u"GB", u"Gibit", u"Gbit"},
    {0x1p40, 1e12, u"TiB", u"TB", u"Tibit", u"Tbit"},
    {0x1p50, 1e15, u"PiB", u"PB", u"Pibit", u"Pbit"},
    {0x1p60, 1e18, u"EiB", u"EB", nullptr, nullptr},
}};

const Prefix& prefixAt(NSInteger index) {
  const auto position = static_cast<NSUInteger>(index);
  return prefixes[position < prefixes.size() ? position : 0];
}

NSInteger bitsPerUnit(NSInteger unit) {
  switch (unit) {
    case ZKUnitOfInformationNibble:
      return 4;
    case ZKUnitOfInformationByte:
      return 8;
    case ZKUnitOfInformationWord:
      return 16;
    case ZKUnitOfInformationDoubleWord:
      return 32;
    default:
      return 1;
  }
}

NSRef<NSString> localized(const NSRef<NSString>& key, const NSRef<NSString>& value) {
  static const NSNeverDestroyed<NSRef<NSString>> table(u"ZKUnitOfInformationFormatter"_ns);
  return NSBundle::mainBundle()->localizedStringForKey_value_table(key, value, *table);
}

NSRef<NSString> localizedUnit(const char16_t* name) {
  return name == nullptr ? nullptr
                         : localized(NSMake<NSString>(std::u16string_view(name)), nullptr);
}

NSRef<NSString> joined(const NSRef<NSString>& number, const NSRef<NSString>& unit) {
  static const NSNeverDestroyed<NSRef<NSString>> key(u"Unit of Information Format String"_ns);
  static const NSNeverDestroyed<NSRef<NSString>> pattern(u"%@ %@"_ns);
  return NSString::stringWithFormat(localized(*key, *pattern), number, unit);
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

double ZKUnitOfInformationFormatter::scaleFactorForPrefix(NSInteger prefix) const {
  const Prefix& row = prefixAt(prefix);
  return _calculatesInBinary ? row.binaryFactor : row.decimalFactor;
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

NSRef<NSString> ZKUnitOfInformationFormatter::unscaledUnit() const {
  return localizedUnit(_displaysInTermsOfBytes ? u"bytes" : u"bits");
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumberOfBits(
    const NSRef<NSNumber>& number) const {
  double value = number->doubleValue();
  if (_displaysInTermsOfBytes) value *= 0.125;
  NSRef<NSString> unit;
  if (value < scaleFactorForPrefix(ZKUnitOfInformationPrefixKilo)) {
    unit = unscaledUnit();
  } else {
    // By the bits, also where bytes are shown.
    const NSInteger prefix = prefixForInteger(number->integerValue());
    const Prefix& row = prefixAt(prefix);
    unit = _displaysInTermsOfBytes
               ? localizedUnit(_displaysBinaryNames ? row.bytesIEC : row.bytesShort)
               : localizedUnit(_displaysBinaryNames ? row.bitsIEC : row.bitsShort);
    value /= scaleFactorForPrefix(prefix);
  }
  return joined(
      _numberFormatter ? _numberFormatter->stringFromNumber(NSMake<NSNumber>(value)) : nullptr,
      unit);
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumber_ofUnit(const NSRef<NSNumber>& number,
                                                                      NSInteger unit) const {
  const auto bits =
      static_cast<NSUInteger>(bitsPerUnit(unit)) * static_cast<NSUInteger>(number->integerValue());
  return stringFromNumberOfBits(NSMake<NSNumber>(static_cast<long long>(bits)));
}

NSRef<NSString> ZKUnitOfInformationFormatter::stringFromNumber_ofUnit_withPrefix(
    const NSRef<NSNumber>& number, NSInteger unit, NSInteger prefix) const {
  const double value = static_cast<double>(number->integerValue()) * scaleFactorForPrefix(prefix);
  return stringFromNumber_ofUnit(NSMake<NSNumber>(value), unit);
}

NSRef<NSString> ZKUnitOfInformationFormatter::nativeStringFromNumber(
    const NSRef<NSNumber>& number) const {
  return joined(number->descriptionWithLocale(NSLocale::currentLocale()), unscaledUnit());
}
