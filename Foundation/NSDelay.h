#pragma once

#include <chrono>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

/// A delay as an argument: seconds as a number, or any `std::chrono` duration. Less than nothing,
/// and NaN, is no delay; more than 146 years are that many.
class NS_EXPORT NSDelay {
 public:
  NSDelay(NSTimeInterval seconds) noexcept;
  template <class Rep, class Period>
  NSDelay(std::chrono::duration<Rep, Period> duration) noexcept
      : NSDelay(std::chrono::duration<NSTimeInterval>(duration).count()) {
    // Within the days for which seconds are less exact than nanoseconds.
    if (_duration > std::chrono::nanoseconds::zero() && _duration < longest) {
      // In two parts, as all of it may not fit in units of both.
      const auto whole = std::chrono::floor<std::chrono::seconds>(duration);
      _duration = whole + std::chrono::ceil<std::chrono::nanoseconds>(duration - whole);
    }
  }

  /// Gives the delay, rounded up.
  [[nodiscard]] std::chrono::nanoseconds duration() const noexcept { return _duration; }

  /// So long that adding it to a time of a steady clock does not overflow.
  static constexpr std::chrono::nanoseconds longest{NSInteger{1} << 62};

 private:
  std::chrono::nanoseconds _duration{};
};
