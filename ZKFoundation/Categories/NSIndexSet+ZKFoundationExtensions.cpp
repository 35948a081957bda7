#include "ZKFoundation/Categories/NSIndexSet+ZKFoundationExtensions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace ZKFoundationExtensions {

NSRef<NSMutableIndexSet> indexesInRange(const NSRef<NSIndexSet>& indexes, NSRange range) {
  NSCheckArgument("indexesInRange:", "indexes", indexes);
  const auto runs = indexes->ranges();
  const auto first = std::ranges::upper_bound(runs, range.location, {}, NSMaxRange);
  const auto end =
      std::lower_bound(first, runs.end(), NSClampedMaxRange(range),
                       [](const NSRange& run, NSUInteger index) { return run.location < index; });
  std::vector<NSRange> part(first, end);
  if (!part.empty()) {
    // The first run may begin before the range, the last one end after it.
    part.front() = NSIntersectionRange(part.front(), range);
    part.back() = NSIntersectionRange(part.back(), range);
  }
  return NSMake<NSMutableIndexSet>(std::move(part));
}

NSRef<NSString> stringValueWithSeparator(const NSRef<NSIndexSet>& indexes,
                                         const NSRef<NSString>& separator) {
  NSCheckArgument("stringValueWithSeparator:", "indexes", indexes);
  const std::u16string_view between = separator ? separator->view() : u"(null)";
  NSUnitBuffer text;
  for (const NSRange& run : indexes->ranges()) {
    for (NSUInteger index = run.location; index < NSMaxRange(run); ++index) {
      if (text.size() != 0) text.append(between);
      text.appendDecimal(index);
    }
  }
  return NSMake<NSString>(std::move(text));
}

}  // namespace ZKFoundationExtensions
