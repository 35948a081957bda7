#include "Foundation/NSNull.h"

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

const NSRef<NSNull>& NSNull::null() {
  static const NSNeverDestroyed<NSRef<NSNull>> null(NSMake<NSNull>(NSPasskey<NSNull>()));
  return *null;
}

NSRef<NSString> NSNull::description() const { return u"<null>"_ns; }
