#include "fuzz/Support.h"

#include <algorithm>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

// Two bytes of options, then the needle up to the first NUL, then the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const NSUInteger options = data[0] % 16U;
  const NSUInteger condition = data[1] % 8U;
  const std::u16string units = unitsOf(data + 2, size - 2);
  const std::size_t end = std::min(units.find(u'\0'), units.size());
  const auto needle = NSMake<NSString>(units.substr(0, end));
  const auto string = NSMake<NSString>(units.substr(std::min(end + 1, units.size())));

  const NSRange found = string->rangeOfString_options(needle, options);
  if (found.length != 0) {
    require(NSRangeFits(found, string->length()));
    const auto match = string->substringWithRange(found);
    require(NSCompareUnits(match->view(), needle->view(), options) == NSOrderedSame);
    require(found ==
            string->rangeOfString_options_range(needle, options | NSAnchoredSearch, found));
  }
  const NSRange selection = {string->length() / 2, string->length() / 4};
  const NSRange next =
      findString_selectedRange_options_wrap(string, needle, selection, options, true);
  require(next.length == 0 || NSMaxRange(next) <= selection.location ||
          next.location >= NSMaxRange(selection));
  const NSRange word = findString_searchRange_options_wordCompareOption(
      string, needle, {0, string->length()}, options, condition);
  require(word.length == 0 || NSRangeFits(word, string->length()));
  return 0;
}
