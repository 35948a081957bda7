#pragma once

#include <cstdint>

#include <Foundation/NSNumber.h>
#include <Foundation/NSOptions.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

/// Names the numbering styles.
enum ZKNumberStyle : NSUInteger {
  ZKNumberDecimal = 0,
  /// A, B, … Z, AA, AB, …
  ZKNumberUpperCaseLetters = 1,
  ZKNumberLowerCaseLetters = 2,
  ZKNumberUpperCaseRoman = 3,
  ZKNumberLowerCaseRoman = 4,
};

/// Writes the number in the `ZKNumberStyle`. 0 is "NUL" in every style, and so are Roman numerals
/// from 5000 on; any other style gives nil. Decimal digits are those of the signed number. Letters
/// of 2^63 and above give nil.
///
/// Roman numerals have two rules of their own: fifty is written with "D" ("XD" is 40, "DX" 60), and
/// four thousands with one "M" (4999 is "MCMXCIX").
[[nodiscard]] ZK_EXPORT NSRef<NSString> ZKBinToStr(std::uint64_t value,
                                                   NSOptions<ZKNumberStyle> type);

/// Appends one decimal digit, 0 to 9, in Roman numerals, from the texts for one, five and ten units
/// of its place: 4 is one and five, 9 is one and ten. Larger digits append nothing, and so do nil
/// texts.
ZK_EXPORT void roman_digit(const NSRef<NSString>& one, const NSRef<NSString>& five,
                           const NSRef<NSString>& ten, int digit,
                           const NSRef<NSMutableString>& output);

namespace ZKFoundationExtensions {

/// Writes the number's unsigned long value as `ZKBinToStr` does.
[[nodiscard]] ZK_EXPORT NSRef<NSString> numberToStringWithType(const NSRef<NSNumber>& number,
                                                               NSOptions<ZKNumberStyle> type);

}  // namespace ZKFoundationExtensions
