#include "Foundation/NSBlock.h"

NSRef<NSObject> NSBlock::copyWithZone(NSZone* /*zone*/) const { return self(); }
