#include "Foundation/NSNumberFormatter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include <unicode/unumberformatter.h>

#include <Foundation/Locales/DecimalSymbols.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUnitBuffer.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Text/ICU.h>

namespace {

constexpr double twoTo52 = 0x1p52;
constexpr double twoTo53 = 0x1p53;
constexpr NSUInteger mostFractionDigits = 340;
constexpr std::array<double, 10> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// The integer next to a quotient or product that is known up to a few roundings, or nothing when
// those might hide that it lies in the middle between two.
std::optional<double> surelyNearest(double approximation) {
  // The double, the increment and the power of ten each stand for a decimal that may be half a unit
  // of the last place away, and so does each operation: less than eight halves in all.
  constexpr double relativeError = 8 * 0x1p-53;
  if (!(approximation < twoTo52)) return std::nullopt;
  // Numbers of 2^52 have no room for a fraction: the sum is rounded to an integer.
  const double nearest = (approximation + twoTo52) - twoTo52;
  const double fromMiddle = 0.5 - std::abs(approximation - nearest);
  if (fromMiddle <= approximation * relativeError) return std::nullopt;
  return nearest;
}

// The digits that a double holds: all of those without fraction, else the fewest that tell it apart
// of any other. The room takes the longest, 5e-324.
using DecimalRoom = std::array<char, 400>;

std::string_view decimalOf(double value, DecimalRoom& room) {
  char* const start = room.data();
  char* const limit = start + room.size();
  const char* const end = std::abs(value) < twoTo53
                              ? std::to_chars(start, limit, value, std::chars_format::fixed).ptr
                              : std::to_chars(start, limit, value, std::chars_format::fixed, 0).ptr;
  return {start, static_cast<std::size_t>(end - start)};
}

using Formatter = NSICUHandle<UNumberFormatter, unumf_close>;
using Result = NSICUHandle<UFormattedNumber, unumf_closeResult>;

Formatter openFormatter(const std::string& skeleton, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const NSUnitBuffer units = NSUnitsFromUTF8(skeleton);
  Formatter formatter(unumf_openForSkeletonAndLocale(units.data(), NSICULength(units.view()),
                                                     locale.c_str(), &status));
  NSCheckICU(status);
  return formatter;
}

Result openResult() {
  UErrorCode status = U_ZERO_ERROR;
  Result result(unumf_openResult(&status));
  NSCheckICU(status);
  return result;
}

constexpr std::array<const char*, 7> modeNames = {"ceiling",   "floor",     "down",   "up",
                                                  "half-even", "half-down", "half-up"};

// The number by which the platform's archives tell formatters with a style from older ones.
constexpr NSInteger currentBehavior = 1040;

[[gnu::constructor]] void registerClass() { NSKeyedUnarchiver::registerClass<NSNumberFormatter>(); }

[[noreturn]] void raiseUnreadable(std::u16string_view name) {
  NSException::raise(NSInvalidUnarchiveOperationException,
                     "the number formatter's " + NSUTF8FromUnits(name) + " cannot be read");
}

}  // namespace

// ICU's own rounding, for what cannot be rounded in doubles without doubt. It is given the two
// steps one by one: handed both at once, it shows as many fraction digits as the increment has.
class NSNumberFormatter::Rounder {
 public:
  Rounder(const Settings& settings, const std::string& locale)
      : _result(openResult()), _formatter(openFormatter(textSkeleton(settings), locale)) {
    if (settings.increment > 0) {
      _toMultiple = openFormatter(incrementSkeleton(settings), "en");
    }
  }

  void append(std::string_view decimal, NSUnitBuffer& text) const {
    // A number that has too many digits for ICU to round it to a multiple stays as it is.
    if (_toMultiple && U_SUCCESS(tryFormat(_toMultiple, decimal))) {
      std::string multiple = decimalOfResult();
      // A negative number that is rounded to zero keeps its sign.
      if (decimal.starts_with('-') && !multiple.starts_with('-')) multiple.insert(0, 1, '-');
      NSCheckICU(tryFormat(_formatter, multiple));
    } else {
      NSCheckICU(tryFormat(_formatter, decimal));
    }
    appendResult(text);
  }

  void appendNonFinite(double value, NSUnitBuffer& text) const {
    UErrorCode status = U_ZERO_ERROR;
    unumf_formatDouble(_formatter.get(), value, _result.get(), &status);
    NSCheckICU(status);
    appendResult(text);
  }

 private:
  static std::string modeToken(const Settings& settings) {
    return std::string(" rounding-mode-") + modeNames[settings.mode];
  }
  static std::string textSkeleton(const Settings& settings) {
    std::string skeleton;
    if (settings.maximumFractionDigits == 0) {
      skeleton = "precision-integer";
    } else {
      skeleton.append(1, '.').append(settings.minimumFractionDigits, '0');
      skeleton.append(settings.maximumFractionDigits - settings.minimumFractionDigits, '#');
    }
    skeleton.append(modeToken(settings));
    return settings.isGrouped ? skeleton : skeleton.append(" group-off");
  }
  static std::string incrementSkeleton(const Settings& settings) {
    DecimalRoom room;
    const char* const end = std::to_chars(room.data(), room.data() + room.size(),
                                          settings.increment, std::chars_format::fixed)
                                .ptr;
    return "precision-increment/" + std::string(std::as_const(room).data(), end) +
           modeToken(settings);
  }

  [[nodiscard]] UErrorCode tryFormat(const Formatter& formatter, std::string_view decimal) const {
    UErrorCode status = U_ZERO_ERROR;
    unumf_formatDecimal(formatter.get(), decimal.data(), static_cast<std::int32_t>(decimal.size()),
                        _result.get(), &status);
    return status;
  }
  [[nodiscard]] std::string decimalOfResult() const {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = unumf_resultToDecimalNumber(_result.get(), nullptr, 0, &status);
    std::string decimal(static_cast<std::size_t>(length), '0');
    status = U_ZERO_ERROR;
    unumf_resultToDecimalNumber(_result.get(), decimal.data(), length, &status);
    NSCheckICU(status);
    return decimal;
  }
  void appendResult(NSUnitBuffer& text) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = unumf_resultToString(_result.get(), nullptr, 0, &status);
    status = U_ZERO_ERROR;
    unumf_resultToString(_result.get(), text.extend(static_cast<std::size_t>(length)), length,
                         &status);
    NSCheckICU(status);
  }

  Result _result;
  Formatter _formatter;
  Formatter _toMultiple;
};

NSNumberFormatter::NSNumberFormatter() : _locale(NSLocale::currentLocale()) {}
NSNumberFormatter::~NSNumberFormatter() = default;

void NSNumberFormatter::settingsChanged() noexcept { _rounder.reset(); }

void NSNumberFormatter::setNumberStyle(NSNumberFormatterStyle style) {
  if (style > NSNumberFormatterDecimalStyle) {
    NSException::raise(NSInvalidArgumentException,
                       "unknown number style " + std::to_string(style) + " (in 'setNumberStyle:')");
  }
  const bool isDecimal = style == NSNumberFormatterDecimalStyle;
  _settings.style = style;
  _settings.isGrouped = isDecimal;
  _settings.minimumFractionDigits = 0;
  _settings.maximumFractionDigits = isDecimal ? 3 : 0;
  settingsChanged();
}

void NSNumberFormatter::setUsesGroupingSeparator(bool usesIt) {
  _settings.isGrouped = usesIt;
  settingsChanged();
}

void NSNumberFormatter::setMinimumFractionDigits(NSUInteger digits) {
  _settings.minimumFractionDigits = std::min(digits, mostFractionDigits);
  _settings.maximumFractionDigits =
      std::max(_settings.minimumFractionDigits, _settings.maximumFractionDigits);
  settingsChanged();
}

void NSNumberFormatter::setMaximumFractionDigits(NSUInteger digits) {
  _settings.maximumFractionDigits = std::min(digits, mostFractionDigits);
  _settings.minimumFractionDigits =
      std::min(_settings.minimumFractionDigits, _settings.maximumFractionDigits);
  settingsChanged();
}

NSRef<NSNumber> NSNumberFormatter::roundingIncrement() const noexcept { return _roundingIncrement; }

void NSNumberFormatter::setRoundingIncrement(const NSRef<NSNumber>& increment) {
  const double value = increment ? increment->doubleValue() : 0;
  // Beyond these ICU has no room for a number's steps.
  const bool isIncrement = value >= 1e-12 && value <= twoTo53;
  _roundingIncrement = isIncrement ? increment : nullptr;
  _settings.increment = isIncrement ? value : 0;
  settingsChanged();
}

void NSNumberFormatter::setRoundingMode(NSNumberFormatterRoundingMode mode) {
  if (mode >= modeNames.size()) {
    NSException::raise(NSInvalidArgumentException, "unknown rounding mode " + std::to_string(mode) +
                                                       " (in 'setRoundingMode:')");
  }
  _settings.mode = mode;
  settingsChanged();
}

NSRef<NSLocale> NSNumberFormatter::locale() const noexcept { return _locale; }

void NSNumberFormatter::setLocale(const NSRef<NSLocale>& locale) {
  _locale = locale ? locale : NSLocale::currentLocale();
  _hasOwnLocale = static_cast<bool>(locale);
  settingsChanged();
}

const NSNumberFormatter::Rounder& NSNumberFormatter::rounder() const {
  if (!_rounder) {
    _rounder =
        std::make_unique<const Rounder>(_settings, NSAccess::decimalSymbols(*_locale).locale());
  }
  return *_rounder;
}

NSRef<NSString> NSNumberFormatter::stringFromNumber(const NSRef<NSNumber>& number) const {
  if (!number) return nullptr;
  std::array<char16_t, 64> room;
  NSUnitBuffer text(room);
  const double value = number->doubleValue();
  if (number->isFloatingPoint() || std::abs(value) < twoTo53) {
    appendNumber(value, text);
  } else {
    // An integer that its double may not tell.
    appendDecimal(number->stringValue()->utf8(), /*isLarge=*/true, text);
  }
  return NSMake<NSString>(text.view());
}

void NSNumberFormatter::appendNumber(double value, NSUnitBuffer& text) const {
  if (!std::isfinite(value)) return rounder().appendNonFinite(value, text);
  if (appendQuickly(value, text)) return;
  DecimalRoom room;
  appendDecimal(decimalOf(value, room), std::abs(value) >= twoTo53, text);
}

void NSNumberFormatter::appendDecimal(std::string_view decimal, bool isLarge,
                                      NSUnitBuffer& text) const {
  if (!isLarge || _settings.increment >= 1) return rounder().append(decimal, text);
  std::string padded(decimal);
  if (_settings.minimumFractionDigits != 0) {
    padded.append(1, '.').append(_settings.minimumFractionDigits, '0');
  }
  NSAccess::decimalSymbols(*_locale).append(padded, _settings.isGrouped, text);
}

// Writes what can be rounded in doubles without doubt; gives false for the rest.
bool NSNumberFormatter::appendQuickly(double value, NSUnitBuffer& text) const {
  const auto& [style, mode, isGrouped, least, most, increment] = _settings;
  const bool isToNearest = mode >= NSNumberFormatterRoundHalfEven;
  if (!isToNearest || most >= powersOfTen.size()) return false;
  const double magnitude = std::abs(value);
  double scaled = magnitude * powersOfTen[most];
  if (increment > 0) {
    const auto steps = surelyNearest(magnitude / increment);
    if (!steps) return false;
    scaled = *steps * (increment * powersOfTen[most]);
  }
  const auto units = surelyNearest(scaled);
  if (!units) return false;

  std::array<char, 32> digits;  // A sign, 16 digits, ten fraction places and the point at most.
  char* const start = digits.data() + 1;
  char* end =
      std::to_chars(start, digits.data() + digits.size(), static_cast<std::uint64_t>(*units)).ptr;
  const auto count = static_cast<std::size_t>(end - start);
  if (count <= most) {
    // "5" of thousandths is "0005", with one digit before the point.
    const std::size_t missing = most + 1 - count;
    std::copy_backward(start, end, end + missing);
    std::fill_n(start, missing, '0');
    end += missing;
  }
  char* const point = end - most;
  while (end - point > static_cast<std::ptrdiff_t>(least) && *(end - 1) == '0') --end;
  if (end != point) {
    std::copy_backward(point, end, end + 1);
    *point = '.';
    ++end;
  }
  digits[0] = '-';
  const char* const first = std::signbit(value) ? digits.data() : start;
  NSAccess::decimalSymbols(*_locale).append({first, static_cast<std::size_t>(end - first)},
                                            isGrouped, text);
  return true;
}

std::optional<double> NSNumberFormatter::takeNumber(std::u16string_view& text) const {
  std::u16string_view rest = text;
  const std::string decimal = NSAccess::decimalSymbols(*_locale).take(rest);
  double number = 0;
  const auto read = std::from_chars(decimal.data(), decimal.data() + decimal.size(), number,
                                    std::chars_format::fixed);
  const bool isTooSmall = read.ec == std::errc::result_out_of_range &&
                          decimal.find_first_of("123456789") > decimal.find('.');
  if (read.ec != std::errc() && !isTooSmall) return std::nullopt;
  text = rest;
  return number;
}

NSRef<NSString> NSNumberFormatter::stringForObjectValue(const NSRef<NSObject>& object) const {
  return stringFromNumber(object.as<NSNumber>());
}

const NSPropertyTable& NSNumberFormatter::propertyTable() const {
  using Self = NSNumberFormatter;
  static const NSPropertyTable table({{u"numberStyle", &Self::numberStyle},
                                      {u"usesGroupingSeparator", &Self::usesGroupingSeparator},
                                      {u"minimumFractionDigits", &Self::minimumFractionDigits},
                                      {u"maximumFractionDigits", &Self::maximumFractionDigits},
                                      {u"roundingIncrement", &Self::roundingIncrement},
                                      {u"roundingMode", &Self::roundingMode},
                                      {u"locale", &Self::locale}},
                                     NSFormatter::propertyTable());
  return table;
}

// The platform keeps the settings as a dictionary of numbers by name.
void NSNumberFormatter::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  NSFormatter::encodeWithCoder(coder);
  const auto settings = NSMake<NSMutableDictionary>();
  const auto set = [&](const char16_t* name, auto value) {
    settings->setObject_forKey(NSMake<NSNumber>(value),
                               NSMake<NSString>(std::u16string_view(name)));
  };
  set(u"formatterBehavior", currentBehavior);
  set(u"numberStyle", static_cast<NSInteger>(_settings.style));
  set(u"usesGroupingSeparator", _settings.isGrouped);
  set(u"minimumFractionDigits", _settings.minimumFractionDigits);
  set(u"maximumFractionDigits", _settings.maximumFractionDigits);
  set(u"roundingMode", static_cast<NSInteger>(_settings.mode));
  if (_roundingIncrement) settings->setObject_forKey(_roundingIncrement, u"roundingIncrement"_ns);
  if (_hasOwnLocale) settings->setObject_forKey(_locale, u"locale"_ns);
  coder->encodeObject_forKey(settings, u"NS.attributes"_ns);
}

NSNumberFormatter::NSNumberFormatter(const NSRef<NSCoder>& coder) : NSFormatter(coder) {
  const auto settings = coder->decodeObjectOfClass<NSDictionary>(u"NS.attributes"_ns);
  const auto get = [&]<class T>(const char16_t* name, NSRef<T>& value) {
    const auto object =
        settings ? settings->objectForKey(NSMake<NSString>(std::u16string_view(name))) : nullptr;
    value = object.template as<T>();
    if (object && !value) raiseUnreadable(name);
    return static_cast<bool>(value);
  };
  // A number that is a whole one below the limit.
  const auto count = [&](const char16_t* name, NSUInteger limit) -> std::optional<NSUInteger> {
    NSRef<NSNumber> number;
    if (!get(name, number)) return std::nullopt;
    const NSUInteger value = number->unsignedIntegerValue();
    if (!number->isEqualToNumber(NSMake<NSNumber>(value)) || value >= limit) raiseUnreadable(name);
    return value;
  };
  const auto style = count(u"numberStyle", NSNumberFormatterDecimalStyle + 1);
  setNumberStyle(static_cast<NSNumberFormatterStyle>(style.value_or(NSNumberFormatterNoStyle)));
  if (const auto grouped = count(u"usesGroupingSeparator", 2)) {
    setUsesGroupingSeparator(*grouped != 0);
  }
  const auto maximum = count(u"maximumFractionDigits", NSUIntegerMax);
  if (maximum) setMaximumFractionDigits(*maximum);
  const auto minimum = count(u"minimumFractionDigits", NSUIntegerMax);
  if (minimum) setMinimumFractionDigits(*minimum);
  const auto mode = count(u"roundingMode", modeNames.size());
  if (mode) setRoundingMode(static_cast<NSNumberFormatterRoundingMode>(*mode));
  NSRef<NSNumber> increment;
  if (get(u"roundingIncrement", increment)) setRoundingIncrement(increment);
  NSRef<NSLocale> locale;
  get(u"locale", locale);
  setLocale(locale);
}
