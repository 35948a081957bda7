#pragma once

#include <chrono>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// A point in time, in seconds since the beginning of 2001 in UTC. Immutable.
class NS_EXPORT NSDate : public NSObject {
 public:
  /// Takes the present time.
  NSDate();
  explicit NSDate(NSTimeInterval sinceReferenceDate) noexcept : _time(sinceReferenceDate) {}
  explicit NSDate(std::chrono::system_clock::time_point time);

  [[nodiscard]] static NSRef<NSDate> dateWithTimeIntervalSinceNow(NSTimeInterval seconds);
  /// Gives the beginning of the year 1, for a time before all others.
  [[nodiscard]] static NSRef<NSDate> distantPast();
  /// Gives the beginning of the year 4001, for a time after all others.
  [[nodiscard]] static NSRef<NSDate> distantFuture();

  [[nodiscard]] NSTimeInterval timeIntervalSinceReferenceDate() const noexcept { return _time; }
  /// Gives the seconds from now to the date, less than zero in the past.
  [[nodiscard]] NSTimeInterval timeIntervalSinceNow() const;

  /// Compares the times. Nil raises `NSInvalidArgumentException`.
  [[nodiscard]] NSComparisonResult compare(const NSRef<NSDate>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives the time in UTC: "2026-11-21 20:08:00 +0000".
  [[nodiscard]] NSRef<NSString> description() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  NSTimeInterval _time;
};
