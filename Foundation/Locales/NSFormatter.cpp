#include "Foundation/NSFormatter.h"

#include <Foundation/NSString.h>

bool NSFormatter::getObjectValue_forString_errorDescription(NSRef<NSObject>& object,
                                                            const NSRef<NSString>& /*string*/,
                                                            NSRef<NSString>* error) const {
  object = nullptr;
  if (error != nullptr) *error = nullptr;
  return false;
}

void NSFormatter::encodeWithCoder(const NSRef<NSCoder>& /*coder*/) const {}
