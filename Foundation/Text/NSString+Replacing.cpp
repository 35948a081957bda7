#include <array>
#include <span>
#include <utility>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/StringSearch.h>

namespace {

struct Replaced {
  NSUInteger count = 0;
  // Up to where the text has been copied to the result.
  NSUInteger kept = 0;
};

// Appends the text up to the last occurrence in the range, with the occurrences replaced.
Replaced appendReplaced(std::u16string_view text, std::u16string_view target, NSUInteger options,
                        NSRange range, std::u16string_view replacement, NSUnitBuffer& result) {
  Replaced replaced;
  const auto replace = [&](NSRange match) {
    result.append(text.substr(replaced.kept, match.location - replaced.kept));
    result.append(replacement);
    replaced.kept = NSMaxRange(match);
    ++replaced.count;
  };
  if ((options & NSAnchoredSearch) != 0) {
    const NSRange match = NSSearchUnits(text, target, options, range);
    if (match.length != 0) replace(match);
  } else {
    NSForEachOccurrence(text, target, options, range, replace);
  }
  return replaced;
}

}  // namespace

NSRef<NSString> NSString::stringByReplacingOccurrencesOfString_withString_options_range(
    const NSRef<NSString>& target, const NSRef<NSString>& replacement,
    NSOptions<NSStringCompareOptions> options, NSRange range) const {
  NSCheckRange("stringByReplacingOccurrencesOfString:withString:options:range:", range, length());
  std::array<char16_t, 512> room;
  NSUnitBuffer result{std::span(room)};
  const auto [count, kept] =
      appendReplaced(view(), NSViewOf(target), options, range, NSViewOf(replacement), result);
  if (count == 0) return copy();
  result.append(view().substr(kept));
  return NSMake<NSString>(std::move(result));
}

NSUInteger NSMutableString::replaceOccurrencesOfString_withString_options_range(
    const NSRef<NSString>& target, const NSRef<NSString>& replacement,
    NSOptions<NSStringCompareOptions> options, NSRange range) {
  NSCheckRange("replaceOccurrencesOfString:withString:options:range:", range, length());
  std::array<char16_t, 512> room;
  NSUnitBuffer result{std::span(room)};
  const auto [count, kept] =
      appendReplaced(view(), NSViewOf(target), options, range, NSViewOf(replacement), result);
  if (count == 0) return 0;
  result.append(view().substr(kept));
  text() = std::move(result);
  return count;
}
