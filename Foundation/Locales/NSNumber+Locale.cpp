#include "Foundation/NSNumber.h"

#include <Foundation/Locales/DecimalSymbols.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/Access.h>

NSRef<NSString> NSNumber::descriptionWithLocale(const NSRef<NSLocale>& locale) const {
  if (!locale) return stringValue();
  NSUnitBuffer text;
  NSAccess::decimalSymbols(*locale).append(stringValue()->utf8(), /*isGrouped=*/false, text);
  return NSMake<NSString>(std::move(text));
}
