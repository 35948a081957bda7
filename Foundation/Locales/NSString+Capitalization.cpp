#include "Foundation/NSString.h"

#include <Foundation/Locales/Capitalization.h>

NSRef<NSString> NSString::localizedCapitalizedString() const {
  NSUnitBuffer result;
  NSAppendCapitalized(view(), result);
  result.shrink();
  return NSMake<NSString>(std::move(result));
}
