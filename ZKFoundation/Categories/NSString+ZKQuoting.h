#pragma once

#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Puts the text between quotation marks: those of a quotation at level 0, of one within it at
/// level 1, and so on in turns: “The ‘inner’ one”.
///
/// A language has the marks of `openingDoubleQuotationForLocaleIdentifier` and its kin; one that
/// these do not know has CLDR's: 「 and 『 in Japanese. Angle quotes in French, but not in
/// Switzerland, and in Breton have U+202F, a narrow no-break space, on their inner sides, by the
/// rules of French typesetting; CLDR has spaces for no language. What is no locale identifier, and
/// nil, has " and '. A nil string raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByQuotingAtLevel_forLocaleIdentifier(
    const NSRef<NSString>& string, NSUInteger level, const NSRef<NSString>& identifier);

}  // namespace ZKFoundationExtensions
