#include "Foundation/NSDelay.h"

#include <cmath>

NSDelay::NSDelay(NSTimeInterval seconds) noexcept {
  const double count = std::ceil(seconds * std::nano::den);
  if (!(count > 0)) return;
  _duration = count < static_cast<double>(longest.count())
                  ? std::chrono::nanoseconds(static_cast<NSInteger>(count))
                  : longest;
}
