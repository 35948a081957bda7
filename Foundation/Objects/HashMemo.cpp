#include "Foundation/Objects/HashMemo.h"

#include <Foundation/NSException.h>

thread_local constinit NSHashMemo* NSHashMemo::_current = nullptr;

std::optional<NSUInteger>* NSHashMemo::find(const NSObject& object, std::size_t bytes) {
  const auto found = _hashes.find(&object);
  if (found != _hashes.end()) return &found->second;
  const auto changeable = _isFilling ? _changeable.find(&object) : _changeable.end();
  if (changeable != _changeable.end() && changeable->second) return &changeable->second;
  if (bytes > _budget) {
    NSException::raise(NSInvalidUnarchiveOperationException, "long texts are hashed too often");
  }
  _budget -= bytes;
  if (changeable == _changeable.end()) return nullptr;
  _known.push_back(&changeable->second);
  return _known.back();
}

void NSHashMemo::endFilling() noexcept {
  for (std::optional<NSUInteger>* const hash : _known) hash->reset();
  _known.clear();
  _isFilling = false;
}
