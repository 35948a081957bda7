#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// The receiver comes first and must not be nil: asking nil raises `NSInvalidArgumentException`.
// Where nothing changes, the receiver itself is given.

namespace ZKFoundationExtensions {

/// Whether the string is nil or has no units; white space is not empty.
ZK_EXPORT bool isEmptyString(const NSRef<NSString>& string) noexcept;

// Strings of one unit, made on the first call and kept: each function gives the same object always.

/// U+2026 "…"
ZK_EXPORT const NSRef<NSString>& horizontalEllipsisString();
/// U+00AB "«"
ZK_EXPORT const NSRef<NSString>& leftPointingDoubleAngleQuotationMarkString();
/// U+00BB "»"
ZK_EXPORT const NSRef<NSString>& rightPointingDoubleAngleQuotationMarkString();
/// U+2014 "—"
ZK_EXPORT const NSRef<NSString>& emdashString();
/// U+2013 "–"
ZK_EXPORT const NSRef<NSString>& endashString();
/// U+2318 "⌘"
ZK_EXPORT const NSRef<NSString>& commandKeyIndicatorString();
/// U+2325 "⌥"
ZK_EXPORT const NSRef<NSString>& alternateKeyIndicatorString();
/// U+21E7 "⇧"
ZK_EXPORT const NSRef<NSString>& shiftKeyIndicatorString();

/// A fresh random UUID: 36 characters, upper-case hexadecimal in groups of 8-4-4-4-12.
ZK_EXPORT NSRef<NSString> UUIDString();

/// The string of that one unit, of the class that is asked for:
/// `stringWithCharacter<NSMutableString>(u'A')`.
template <class String = NSString>
NSRef<String> stringWithCharacter(unichar unit) {
  return NSMake<String>(std::u16string_view(&unit, 1));
}

/// The address of the object as printf's "%p" writes it, nil's too.
ZK_EXPORT NSRef<NSString> stringForId(const NSRef<NSObject>& object);

/// The strings joined, up to the first nil; empty when the first is nil.
ZK_EXPORT NSRef<NSString> stringWithStrings(std::initializer_list<NSRef<NSString>> strings);

/// Reads hexadecimal digits of either case leniently, from the first 40 units only: white space is
/// skipped wherever it stands, and one "0x" in front. Of more than eight digits the last eight
/// count. 0 without digits, and when anything else occurs ("12g", "0X1A").
///
/// White space is the C library's: ` \t\n\v\f\r`, and above U+007F what `iswspace` says.
ZK_EXPORT std::uint32_t hexValue(const NSRef<NSString>& string);

/// Reads hexadecimal digits as `strtoumax` with base 16 does: after white space, a sign and "0x" or
/// "0X", up to the first unit that is no digit ("12g" is 0x12). 0 without digits; the largest value
/// when the number does not fit; a minus sign negates in 64 bits.
ZK_EXPORT std::uint64_t maxHexValue(const NSRef<NSString>& string);

/// The string with U+2026 behind it.
ZK_EXPORT NSRef<NSString> stringByAppendingEllipsis(const NSRef<NSString>& string);

/// The string without that prefix, compared literally and removed once. The string itself when it
/// has no such prefix, or the prefix is nil or empty.
ZK_EXPORT NSRef<NSString> stringByRemovingPrefix(const NSRef<NSString>& string,
                                                 const NSRef<NSString>& prefix);

/// The same at the end of the string.
ZK_EXPORT NSRef<NSString> stringByRemovingSuffix(const NSRef<NSString>& string,
                                                 const NSRef<NSString>& suffix);

/// Whether the string's first units, as many as the prefix has, are the prefix up to letter case.
/// Composed and decomposed letters differ. True for an empty prefix, false for nil or a longer one.
ZK_EXPORT bool hasCaseInsensitivePrefix(const NSRef<NSString>& string,
                                        const NSRef<NSString>& prefix);

/// The string without the occurrences of the other one, found from left to right in one pass: what
/// comes together by a removal stays ("aabb" without "ab" is "ab"). The string itself when there is
/// none, or the other is nil or empty.
ZK_EXPORT NSRef<NSString> stringByRemovingString(const NSRef<NSString>& string,
                                                 const NSRef<NSString>& other);

}  // namespace ZKFoundationExtensions
