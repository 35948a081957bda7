#include "ZKFoundation/Categories/NSMapTable+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

void setObjectIfAbsent_forKey(const NSRef<NSMapTable>& table, const NSRef<NSObject>& anObject,
                              const NSRef<NSObject>& aKey) {
  NSCheckArgument("setObjectIfAbsent:forKey:", "table", table);
  if (!table->objectForKey(aKey)) table->setObject_forKey(anObject, aKey);
}

}  // namespace ZKFoundationExtensions
