#include "Foundation/NSPredicate.h"

#include <Foundation/NSException.h>

NSPredicate::NSPredicate(Block block) : _block(std::move(block)) {
  if (!_block) NSRaiseNilArgument("block", "predicateWithBlock:");
}

NSPredicate::~NSPredicate() = default;
