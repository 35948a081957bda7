#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSFormatter.h>

class NSLocale;
class NSNumber;
class NSUnitBuffer;

/// How numbers are written; the values are the platform's.
enum NSNumberFormatterStyle : NSUInteger {
  NSNumberFormatterNoStyle = 0,       ///< integers without separators: "1234"
  NSNumberFormatterDecimalStyle = 1,  ///< up to three fraction digits and separators: "1,234.5"
};

/// Where a number goes that lies between two that can be shown; the values are the platform's.
enum NSNumberFormatterRoundingMode : NSUInteger {
  NSNumberFormatterRoundCeiling = 0,   ///< towards positive infinity
  NSNumberFormatterRoundFloor = 1,     ///< towards negative infinity
  NSNumberFormatterRoundDown = 2,      ///< towards zero
  NSNumberFormatterRoundUp = 3,        ///< away from zero
  NSNumberFormatterRoundHalfEven = 4,  ///< to the nearest, to the even digit from the middle
  NSNumberFormatterRoundHalfDown = 5,  ///< to the nearest, towards zero from the middle
  NSNumberFormatterRoundHalfUp = 6,    ///< to the nearest, away from zero from the middle
};

/// Writes numbers as people of a locale do. What that needs is kept until a setting changes.
///
/// A number is rounded twice, by the same mode: to a multiple of the rounding increment, if there
/// is one, and then to the greatest number of fraction digits. Numbers of 2^53 and beyond have no
/// fraction; an increment below 1 leaves them, and every digit of what they hold is shown.
class NS_EXPORT NSNumberFormatter : public NSFormatter {
 public:
  /// Makes a formatter without style and increment, that rounds half-even, with the current locale.
  NSNumberFormatter();
  /// Reads what `encodeWithCoder` has written; what is missing is as the style sets it, and without
  /// a locale it is the current one. Settings that make no sense raise
  /// `NSInvalidUnarchiveOperationException`, among them the styles that are not known here.
  explicit NSNumberFormatter(const NSRef<NSCoder>& coder);
  ~NSNumberFormatter() override;

  [[nodiscard]] NSNumberFormatterStyle numberStyle() const noexcept { return _settings.style; }
  /// Sets separators and fraction digits as well, as listed with the styles. Raises
  /// `NSInvalidArgumentException` for any other number.
  void setNumberStyle(NSNumberFormatterStyle style);

  [[nodiscard]] bool usesGroupingSeparator() const noexcept { return _settings.isGrouped; }
  void setUsesGroupingSeparator(bool usesIt);

  // At most 340 digits; more count as 340. Either changes the other where they would contradict.

  [[nodiscard]] NSUInteger minimumFractionDigits() const noexcept {
    return _settings.minimumFractionDigits;
  }
  void setMinimumFractionDigits(NSUInteger digits);
  [[nodiscard]] NSUInteger maximumFractionDigits() const noexcept {
    return _settings.maximumFractionDigits;
  }
  void setMaximumFractionDigits(NSUInteger digits);

  /// Gives what numbers are rounded to multiples of; nil when they are not.
  [[nodiscard]] NSRef<NSNumber> roundingIncrement() const noexcept;
  /// Sets the increment; nil and anything but a number from 1e-12 to 2^53 stand for none. A number
  /// with more than some 34 digits, those of the increment counted, is not rounded.
  void setRoundingIncrement(const NSRef<NSNumber>& increment);

  [[nodiscard]] NSNumberFormatterRoundingMode roundingMode() const noexcept {
    return _settings.mode;
  }
  /// Sets the mode. Raises `NSInvalidArgumentException` for a number that is none of them.
  void setRoundingMode(NSNumberFormatterRoundingMode mode);

  [[nodiscard]] NSRef<NSLocale> locale() const noexcept;
  /// Sets the locale; nil is the one that is current now.
  void setLocale(const NSRef<NSLocale>& locale);

  /// Appends the text of a number, without making objects.
  void appendNumber(double value, NSUnitBuffer& text) const;
  /// Gives the text of a number; nil for nil. "NaN" and "∞" are written as the locale writes them.
  [[nodiscard]] NSRef<NSString> stringFromNumber(const NSRef<NSNumber>& number) const;
  /// Takes a number off the start of the text, and gives it; nothing, with the text as it was, when
  /// there is none. It is written as the locale does, the separators of groups where they belong or
  /// left out, with digits of any script; exponents, "NaN" and "∞" are not read, nor what is too
  /// large for a double; what is too small for one is 0. Takes no notice of the settings.
  /// `NSTakeDouble` reads plain numbers.
  [[nodiscard]] std::optional<double> takeNumber(std::u16string_view& text) const;
  /// Gives the text of a number, nil for anything else.
  [[nodiscard]] NSRef<NSString> stringForObjectValue(const NSRef<NSObject>& object) const override;

  /// Writes the settings, and the locale only if one was set.
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
  /// The settings by their names besides what every object publishes.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  struct Settings {
    NSNumberFormatterStyle style = NSNumberFormatterNoStyle;
    NSNumberFormatterRoundingMode mode = NSNumberFormatterRoundHalfEven;
    bool isGrouped = false;
    NSUInteger minimumFractionDigits = 0;
    NSUInteger maximumFractionDigits = 0;
    double increment = 0;
  };
  class Rounder;

  [[nodiscard]] bool appendQuickly(double value, NSUnitBuffer& text) const;
  void appendDecimal(std::string_view decimal, bool isLarge, NSUnitBuffer& text) const;
  [[nodiscard]] const Rounder& rounder() const;
  void settingsChanged() noexcept;

  Settings _settings;
  NSRef<NSNumber> _roundingIncrement;
  NSRef<NSLocale> _locale;
  bool _hasOwnLocale = false;
  mutable std::unique_ptr<const Rounder> _rounder;
};
