#include "Foundation/Text/RegularExpression.h"

#include <algorithm>
#include <array>

#include <unicode/uchar.h>
#include <unicode/uregex.h>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ICU.h>

namespace {

struct PatternFault {
  UErrorCode status;
  const char* text;
};
constexpr std::array patternFaults{
    PatternFault{U_REGEX_RULE_SYNTAX, "something cannot stand there"},
    PatternFault{U_REGEX_BAD_ESCAPE_SEQUENCE, "no such escape sequence"},
    PatternFault{U_REGEX_PROPERTY_SYNTAX, "no such property"},
    PatternFault{U_REGEX_UNIMPLEMENTED, "this is not supported"},
    PatternFault{U_REGEX_MISMATCHED_PAREN, "a parenthesis has no partner"},
    PatternFault{U_REGEX_NUMBER_TOO_BIG, "the number is too large"},
    PatternFault{U_REGEX_BAD_INTERVAL, "the bounds of the repetition cannot be read"},
    PatternFault{U_REGEX_MAX_LT_MIN, "the repetition ends below its start"},
    PatternFault{U_REGEX_INVALID_BACK_REF, "no such group"},
    PatternFault{U_REGEX_LOOK_BEHIND_LIMIT, "what is looked back at may be of any length"},
    PatternFault{U_REGEX_MISSING_CLOSE_BRACKET, "a bracket is not closed"},
    PatternFault{U_REGEX_INVALID_RANGE, "the range ends below its start"},
    PatternFault{U_REGEX_PATTERN_TOO_BIG, "the pattern is too large"},
    PatternFault{U_REGEX_INVALID_CAPTURE_GROUP_NAME, "no group can have that name"},
};

std::string placeText(std::size_t place) { return " (before unit " + std::to_string(place) + ")"; }

std::string faultText(UErrorCode status, const UParseError& place) {
  const auto* const known = std::ranges::find(patternFaults, status, &PatternFault::status);
  std::string text = known == patternFaults.end() ? u_errorName(status) : known->text;
  if (place.offset >= 0 && place.line <= 1) {
    text += placeText(static_cast<std::size_t>(place.offset));
  }
  return text;
}

// The unit that a pattern begins with, as it stands or as an escape, which is taken off.
char32_t takeUnit(std::u16string_view& pattern) {
  const auto take = [&] {
    const char16_t unit = pattern[0];
    pattern.remove_prefix(1);
    return unit;
  };
  const char16_t unit = take();
  if (unit != u'\\' || pattern.empty()) return unit;
  const char16_t kind = take();
  const bool isBraced = kind == u'x' && pattern.starts_with(u'{');
  if (isBraced) take();
  const int longest = kind == u'u' ? 4 : kind == u'U' || isBraced ? 8 : 0;
  if (longest == 0) return kind;
  char32_t value = 0;
  for (int count = 0; count < longest && !pattern.empty() && u_isxdigit(pattern[0]); ++count) {
    value = value * 16 + static_cast<char32_t>(u_digit(take(), 16));
  }
  return value;
}

// Where a pattern has half of a surrogate pair, if it has. ICU would find it in pairs, and when it
// goes back over what it has matched from between the halves, step past the start of the text.
std::optional<std::size_t> placeOfHalf(std::u16string_view pattern) {
  std::optional<std::size_t> openPair;
  for (std::u16string_view rest = pattern; !rest.empty();) {
    const std::size_t place = pattern.size() - rest.size();
    const char32_t unit = takeUnit(rest);
    if (NSIsLowSurrogate(unit)) {
      if (!openPair) return place;
      openPair = std::nullopt;
    } else if (openPair) {
      return openPair;
    } else if (NSIsHighSurrogate(unit)) {
      openPair = place;
    }
  }
  return openPair;
}

UBool isInTime(const void* limit) {
  return static_cast<UBool>(std::chrono::steady_clock::now() <
                            *static_cast<const NSRegularExpression::Time*>(limit));
}

}  // namespace

NSRegularExpression::NSRegularExpression(std::u16string_view pattern, bool ignoresCase) {
  if (const auto place = placeOfHalf(pattern)) {
    _fault = "half of a surrogate pair cannot be searched for" + placeText(*place);
    return;
  }
  const std::uint32_t flags = UREGEX_MULTILINE | UREGEX_ERROR_ON_UNKNOWN_ESCAPES |
                              (ignoresCase ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U);
  UErrorCode status = U_ZERO_ERROR;
  UParseError place{-1, -1, {}, {}};
  _expression = uregex_open(NSICUText(pattern), NSICULength(pattern), flags, &place, &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) {
    _fault = faultText(status, place);
    _expression = nullptr;
    return;
  }
  const auto matching = [](const void* limit, std::int32_t /*steps*/) { return isInTime(limit); };
  const auto finding = [](const void* limit, std::int64_t /*index*/) { return isInTime(limit); };
  uregex_setMatchCallback(_expression, matching, &_limit, &status);
  uregex_setFindProgressCallback(_expression, finding, &_limit, &status);
  NSCheckICU(status);
}

NSRegularExpression::~NSRegularExpression() { uregex_close(_expression); }

int NSRegularExpression::groupCount() const noexcept {
  UErrorCode status = U_ZERO_ERROR;
  return uregex_groupCount(_expression, &status);
}

std::optional<int> NSRegularExpression::groupWithName(std::u16string_view name) const {
  UErrorCode status = U_ZERO_ERROR;
  const int number =
      uregex_groupNumberFromName(_expression, NSICUText(name), NSICULength(name), &status);
  if (U_FAILURE(status)) return std::nullopt;
  return number;
}

void NSRegularExpression::setText(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  uregex_setText(_expression, NSICUText(text), NSICULength(text), &status);
  uregex_useAnchoringBounds(_expression, 0, &status);
  uregex_useTransparentBounds(_expression, 1, &status);
  NSCheckICU(status);
  _text = text;
}

std::optional<NSRange> NSRegularExpression::find(NSRange range, Time limit) {
  _limit = limit;
  // No match begins between the halves of a pair, where ICU might step past the start of the text.
  if (NSSplitsPair(_text, range.location)) {
    if (range.length == 0) return NSNotFoundRange;
    range = {range.location + 1, range.length - 1};
  }
  UErrorCode status = U_ZERO_ERROR;
  uregex_setRegion64(_expression, static_cast<std::int64_t>(range.location),
                     static_cast<std::int64_t>(NSMaxRange(range)), &status);
  const bool isFound = uregex_findNext(_expression, &status) != 0;
  if (status == U_REGEX_STOPPED_BY_CALLER || status == U_REGEX_STACK_OVERFLOW) return std::nullopt;
  NSCheckICU(status);
  return isFound ? group(0) : NSNotFoundRange;
}

NSRange NSRegularExpression::group(int number) const {
  UErrorCode status = U_ZERO_ERROR;
  const std::int64_t start = uregex_start64(_expression, number, &status);
  const std::int64_t end = uregex_end64(_expression, number, &status);
  NSCheckICU(status);
  if (start < 0) return NSNotFoundRange;
  return {static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)};
}
