#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include <Foundation/NSFormatter.h>
#include <Foundation/NSNumberFormatter.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

class NSNumber;

/// Units that a number may count; any other value counts bits too.
enum ZKUnitOfInformation : NSInteger {
  ZKUnitOfInformationBit = 0,
  ZKUnitOfInformationNibble = 1,      ///< 4 bits
  ZKUnitOfInformationByte = 2,        ///< 8 bits
  ZKUnitOfInformationWord = 3,        ///< 16 bits
  ZKUnitOfInformationDoubleWord = 4,  ///< 32 bits
};

/// Steps of scale, from kilo on; there is none for "unscaled", and any other value is kilo.
enum ZKUnitOfInformationPrefix : NSInteger {
  ZKUnitOfInformationPrefixKilo = 0,
  ZKUnitOfInformationPrefixMega = 1,
  ZKUnitOfInformationPrefixGiga = 2,
  ZKUnitOfInformationPrefixTera = 3,
  ZKUnitOfInformationPrefixPeta = 4,
  ZKUnitOfInformationPrefixExa = 5,
};

/// Writes a number of bits as people read it: "1.5 KB", "12 bytes", "3.2 Gibit".
///
/// The prefix follows the number of bits, also where bytes are shown: 131,072 bytes are "128 KB"
/// and 131,073 bytes, more than 2^20 bits, "0.13 MB". There is no bit unit above peta: its text
/// ends in "(null)". Nor is there a singular ("1 bytes").
///
/// The names of the units and the pattern "%@ %@", under the key "Unit of Information Format
/// String", are looked up in the table "ZKUnitOfInformationFormatter" of the main bundle. The keys
/// of the names are the English ones:
///
///     bytes  KB   MB   GB   TB   PB   EB       bits  kbit  Mbit  Gbit  Tbit  Pbit
///            KiB  MiB  GiB  TiB  PiB  EiB            Kibit Mibit Gibit Tibit Pibit
///
/// In the pattern "%1$@" is the number and "%2$@" the name; it may exchange them ("%2$@ %1$@").
class ZK_EXPORT ZKUnitOfInformationFormatter : public NSFormatter {
 public:
  /// Shows bytes, in powers of 1,024 under the short names, with numbers in the decimal style of
  /// the locale that is current now, rounded to a multiple of 0.01 (as a `float`).
  ZKUnitOfInformationFormatter();
  /// Reads what `encodeWithCoder` has written. What is missing is false, and nil for the number
  /// formatter; without that numbers are written as "(null)".
  explicit ZKUnitOfInformationFormatter(const NSRef<NSCoder>& coder);

  /// Gives the formatter of the number, whose settings may be changed.
  [[nodiscard]] NSRef<NSNumberFormatter> numberFormatter() const noexcept {
    return _numberFormatter;
  }

  /// Whether bytes are shown, not bits.
  [[nodiscard]] bool displaysInTermsOfBytes() const noexcept { return _displaysInTermsOfBytes; }
  void setDisplaysInTermsOfBytes(bool displays) noexcept { _displaysInTermsOfBytes = displays; }
  /// Whether prefixes are powers of 1,024, not of 1,000.
  [[nodiscard]] bool usesIECBinaryPrefixesForCalculation() const noexcept {
    return _calculatesInBinary;
  }
  void setUsesIECBinaryPrefixesForCalculation(bool uses) noexcept { _calculatesInBinary = uses; }
  /// Whether units are called "KiB" or "Kibit", not "KB" or "kbit".
  [[nodiscard]] bool usesIECBinaryPrefixesForDisplay() const noexcept {
    return _displaysBinaryNames;
  }
  void setUsesIECBinaryPrefixesForDisplay(bool uses) noexcept { _displaysBinaryNames = uses; }

  /// Gives the factor of the prefix: 1,024 or 1,000 to the power of one more than its number. A
  /// subclass may have others; all scaling asks here.
  [[nodiscard]] virtual double scaleFactorForPrefix(NSInteger prefix) const;
  /// Finds the greatest prefix above kilo whose factor the number exceeds, else kilo. A negative
  /// number counts as its 64 bits without a sign.
  [[nodiscard]] NSInteger prefixForInteger(NSInteger number) const;

  /// Gives `stringFromNumberOfBits` of a number, nil for anything else.
  [[nodiscard]] NSRef<NSString> stringForObjectValue(const NSRef<NSObject>& object) const override;
  /// Writes so many bits. What is below one kilo, and so everything negative, is not scaled.
  /// A nil number raises `NSInvalidArgumentException`, here and below.
  [[nodiscard]] NSRef<NSString> stringFromNumberOfBits(const NSRef<NSNumber>& number) const;
  /// Writes so many units, fractions cut off. The number of bits wraps around in 64 bits.
  [[nodiscard]] NSRef<NSString> stringFromNumber_ofUnit(const NSRef<NSNumber>& number,
                                                        NSInteger unit) const;
  /// Writes so many times the prefix's factor of units: 2 of `ZKUnitOfInformationByte` with
  /// `ZKUnitOfInformationPrefixMega` are "2 MB". Fractions are cut off before and after; a product
  /// that does not fit 64 bits stops at their limit.
  [[nodiscard]] NSRef<NSString> stringFromNumber_ofUnit_withPrefix(const NSRef<NSNumber>& number,
                                                                   NSInteger unit,
                                                                   NSInteger prefix) const;
  /// Writes the number as it is, in the current locale's way, neither scaled nor in groups: "1536
  /// bytes". It already counts what is shown, bytes or bits.
  [[nodiscard]] NSRef<NSString> nativeStringFromNumber(const NSRef<NSNumber>& number) const;

  /// Reads a size of the pattern and a unit that this formatter writes, under its present switches:
  /// "1.5 KB", and "12,3 Mo" in French where the table calls megabytes so. Gives the number of
  /// bits, rounded to a whole one: what is not scaled comes back as it was, all else to the
  /// precision that was written. Nil for any other text, nil too, and for more bits than a double
  /// can count.
  ///
  /// Units are read by their name in the table or by its key, letter by letter, numbers as
  /// `NSNumberFormatter::takeNumber` does; blanks may be more, fewer or of another kind. Where it
  /// stopped is stored at `index` unless that is null: the length, or the first unit that does not
  /// belong there.
  [[nodiscard]] NSRef<NSNumber> numberOfBitsFromString_stoppedAt(const NSRef<NSString>& string,
                                                                 NSUInteger* index) const;

  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
  /// Publishes the number formatter and the three switches besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  [[nodiscard]] NSRef<NSString> localized(std::size_t text) const;
  [[nodiscard]] NSRef<NSString> joined(std::u16string_view number, std::size_t unit) const;
  [[nodiscard]] std::size_t unitWithPrefix(NSInteger prefix) const noexcept;
  [[nodiscard]] std::optional<double> takeUnit(std::u16string_view& text) const;
  [[nodiscard]] std::optional<double> takeBits(std::u16string_view& text) const;

  NSRef<NSNumberFormatter> _numberFormatter;
  // What the main bundle has for the names of units and the pattern, and that with its places
  // marked. Looked up when they are needed, and again when the user's languages have changed.
  mutable std::array<NSRef<NSString>, 28> _texts;
  mutable std::uint64_t _languagesGeneration = 0;
  bool _displaysInTermsOfBytes = false;
  bool _calculatesInBinary = false;
  bool _displaysBinaryNames = false;
};
