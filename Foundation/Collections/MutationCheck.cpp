#include "Foundation/detail/MutationCheck.h"

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

void NSMutationCheck::raise() const {
  NSException::raise(NSGenericException, _collection->objectClass().name()->utf8() +
                                             " was mutated while being enumerated");
}
