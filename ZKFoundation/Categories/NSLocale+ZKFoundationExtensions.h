#pragma once

#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// Quotation marks of 33 languages. What counts of an identifier is its language and, for the
// first-level marks, whether its region is "CH": then they are angle quotes, whatever the language.
// Letter case counts. All other languages, none and nil have the default; whether there is such a
// locale is not asked. May be called from any thread.

namespace ZKFoundationExtensions {

// The first-level marks; "de_DE" has „ “ ‚ ‘, "de_CH" « » ‹ ›, the default is " " ' '.

ZK_EXPORT unichar
openingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
closingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
openingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
closingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;

// The language's other pairs, mostly guillemets where the first-level marks are curly or low ones,
// and the other way round; "de" has » « › ‹, as the default has, "fr" “ ” ‘ ’. The region does not
// count.

ZK_EXPORT unichar
openingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
closingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
openingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;
ZK_EXPORT unichar
closingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept;

}  // namespace ZKFoundationExtensions
