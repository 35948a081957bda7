#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

#include <Foundation/NSString.h>
#include <ZKFoundation/Categories/NSMutableString+ZKFoundationExtensions.h>
#include <ZKFoundation/ZKExport.h>

// The receiver comes first and must not be nil: asking nil raises `NSInvalidArgumentException`.
// Where nothing changes, the receiver itself is given.

namespace ZKFoundationExtensions {

/// Whether the string is nil or has no units; white space is not empty.
[[nodiscard]] ZK_EXPORT bool isEmptyString(const NSRef<NSString>& string) noexcept;

// Strings of one unit, made on the first call and kept: each function gives the same object always.

/// Gives U+2026 "…".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& horizontalEllipsisString();
/// Gives U+00AB "«".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& leftPointingDoubleAngleQuotationMarkString();
/// Gives U+00BB "»".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& rightPointingDoubleAngleQuotationMarkString();
/// Gives U+2014 "—".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& emdashString();
/// Gives U+2013 "–".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& endashString();
/// Gives U+2318 "⌘".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& commandKeyIndicatorString();
/// Gives U+2325 "⌥".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& alternateKeyIndicatorString();
/// Gives U+21E7 "⇧".
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& shiftKeyIndicatorString();

/// Makes a random UUID: 36 characters, upper-case hexadecimal in groups of 8-4-4-4-12.
[[nodiscard]] ZK_EXPORT NSRef<NSString> UUIDString();

/// Makes the string of that one unit, of the class that is asked for:
/// `stringWithCharacter<NSMutableString>(u'A')`.
template <class String = NSString>
[[nodiscard]] NSRef<String> stringWithCharacter(unichar unit) {
  return NSMake<String>(std::u16string_view(&unit, 1));
}

/// Writes the address of the object, or of nil, as printf's "%p" does.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringForId(const NSRef<NSObject>& object);

/// Joins the strings up to the first nil; gives the empty string when the first is nil.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringWithStrings(
    std::initializer_list<NSRef<NSString>> strings);
/// Joins the strings of any range, such as `array->each<NSString>()`, up to the first nil, where it
/// stops reading. Room is made once.
template <ZKStringRange Strings>
[[nodiscard]] NSRef<NSString> stringWithStrings(Strings&& strings) {
  const auto result = NSMake<NSMutableString>();
  appendStrings(result, std::forward<Strings>(strings));
  return result->copy();
}

/// Reads hexadecimal digits of either case leniently, from the first 40 units only: white space is
/// skipped wherever it stands, and one "0x" in front. Of more than eight digits the last eight
/// count. 0 without digits, and when anything else occurs ("12g", "0X1A").
///
/// White space is the C library's: ` \t\n\v\f\r`, and above U+007F what `iswspace` says.
[[nodiscard]] ZK_EXPORT std::uint32_t hexValue(const NSRef<NSString>& string);

/// Reads hexadecimal digits as `strtoumax` with base 16 does: after white space, a sign and "0x" or
/// "0X", up to the first unit that is no digit ("12g" is 0x12). 0 without digits; the largest value
/// when the number does not fit; a minus sign negates in 64 bits.
[[nodiscard]] ZK_EXPORT std::uint64_t maxHexValue(const NSRef<NSString>& string);

/// Appends U+2026 to the string.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByAppendingEllipsis(const NSRef<NSString>& string);

/// Removes that prefix, compared literally, once. Gives the string itself when it has no such
/// prefix, or the prefix is nil or empty.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByRemovingPrefix(const NSRef<NSString>& string,
                                                               const NSRef<NSString>& prefix);

/// Removes that suffix, compared literally, once. Gives the string itself when it has no such
/// suffix, or the suffix is nil or empty.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByRemovingSuffix(const NSRef<NSString>& string,
                                                               const NSRef<NSString>& suffix);

/// Whether the string's first units, as many as the prefix has, are the prefix up to letter case.
/// Composed and decomposed letters differ. True for an empty prefix, false for nil or a longer one.
[[nodiscard]] ZK_EXPORT bool hasCaseInsensitivePrefix(const NSRef<NSString>& string,
                                                      const NSRef<NSString>& prefix);

/// Removes the occurrences of the other string, found from left to right in one pass: what comes
/// together by a removal stays ("aabb" without "ab" is "ab"). Gives the string itself when there is
/// none, or the other is nil or empty.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByRemovingString(const NSRef<NSString>& string,
                                                               const NSRef<NSString>& other);

}  // namespace ZKFoundationExtensions
