#include "Foundation/NSObservation.h"

NSObservation& NSObservation::operator=(NSObservation other) noexcept {
  std::swap(_center, other._center);
  std::swap(_observer, other._observer);
  return *this;
}

void NSObservation::remove() {
  const auto observer = detach();
  const auto center = _center.lock();
  if (center) center->removeObserver(observer);
}
