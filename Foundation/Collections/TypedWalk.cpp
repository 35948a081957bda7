#include "Foundation/detail/TypedWalk.h"

#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

void NSRaiseWrongElement(const NSRef<NSObject>& element, NSClass wanted, NSUInteger index) {
  std::string reason = element->objectClass().name()->utf8() + " is no " + wanted.name()->utf8();
  if (index != NSNotFound) reason += " (at index " + std::to_string(index) + ")";
  NSException::raise(NSInvalidArgumentException, reason);
}
