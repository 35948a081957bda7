#include "fuzz/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto string = NSMake<NSString>(unitsOf(data, size));
  const NSUInteger length = string->length();
  for (NSUInteger at = 0; at < length; ++at) {
    const NSRange word = rangeOfWordContainingCharacter(string, at);
    require(NSRangeFits(word, length) && NSLocationInRange(at, word));
    const NSRange range = {at, (length - at) / 2};
    NSRange prefix;
    NSRange postfix;
    for (NSUInteger options = 0; options < 4; ++options) {
      const NSRange trimmed =
          trimRange_prefixRange_postfixRange_trimOptions(string, range, &prefix, &postfix, options);
      require(NSRangeFits(trimmed, length) && NSRangeFits(prefix, length) &&
              NSRangeFits(postfix, length));
    }
    require(NSRangeFits(rangeOfWordsIntersectingRange(string, range), length));
  }
  NSRange selection = {length / 3, length / 3};
  const auto normalized =
      normalizedSubStringWithRange_selectedRange(string, {0, length}, &selection);
  require(NSRangeFits(selection, normalized->length() + 1));
  const auto title = titlecaseString(string);
  require(!title->hasPrefix(u" "_ns) && !title->hasSuffix(u" "_ns));
  return 0;
}
