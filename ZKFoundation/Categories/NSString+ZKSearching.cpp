#include "ZKFoundation/Categories/NSString+ZKSearching.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

#include <Foundation/Locales/Capitalization.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/Text/StringSearch.h>
#include <Foundation/Text/UnitMembership.h>
#include <ZKFoundation/Categories/NSCharacterSet+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSString+ZKEditing.h>

namespace {

const NSRef<NSCharacterSet>& alphanumerics() { return NSCharacterSet::alphanumericCharacterSet(); }

const NSRef<NSCharacterSet>& nonWhitespace() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      NSCharacterSet::whitespaceAndNewlineCharacterSet()->invertedSet());
  return *set;
}

// The start of the character that the unit belongs to.
NSUInteger startOfCharacter(std::u16string_view text, NSUInteger index) {
  return NSSplitsPair(text, index) ? index - 1 : index;
}

// The character that a unit belongs to, and what ends the run of word characters, or of others,
// that it stands in.
struct WordPlace {
  WordPlace(std::u16string_view text, NSUInteger index) : start(startOfCharacter(text, index)) {
    std::u16string_view rest = text.substr(start);
    const char32_t character = NSTakeCharacter(rest);
    const auto& boundaries = *ZKFoundationExtensions::wordBoundariesCharacterSet();
    delimiters = boundaries.longCharacterIsMember(character) ? alphanumerics().get() : &boundaries;
  }

  NSUInteger start;
  const NSCharacterSet* delimiters;
};

NSRange wordAt(std::u16string_view text, const WordPlace& place) {
  return NSRunWithoutMembers(*place.delimiters, text, place.start);
}

bool isAccepted(NSRange match, NSRange word, NSUInteger condition) {
  switch (condition) {
    case ZKWordCompareWhole:
      return word == match;
    case ZKWordCompareStart:
      return word.location == match.location;
    case ZKWordCompareEnd:
      return NSMaxRange(word) == NSMaxRange(match);
    default:
      return true;
  }
}

// Whether a unit beside a match shows that its word goes on there, which the condition forbids.
// It tells most matches that are refused, so that their words need not be walked.
bool goesOn(std::u16string_view text, NSRange match, const WordPlace& place, NSUInteger condition) {
  const auto isInWord = [&](char16_t unit) {
    return !NSIsSurrogate(unit) && !place.delimiters->characterIsMember(unit);
  };
  const NSUInteger end = NSMaxRange(match);
  const bool asksStart = condition == ZKWordCompareWhole || condition == ZKWordCompareStart;
  const bool asksEnd = condition == ZKWordCompareWhole || condition == ZKWordCompareEnd;
  return (asksEnd && end < text.size() && isInWord(text[end])) ||
         (asksStart && match.location > 0 && isInWord(text[match.location - 1]));
}

// Moves a selection over the removal of a range that lies before, in or after it.
void removeFromSelection(NSRange removed, NSRange& selection) {
  if (removed.location < selection.location) {
    // At most to 0, where the selection began inside a removed pair at the very start.
    selection.location -= std::min(selection.location, removed.length);
  } else if (removed.location - selection.location < selection.length) {
    const bool reachesBeyond = NSMaxRange(selection) >= NSMaxRange(removed);
    selection.length = reachesBeyond ? selection.length - removed.length : 0;
  }
}

struct SmallWord {
  std::u16string_view capitalized;
  std::u16string_view lower;
};
constexpr std::array<SmallWord, 5> smallWords{{
    {u"A", u"a"},
    {u"An", u"an"},
    {u"The", u"the"},
    {u"Of", u"of"},
    {u"And", u"and"},
}};

// How a word is written after others: a small word in lower case, unless the first word, which
// shields its own later occurrences, is the same.
std::u16string_view laterForm(std::u16string_view word, std::u16string_view firstWord) {
  constexpr std::size_t longest = 3;
  if (word.size() > longest || word == firstWord) return word;
  const auto small = std::ranges::find(smallWords, word, &SmallWord::capitalized);
  return small == smallWords.end() ? word : small->lower;
}

}  // namespace

namespace ZKFoundationExtensions {

NSRange findString_selectedRange_options_wrap(const NSRef<NSString>& string,
                                              const NSRef<NSString>& needle, NSRange selectedRange,
                                              NSOptions<NSStringCompareOptions> options,
                                              bool wrap) {
  NSCheckArgument("findString:selectedRange:options:wrap:", "string", string);
  NSCheckRange("findString:selectedRange:options:wrap:", selectedRange, string->length());
  const NSUInteger end = NSMaxRange(selectedRange);
  NSRange first = {end, string->length() - end};
  NSRange second = {0, selectedRange.location};
  if ((options & NSBackwardsSearch) != 0) std::swap(first, second);
  const NSRange found = string->rangeOfString_options_range(needle, options, first);
  if (found.length != 0 || !wrap) return found;
  return string->rangeOfString_options_range(needle, options, second);
}

NSRange findString_searchRange_options_wordCompareOption(
    const NSRef<NSString>& string, const NSRef<NSString>& needle, NSRange searchRange,
    NSOptions<NSStringCompareOptions> options, NSOptions<ZKWordCompareOption> wordCompareOption) {
  NSCheckArgument("findString:searchRange:options:wordCompareOption:", "string", string);
  NSCheckRange("findString:searchRange:options:wordCompareOption:", searchRange, string->length());
  const std::u16string_view text = string->view();
  const NSUInteger anyBit = ZKWordCompareAny;
  if ((wordCompareOption & ~anyBit) == 0) {
    return NSSearchUnits(text, NSViewOf(needle), options, searchRange);
  }
  NSRange word;
  const auto accept = [&](NSRange match) {
    // Matches in one long word are judged by it without walking it again.
    if (!NSLocationInRange(match.location, word)) {
      const WordPlace place(text, match.location);
      if (goesOn(text, match, place, wordCompareOption)) return false;
      word = wordAt(text, place);
    }
    return isAccepted(match, word, wordCompareOption);
  };
  const NSUInteger known = options & ~NSOverlappingSearch;
  const NSRange match = NSSearchUnits(text, NSViewOf(needle), known, searchRange, accept);
  return match.length == 0 ? match : word;
}

NSRange rangeOfCharactersAtIndex_delimitedBy(const NSRef<NSString>& string, NSUInteger index,
                                             const NSRef<NSCharacterSet>& delimiters) {
  NSCheckArgument("rangeOfCharactersAtIndex:delimitedBy:", "string", string);
  if (index > string->length()) {
    NSRaiseIndexOutOfBounds("rangeOfCharactersAtIndex:delimitedBy:", index, string->length());
  }
  const NSUInteger start = startOfCharacter(string->view(), index);
  return rangeWithoutCharactersFromSet_atIndex(string, delimiters, start);
}

NSRange rangeOfWordContainingCharacter(const NSRef<NSString>& string, NSUInteger index) {
  NSCheckArgument("rangeOfWordContainingCharacter:", "string", string);
  NSCheckIndex("rangeOfWordContainingCharacter:", index, string->length());
  const std::u16string_view text = string->view();
  return wordAt(text, WordPlace(text, index));
}

NSRange rangeOfWordsIntersectingRange(const NSRef<NSString>& string, NSRange range) {
  NSCheckArgument("rangeOfWordsIntersectingRange:", "string", string);
  const std::u16string_view text = string->view();
  if (range.length == 0) return {0, 0};
  NSCheckRange("rangeOfWordsIntersectingRange:", range, text.size());
  const WordPlace first(text, range.location);
  const WordPlace last(text, NSMaxRange(range) - 1);
  const NSUInteger start = NSStartOfRun(*first.delimiters, text, first.start);
  return {start, NSEndOfRun(*last.delimiters, text, last.start) - start};
}

NSRange trimRange_prefixRange_postfixRange_trimOptions(const NSRef<NSString>& string, NSRange range,
                                                       NSRange* prefixRange, NSRange* postfixRange,
                                                       NSOptions<ZKTrimOptions> trimOptions) {
  NSCheckArgument("trimRange:prefixRange:postfixRange:trimOptions:", "string", string);
  NSCheckRange("trimRange:prefixRange:postfixRange:trimOptions:", range, string->length());
  const bool trimsStart = (trimOptions & ZKTrimStart) != 0;
  const bool trimsEnd = (trimOptions & ZKTrimEnd) != 0;
  const auto blankRun = [&](bool isTrimmed, NSUInteger index) {
    return isTrimmed ? rangeWithoutCharactersFromSet_atIndex(string, nonWhitespace(), index)
                     : NSRange{index, 0};
  };
  const NSUInteger end = NSMaxRange(range);
  const NSRange prefix = blankRun(trimsStart, range.location);
  const NSRange postfix = blankRun(trimsEnd, end);
  if (prefixRange != nullptr) *prefixRange = prefix;
  if (postfixRange != nullptr) *postfixRange = postfix;

  // A run may reach over the other end of the range; then nothing is left.
  const auto lengthTo = [](NSUInteger limit, NSUInteger start) {
    return limit > start ? limit - start : 0;
  };
  NSRange result = range;
  if (trimsStart) result = {NSMaxRange(prefix), lengthTo(end, NSMaxRange(prefix))};
  if (trimsEnd && prefix.location != postfix.location) {
    result.length = lengthTo(postfix.location, result.location);
  }
  return result;
}

NSRef<NSMutableString> normalizedSubStringWithRange_selectedRange(const NSRef<NSString>& string,
                                                                  NSRange range,
                                                                  NSRange* selectedRange) {
  NSCheckArgument("normalizedSubStringWithRange:selectedRange:", "string", string);
  const char* const operation = "normalizedSubStringWithRange:selectedRange:";
  NSCheckRange(operation, range, string->length());
  if (selectedRange == nullptr) NSRaiseNilArgument("selectedRange", operation);
  NSCheckRange(operation, *selectedRange, string->length());
  if (selectedRange->location < range.location) {
    NSRaiseRangeOutOfBounds(operation, *selectedRange, string->length());
  }
  const std::u16string_view text = string->view().substr(range.location, range.length);
  const auto& set = controlAndAttachmentCharacterSet();
  NSRange selection = {selectedRange->location - range.location, selectedRange->length};

  std::array<std::byte, 512> room;
  std::pmr::monotonic_buffer_resource memory(room.data(), room.size());
  std::pmr::vector<NSRange> removed(&memory);
  NSForEachMember(*set, text, NSMembership::characters, [&](std::size_t place) {
    if (NSSplitsPair(text, place)) {
      removed.back().length = 2;
    } else {
      removed.push_back({place, 1});
    }
  });
  auto normalized = NSMutableString::stringWithCapacity(text.size());
  NSUnitBuffer& kept = normalized->units();
  char16_t* const out = kept.extend(text.size());
  kept.truncate(NSCopyNonMembers(*set, text, NSMembership::characters, out));
  // From the last to the first, so that what has been removed moves nothing that is still to go.
  std::ranges::reverse(removed);
  for (const NSRange next : removed) removeFromSelection(next, selection);
  *selectedRange = selection;
  return normalized;
}

NSRef<NSString> titlecaseString(const NSRef<NSString>& string) {
  NSCheckArgument("titlecaseString", "string", string);
  std::array<char16_t, 256> line;
  NSUnitBuffer capitalized{std::span(line)};
  NSAppendCapitalized(string->view(), capitalized);
  const std::u16string_view text = capitalized.view();
  // Titles of a line are put together beside the string, so that it gets the memory it needs.
  std::array<char16_t, 256> shortened;
  NSUnitBuffer result{std::span(shortened)};
  result.reserve(text.size());
  std::u16string_view firstWord;
  std::size_t start = 0;
  const auto end = [&](std::size_t place) {
    const std::u16string_view word = text.substr(start, place - start);
    start = place + 1;
    if (word.empty()) return;
    if (firstWord.empty()) {
      firstWord = word;
      result.append(word);
    } else {
      result.append(u" ");
      result.append(laterForm(word, firstWord));
    }
  };
  NSForEachMember(*NSCharacterSet::whitespaceCharacterSet(), text, NSMembership::units, end);
  end(text.size());
  return NSMake<NSString>(std::move(result));
}

}  // namespace ZKFoundationExtensions
