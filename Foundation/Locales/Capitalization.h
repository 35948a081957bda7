#pragma once

#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSUnitBuffer.h>

/// Appends the text with each word's first letter in title case, as `localizedCapitalizedString`.
NS_EXPORT void NSAppendCapitalized(std::u16string_view text, NSUnitBuffer& result);
