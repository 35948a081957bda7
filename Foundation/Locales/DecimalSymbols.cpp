#include "Foundation/Locales/DecimalSymbols.h"

#include <algorithm>

#include <unicode/unum.h>
#include <unicode/unumberformatter.h>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ICU.h>

namespace {

using OldFormatter = NSICUHandle<UNumberFormat, unum_close>;

std::u16string symbol(const OldFormatter& formatter, UNumberFormatSymbol which) {
  std::array<char16_t, 32> units{};
  UErrorCode status = U_ZERO_ERROR;
  const auto length = unum_getSymbol(formatter.get(), which, units.data(), units.size(), &status);
  NSCheckICU(status);
  return {units.data(), static_cast<std::size_t>(length)};
}

// A number as ICU writes it in the locale.
std::u16string written(const std::string& decimal, const std::string& locale, UErrorCode& status) {
  const NSICUHandle<UNumberFormatter, unumf_close> formatter(
      unumf_openForSkeletonAndLocale(u"", 0, locale.c_str(), &status));
  const NSICUHandle<UFormattedNumber, unumf_closeResult> number(unumf_openResult(&status));
  unumf_formatDecimal(formatter.get(), decimal.c_str(), -1, number.get(), &status);
  std::array<char16_t, 64> units{};
  const auto length = unumf_resultToString(number.get(), units.data(), units.size(), &status);
  return U_SUCCESS(status) ? std::u16string(units.data(), static_cast<std::size_t>(length)) : u"";
}

// Whether ICU can write numbers so: not with numbering systems that do not exist or have no digits.
bool canWriteNumbers(const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const OldFormatter old(unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &status));
  if (U_FAILURE(status)) return false;
  // A formatter of Roman numerals, for one, has no symbols.
  std::array<char16_t, 32> sign{};
  unum_getSymbol(old.get(), UNUM_MINUS_SIGN_SYMBOL, sign.data(), sign.size(), &status);
  written("-1.5", locale, status);
  return U_SUCCESS(status);
}

// The locale, or the nearest to it that will do: keywords follow "@" or "-u-".
std::string localeForNumbers(const std::string& locale) {
  if (canWriteNumbers(locale)) return locale;
  for (const char* const keywords : {"@", "-u-", "_u_"}) {
    std::string shorter = locale.substr(0, locale.find(keywords));
    if (canWriteNumbers(shorter)) return shorter;
  }
  return {};
}

// Whether ICU puts a separator into a number with so many digits before the last group. The old
// interface does not tell how many the locale wants there, so the number is tried.
bool isSeparated(const std::string& locale, const std::u16string& separator, std::size_t digits) {
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string text = written(std::string(digits, '1'), locale, status);
  NSCheckICU(status);
  return text.find(separator) != std::u16string::npos;
}

void appendCharacter(char32_t character, NSUnitBuffer& text) {
  if (character < 0x10000) [[likely]] {
    *text.extend(1) = static_cast<char16_t>(character);
  } else {
    char16_t* const units = text.extend(2);
    units[0] = U16_LEAD(character);
    units[1] = U16_TRAIL(character);
  }
}

bool isDigit(char unit) { return unit >= '0' && unit <= '9'; }

bool isOneOf(char16_t unit, std::u16string_view units) {
  return units.find(unit) != std::u16string_view::npos;
}

// What people type for one another.
constexpr std::u16string_view spaces = u" \u00A0\u2009\u202F";
constexpr std::u16string_view apostrophes = u"'\u2019";

// Marks of the writing direction, which some locales have beside the sign.
void skipDirections(std::u16string_view& text) {
  while (!text.empty() && isOneOf(text[0], u"\u200E\u200F\u061C")) text.remove_prefix(1);
}

bool takeMinus(std::u16string_view& text, std::u16string_view minus) {
  if (text.starts_with(minus)) {
    text.remove_prefix(minus.size());
    return true;
  }
  skipDirections(text);
  if (text.empty() || !isOneOf(text[0], u"-\u2212")) return false;
  text.remove_prefix(1);
  skipDirections(text);
  return true;
}

}  // namespace

NSDecimalSymbols::NSDecimalSymbols(const std::string& locale) : _locale(localeForNumbers(locale)) {
  UErrorCode status = U_ZERO_ERROR;
  const OldFormatter formatter(
      unum_open(UNUM_DECIMAL, nullptr, 0, _locale.c_str(), nullptr, &status));
  NSCheckICU(status);
  for (std::size_t digit = 0; digit < _digits.size(); ++digit) {
    const auto which =
        digit == 0
            ? UNUM_ZERO_DIGIT_SYMBOL
            : static_cast<UNumberFormatSymbol>(UNUM_ONE_DIGIT_SYMBOL + static_cast<int>(digit) - 1);
    const std::u16string units = symbol(formatter, which);
    std::u16string_view rest = units;
    _digits[digit] = NSTakeCharacter(rest);
  }
  _minus = symbol(formatter, UNUM_MINUS_SIGN_SYMBOL);
  _point = symbol(formatter, UNUM_DECIMAL_SEPARATOR_SYMBOL);
  _separator = symbol(formatter, UNUM_GROUPING_SEPARATOR_SYMBOL);
  const auto attribute = [&](UNumberFormatAttribute which) {
    return static_cast<std::size_t>(std::max(0, unum_getAttribute(formatter.get(), which)));
  };
  _lastGroup = attribute(UNUM_GROUPING_SIZE);
  _otherGroups = attribute(UNUM_SECONDARY_GROUPING_SIZE);
  if (_otherGroups == 0) _otherGroups = _lastGroup;
  constexpr std::size_t mostTried = 4;
  while (_lastGroup != 0 && !isSeparated(_locale, _separator, _lastGroup + _leastBeforeLastGroup)) {
    if (++_leastBeforeLastGroup > mostTried) _lastGroup = 0;
  }
}

void NSDecimalSymbols::append(std::string_view decimal, bool isGrouped, NSUnitBuffer& text) const {
  if (decimal.starts_with('-')) {
    text.append(_minus);
    decimal.remove_prefix(1);
  }
  const std::size_t whole = std::min(
      static_cast<std::size_t>(std::ranges::find_if_not(decimal, isDigit) - decimal.begin()),
      decimal.size());
  const bool hasGroups =
      isGrouped && _lastGroup != 0 && whole >= _lastGroup + _leastBeforeLastGroup;
  // Where the next separator belongs; there is none after the last group.
  std::size_t nextGroup = decimal.size();
  if (hasGroups) {
    nextGroup = (whole - _lastGroup) % _otherGroups;
    if (nextGroup == 0) nextGroup = _otherGroups;
  }
  for (std::size_t k = 0; k < decimal.size(); ++k) {
    const char unit = decimal[k];
    if (isDigit(unit)) {
      if (k == nextGroup && k <= whole - _lastGroup) {
        text.append(_separator);
        nextGroup += _otherGroups;
      }
      appendCharacter(_digits[static_cast<std::size_t>(unit - '0')], text);
    } else if (unit == '.') {
      text.append(_point);
    } else {
      *text.extend(1) = static_cast<char16_t>(static_cast<unsigned char>(unit));
    }
  }
}

int NSDecimalSymbols::valueOfDigit(char32_t character) const {
  if (character >= U'0' && character <= U'9') return static_cast<int>(character - U'0');
  const auto* const digit = std::ranges::find(_digits, character);
  return digit != _digits.end() ? static_cast<int>(digit - _digits.begin())
                                : NSDecimalDigitValue(character);
}

// Moves digits to the end of the number, and gives how many there were.
std::size_t NSDecimalSymbols::takeDigits(std::u16string_view& text, std::string& decimal) const {
  const std::size_t before = decimal.size();
  while (!text.empty()) {
    std::u16string_view rest = text;
    const int value = valueOfDigit(NSTakeCharacter(rest));
    if (value < 0) break;
    decimal.push_back(static_cast<char>('0' + value));
    text = rest;
  }
  return decimal.size() - before;
}

bool NSDecimalSymbols::takeSeparator(std::u16string_view& text) const {
  if (_lastGroup == 0 || text.empty() || _separator.empty()) return false;
  for (const auto& kind : {spaces, apostrophes}) {
    if (!isOneOf(_separator[0], kind) || !isOneOf(text[0], kind)) continue;
    text.remove_prefix(1);
    return true;
  }
  if (!text.starts_with(_separator)) return false;
  text.remove_prefix(_separator.size());
  return true;
}

// Takes as many groups as make a whole number.
void NSDecimalSymbols::takeWholeDigits(std::u16string_view& text, std::string& decimal) const {
  // More than doubles have: where the last group has more digits than others, a list of short
  // numbers is not read to its end for each of them.
  constexpr std::size_t mostAhead = 400;
  const std::size_t first = takeDigits(text, decimal);
  if (first == 0 || first > _otherGroups) return;
  std::size_t taken = decimal.size();
  std::size_t group = _otherGroups;
  for (std::u16string_view rest = text;
       group == _otherGroups && decimal.size() - taken < mostAhead && takeSeparator(rest);) {
    group = takeDigits(rest, decimal);
    if (group != _lastGroup) continue;
    text = rest;
    taken = decimal.size();
  }
  decimal.resize(taken);
}

std::string NSDecimalSymbols::take(std::u16string_view& text) const {
  std::u16string_view rest = text;
  std::string decimal(takeMinus(rest, _minus) ? "-" : "");
  const std::size_t start = decimal.size();
  takeWholeDigits(rest, decimal);
  if (rest.starts_with(_point)) {
    std::u16string_view fraction = rest.substr(_point.size());
    decimal.push_back('.');
    if (takeDigits(fraction, decimal) != 0) {
      rest = fraction;
    } else {
      decimal.pop_back();
    }
  }
  if (decimal.size() == start) return {};
  text = rest;
  return decimal;
}
