#include "fuzz/Support.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;
using namespace std::chrono_literals;

namespace {

// Takes the text up to the first NUL off its start.
NSRef<NSString> takeText(std::u16string& units) {
  const std::size_t end = std::min(units.find(u'\0'), units.size());
  auto text = NSMake<NSString>(units.substr(0, end));
  units.erase(0, end + 1);
  return text;
}

}  // namespace

// Two bytes of options, then, each up to a NUL, a needle, which may be a regular expression, and a
// replacement for it, then the text: what is found lies in the text, and all of it is replaced, or
// there is an error and nothing has changed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const NSUInteger options = (data[0] % 16U) | (data[0] < 128 ? ZKRegularExpressionSearch : 0);
  std::u16string units = unitsOf(data + 2, size - 2);
  const auto needle = takeText(units);
  const auto replacement = takeText(units);
  const auto finder = NSMake<ZKTextFinder>(needle, options, ZKWordCompareOption(data[1] % 8U));
  finder->setTimeLimit(100ms);
  const auto text = NSMake<NSMutableString>(std::move(units));
  const NSUInteger length = text->length();

  NSRef<NSError> error;
  const auto matches = finder->matchesInString(text, &error);
  require(!error || matches.empty());
  require(!finder->needleError() || error || needle->length() == 0);
  NSUInteger end = 0;
  NSUInteger matched = 0;
  for (const NSRange match : matches) {
    require(match.location >= end && NSRangeFits(match, length));
    end = NSMaxRange(match);
    matched += match.length;
  }
  const NSRange selection = {length / 2, length / 4};
  // On a busy machine a search may end at its time limit and the next one not.
  NSRef<NSError> nextError;
  const auto next = finder->nextMatchInString_selectedRange(text, selection, &nextError);
  require(!next || NSRangeFits(next->words, length));
  require(!next || NSIntersectionRange(next->words, next->match) == next->match ||
          next->match.length == 0);

  NSRange carried = selection;
  const auto copy = text->copy();
  NSRef<NSError> failure;
  const NSUInteger count =
      finder->replaceAllInString_withString_selectedRange(text, replacement, &carried, &failure);
  require(failure ? count == 0 && text->isEqual(copy) : error || count == matches.size());
  require(NSRangeFits(carried, text->length()));
  if ((options & ZKRegularExpressionSearch) == 0 && !failure) {
    require(text->length() + matched == length + count * replacement->length());
  }
  NSRange selected = selection;
  const auto again = copy->mutableCopy();
  (void)finder->replaceNextInString_withString_selectedRange(again, replacement, &selected,
                                                             &failure);
  require(NSRangeFits(selected, again->length()));
  return 0;
}
