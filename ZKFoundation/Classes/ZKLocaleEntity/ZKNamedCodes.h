#pragma once

#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

/// The code of a language or a region, and its name for people, as an item of a menu.
struct ZKNamedCode {
  NSRef<NSString> code;
  NSRef<NSString> name;
};

// Lists for people, in the order of the locale's language. A nil locale is the user's. Each code
// comes once; of names that look the same each has its code after it: "Hebrew (he)", "Hebrew (iw)".
// What is no string and no identifier is left out, a code that nobody knows is its own name.

/// Lists the languages or locales with these identifiers; nil stands for all languages of ISO 639.
[[nodiscard]] ZK_EXPORT std::vector<ZKNamedCode> ZKLanguagesSortedByName(
    const NSRef<NSArray>& identifiers, const NSRef<NSLocale>& locale);

/// Lists the regions with these codes, such as "CH"; nil stands for all regions of ISO 3166.
[[nodiscard]] ZK_EXPORT std::vector<ZKNamedCode> ZKRegionsSortedByName(
    const NSRef<NSArray>& codes, const NSRef<NSLocale>& locale);
