#pragma once

#include <chrono>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// A point in time, in seconds since the beginning of 2001 in UTC. Immutable.
class NS_EXPORT NSDate : public NSObject {
 public:
  /// Now.
  NSDate();
  explicit NSDate(NSTimeInterval sinceReferenceDate) noexcept : _time(sinceReferenceDate) {}
  explicit NSDate(std::chrono::system_clock::time_point time);

  static NSRef<NSDate> dateWithTimeIntervalSinceNow(NSTimeInterval seconds);
  /// The beginnings of the years 1 and 4001: before and after everything.
  static NSRef<NSDate> distantPast();
  static NSRef<NSDate> distantFuture();

  NSTimeInterval timeIntervalSinceReferenceDate() const noexcept { return _time; }
  /// Less than zero in the past.
  NSTimeInterval timeIntervalSinceNow() const;

  /// Nil raises `NSInvalidArgumentException`.
  NSComparisonResult compare(const NSRef<NSDate>& other) const;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "2026-11-21 20:08:00 +0000"
  NSRef<NSString> description() const override;
  /// The date itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSTimeInterval _time;
};
