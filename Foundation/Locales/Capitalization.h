#pragma once

#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSUnitBuffer.h>

/// Appends the text with the first letter of each word in title case and the others in lower case,
/// by the current locale's rules.
NS_EXPORT void NSAppendCapitalized(std::u16string_view text, NSUnitBuffer& result);
