#include "Foundation/NSDate.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace {

// From the beginning of 1970 to that of 2001: 31 years, 8 of them leap years.
constexpr double referenceDate = 978'307'200;

// 2,000 years.
constexpr double farthest = 63'113'904'000;

NSTimeInterval secondsSinceReference(std::chrono::system_clock::time_point time) {
  return std::chrono::duration<double>(time.time_since_epoch()).count() - referenceDate;
}

}  // namespace

NSDate::NSDate() : NSDate(std::chrono::system_clock::now()) {}

NSDate::NSDate(std::chrono::system_clock::time_point time) : _time(secondsSinceReference(time)) {}

NSRef<NSDate> NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
  return NSMake<NSDate>(secondsSinceReference(std::chrono::system_clock::now()) + seconds);
}

NSRef<NSDate> NSDate::distantPast() {
  static const NSNeverDestroyed<NSRef<NSDate>> date(NSMake<NSDate>(-farthest));
  return *date;
}

NSRef<NSDate> NSDate::distantFuture() {
  static const NSNeverDestroyed<NSRef<NSDate>> date(NSMake<NSDate>(farthest));
  return *date;
}

NSTimeInterval NSDate::timeIntervalSinceNow() const {
  return _time - secondsSinceReference(std::chrono::system_clock::now());
}

NSComparisonResult NSDate::compare(const NSRef<NSDate>& other) const {
  const NSTimeInterval time = other->_time;
  if (_time < time) return NSOrderedAscending;
  return _time > time ? NSOrderedDescending : NSOrderedSame;
}

bool NSDate::isEqual(const NSRef<NSObject>& other) const {
  const auto* const date = other.cast<NSDate>();
  return date != nullptr && (date == this || date->_time == _time);
}

NSUInteger NSDate::hash() const { return std::hash<double>()(_time); }

NSRef<NSString> NSDate::description() const {
  const double seconds = std::floor(_time) + referenceDate;
  // Years of four digits; beyond them a number says more.
  if (!(std::abs(seconds) < 2e11)) return NSMake<NSString>(std::to_string(_time));
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  std::array<char, 64> text{};
  gmtime_r(&time, &parts);
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d +0000",
                parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                parts.tm_sec);
  return NSMake<NSString>(text.data());
}
