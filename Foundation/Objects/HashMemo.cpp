#include "Foundation/Objects/HashMemo.h"

#include <Foundation/NSException.h>

thread_local constinit NSHashMemo* NSHashMemo::_current = nullptr;

std::optional<NSUInteger>* NSHashMemo::find(const NSObject& object, std::size_t bytes) {
  const auto found = _hashes.find(&object);
  if (found != _hashes.end()) return &found->second;
  if (bytes > _budget) {
    NSException::raise(NSInvalidUnarchiveOperationException, "long texts are hashed too often");
  }
  _budget -= bytes;
  return nullptr;
}
