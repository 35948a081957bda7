#pragma once

#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// Quotation marks of 33 languages. What counts of an identifier is its language and, for the
// first-level marks, whether its region is "CH": then they are angle quotes, whatever the language.
// Letter case counts. All other languages, none and nil have the default; whether there is such a
// locale is not asked. Callable from any thread.

namespace ZKFoundationExtensions {

// The first-level marks; "de_DE" has „ “ ‚ ‘, "de_CH" « » ‹ ›, the default is " " ' '.

/// Gives the mark that opens a quotation: “ for "en".
[[nodiscard]] ZK_EXPORT unichar
openingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the mark that closes a quotation: ” for "en".
[[nodiscard]] ZK_EXPORT unichar
closingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the mark that opens a quotation within one: ‘ for "en".
[[nodiscard]] ZK_EXPORT unichar
openingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the mark that closes a quotation within one: ’ for "en".
[[nodiscard]] ZK_EXPORT unichar
closingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;

// The language's other pairs, mostly guillemets where the first-level marks are curly or low ones,
// and the other way round; "de" has » « › ‹, as the default has, "fr" “ ” ‘ ’. The region does not
// count.

/// Gives the first opening mark of the other pairs: » for "de".
[[nodiscard]] ZK_EXPORT unichar
openingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the first closing mark of the other pairs: « for "de".
[[nodiscard]] ZK_EXPORT unichar
closingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the second opening mark of the other pairs: › for "de".
[[nodiscard]] ZK_EXPORT unichar
openingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
/// Gives the second closing mark of the other pairs: ‹ for "de".
[[nodiscard]] ZK_EXPORT unichar
closingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;

}  // namespace ZKFoundationExtensions
