#include "Foundation/NSNumber.h"

#include <Foundation/Locales/DecimalSymbols.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>

NSRef<NSString> NSNumber::descriptionWithLocale(const NSRef<NSLocale>& locale) const {
  if (!locale) return stringValue();
  NSUnitBuffer text;
  locale->decimalSymbols().append(stringValue()->utf8(), /*isGrouped=*/false, text);
  return NSMake<NSString>(std::move(text));
}
