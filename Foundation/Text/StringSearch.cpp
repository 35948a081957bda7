#include "Foundation/Text/StringSearch.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/KnuthMorrisPratt.h>
#include <Foundation/Text/NormalForm.h>
#include <Foundation/Text/UnitMembership.h>
#include <Foundation/Text/UnitSearch.h>

namespace {

constexpr std::size_t none = std::u16string_view::npos;

struct LiteralMatcher {
  static std::size_t find(std::u16string_view text, std::u16string_view needle, std::size_t from) {
    return NSFindUnits(text, needle, from);
  }
  static bool isEqual(char16_t a, char16_t b) { return a == b; }
};

struct FoldedMatcher {
  static std::size_t find(std::u16string_view text, std::u16string_view needle, std::size_t from) {
    return NSFindASCIIFolded(text, needle, from);
  }
  static bool isEqual(char16_t a, char16_t b) { return NSLowerASCII(a) == NSLowerASCII(b); }
};

// Finds places where the units are the needle's, from left to right, until `judge` settles on one.
// It gives how many units after the place the search goes on, 0 where it ends.
template <class Matcher, class Judge>
std::size_t findForwards(std::u16string_view text, std::u16string_view needle, Judge judge) {
  // Units that may be compared for places that overlap before a search takes over that compares
  // none twice.
  std::size_t budget = 4 * text.size() + 1024;
  std::size_t from = 0;
  while (budget > 0) {
    const std::size_t place = Matcher::find(text, needle, from);
    if (place == none) return none;
    const std::size_t step = judge(place);
    if (step == 0) return place;
    if (step < needle.size()) budget -= std::min(budget, needle.size());
    from = place + step;
  }
  const std::u16string_view rest = text.substr(from);
  const NSKnuthMorrisPratt search(needle.begin(), needle.end(), Matcher::isEqual);
  std::size_t next = 0;
  const std::size_t offset = search.find(rest.begin(), rest.end(), [&](std::size_t at) {
    if (at < next) return false;
    const std::size_t step = judge(from + at);
    next = at + step;
    return step == 0;
  });
  return offset == rest.size() ? none : from + offset;
}

// Finds the first such place; with options the last, or one at an end.
template <class Matcher, class Judge>
std::size_t findPlace(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                      Judge judge) {
  if (needle.empty() || needle.size() > text.size()) return none;
  const std::size_t last = text.size() - needle.size();
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  if ((options & NSAnchoredSearch) != 0) {
    const std::size_t place = isBackwards ? last : 0;
    const std::u16string_view end = text.substr(place, needle.size());
    return std::ranges::equal(end, needle, Matcher::isEqual) && judge(place) == 0 ? place : none;
  }
  if (!isBackwards) return findForwards<Matcher>(text, needle, judge);
  const NSKnuthMorrisPratt search(needle.rbegin(), needle.rend(), Matcher::isEqual);
  const std::size_t fromEnd = search.find(
      text.rbegin(), text.rend(), [&](std::size_t offset) { return judge(last - offset) == 0; });
  return fromEnd == text.size() ? none : last - fromEnd;
}

// A text brought to a form in which equality is equality of units, with the way back: pieces[k] is
// where the k-th piece of the source begins, and where its form does.
struct Normalized {
  struct Piece {
    std::size_t source;
    std::size_t form;
  };
  std::u16string form;
  std::vector<Piece> pieces;
};

// Pieces that begin in the range; those from `limit` on only as far as they give `margin` units.
Normalized normalized(std::u16string_view text, NSUInteger options, NSRange range,
                      std::size_t limit, std::size_t margin) {
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  const auto begins = [&](std::size_t at) {
    return isLiteral ? !NSSplitsPair(text, at) : NSIsComposedBoundary(text, at);
  };
  const bool foldsCase = (options & NSCaseInsensitiveSearch) != 0;
  const std::size_t end = NSMaxRange(range);
  Normalized result;
  result.form.reserve(range.length);
  std::size_t start = range.location;
  while (start < end && !begins(start)) ++start;
  std::size_t formAtLimit = none;
  while (start < end) {
    if (start >= limit) {
      formAtLimit = std::min(formAtLimit, result.form.size());
      if (result.form.size() - formAtLimit >= margin) break;
    }
    std::size_t next = start + 1;
    while (next < text.size() && !begins(next)) ++next;
    if (next > end) break;
    result.pieces.push_back({start, result.form.size()});
    if (next == start + 1 && text[start] < 0x80) {
      result.form += foldsCase ? NSLowerASCII(text[start]) : text[start];
    } else {
      result.form += NSNormalForm(text.substr(start, next - start), options);
    }
    start = next;
  }
  result.pieces.push_back({start, result.form.size()});
  return result;
}

// Searches the forms of a text and a needle, for matches that begin and end with pieces of the
// text: for all in the range that begin before the limit.
class FormSearch {
 public:
  FormSearch(std::u16string_view text, std::u16string_view needle, NSUInteger options,
             NSRange range, std::size_t limit)
      : _wanted(NSNormalForm(needle, options)),
        _source(normalized(text, options, range, limit, _wanted.size())),
        _options(options),
        _range(range) {}

  [[nodiscard]] NSRange find(NSBlockRef<bool(NSRange)> accept) const {
    NSRange match;
    const auto judge = [&](std::size_t place) -> std::size_t {
      match = rangeAt(place);
      if (match.length == 0) return 1;
      return !accept || accept(match) ? 0 : _wanted.size();
    };
    const std::size_t place = findPlace<LiteralMatcher>(_source.form, _wanted, _options, judge);
    return place == none ? NSNotFoundRange : match;
  }

 private:
  [[nodiscard]] const Normalized::Piece* pieceAt(std::size_t place) const {
    const auto found =
        std::ranges::lower_bound(_source.pieces, place, {}, &Normalized::Piece::form);
    return found != _source.pieces.end() && found->form == place ? &*found : nullptr;
  }

  // What the form's units from `place` on stand for; empty unless these are whole pieces.
  [[nodiscard]] NSRange rangeAt(std::size_t place) const {
    const auto* const start = pieceAt(place);
    const auto* const end = pieceAt(place + _wanted.size());
    if (start == nullptr || end == nullptr) return {};
    // Pieces that do not fit into the range are left out of the form; an anchor does not move.
    const std::size_t anchor = (_options & NSBackwardsSearch) != 0 ? end->source : start->source;
    const std::size_t wanted =
        (_options & NSBackwardsSearch) != 0 ? NSMaxRange(_range) : _range.location;
    if ((_options & NSAnchoredSearch) != 0 && anchor != wanted) return {};
    return {start->source, end->source - start->source};
  }

  std::u16string _wanted;
  Normalized _source;
  NSUInteger _options;
  NSRange _range;
};

// Below the first combining mark; a power of two is tested fastest.
bool isWithoutMarks(std::u16string_view text) { return NSIsBelow(text, 0x200); }

bool isWithoutForms(std::u16string_view text, NSUInteger options) {
  if ((options & NSCaseInsensitiveSearch) != 0) return NSIsASCII(text);
  return (options & NSLiteralSearch) != 0 || NSIsComposed(text, isWithoutMarks(text));
}

// Searches a part of the range for matches that begin before the limit; those that begin after it
// may be found too. The part ends between composed characters, at least a needle's length after the
// limit or with the range.
NSRange searchPart(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                   NSRange range, NSRange part, std::size_t limit,
                   NSBlockRef<bool(NSRange)> accept) {
  const std::u16string_view units = text.substr(part.location, part.length);
  if (!isWithoutForms(needle, options) || !isWithoutForms(units, options)) {
    const NSUInteger rest = NSMaxRange(range) - part.location;
    return FormSearch(text, needle, options, {part.location, rest}, limit).find(accept);
  }
  const auto judge = [&](std::size_t place) -> std::size_t {
    const NSRange match = {part.location + place, needle.size()};
    const bool isWhole =
        (options & NSLiteralSearch) != 0 || (NSIsComposedBoundary(text, match.location) &&
                                             NSIsComposedBoundary(text, NSMaxRange(match)));
    if (!isWhole) return 1;
    return !accept || accept(match) ? 0 : needle.size();
  };
  const std::size_t place = (options & NSCaseInsensitiveSearch) != 0
                                ? findPlace<FoldedMatcher>(units, needle, options, judge)
                                : findPlace<LiteralMatcher>(units, needle, options, judge);
  return place == none ? NSNotFoundRange : NSRange{part.location + place, needle.size()};
}

// A search goes part by part, each twice as long as the one before, so that it costs what lies in
// front of its match, not what follows it.
constexpr NSUInteger firstPart = 128;

// Where the part ends whose matches begin before the limit.
NSUInteger endOfPart(std::u16string_view text, std::u16string_view needle, NSUInteger limit,
                     NSUInteger end) {
  NSUInteger at = limit + std::min<NSUInteger>(needle.size() - 1, end - limit);
  while (at < end && !NSIsComposedBoundary(text, at)) ++at;
  return at;
}

NSRange searchForwards(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                       NSRange range, NSBlockRef<bool(NSRange)> accept) {
  // An anchored search looks at the start alone.
  const bool isAnchored = (options & NSAnchoredSearch) != 0;
  const NSUInteger end = NSMaxRange(range);
  NSUInteger size = isAnchored ? 1 : firstPart;
  NSUInteger start = range.location;
  while (start < end) {
    NSUInteger limit = start + std::min(size, end - start);
    while (limit < end && !NSIsComposedBoundary(text, limit)) ++limit;
    const NSUInteger stop = endOfPart(text, needle, limit, end);
    NSUInteger next = start;  // After what has been refused.
    const auto acceptOrGoOn = [&](NSRange match) {
      next = NSMaxRange(match);
      return !accept || accept(match);
    };
    const NSRange found = searchPart(text, needle, options, {start, end - start},
                                     {start, stop - start}, limit, acceptOrGoOn);
    if (found.length != 0 || (isAnchored && next == start)) return found;
    start = isAnchored ? next : std::max(limit, next);
    if (!isAnchored) size *= 2;
  }
  return NSNotFoundRange;
}

NSRange searchBackwards(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                        NSRange range) {
  const bool isAnchored = (options & NSAnchoredSearch) != 0;
  const NSUInteger end = NSMaxRange(range);
  NSUInteger size = firstPart;
  if (isAnchored) {
    // A form has a unit at least for every pair.
    size = 2 * std::max(needle.size(), NSNormalForm(needle, options).size());
  }
  NSUInteger limit = end;
  while (limit > range.location) {
    NSUInteger start = limit - std::min(size, limit - range.location);
    while (start > range.location && !NSIsComposedBoundary(text, start)) --start;
    const NSUInteger stop = endOfPart(text, needle, limit, end);
    const NSRange found = searchPart(text, needle, options, {start, end - start},
                                     {start, stop - start}, limit, nullptr);
    if (found.length != 0 || isAnchored) return found;
    limit = start;
    size *= 2;
  }
  return NSNotFoundRange;
}

}  // namespace

NSRange NSSearchUnits(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                      NSRange range, NSBlockRef<bool(NSRange)> accept) {
  if (needle.empty()) return NSNotFoundRange;
  if ((options & NSBackwardsSearch) == 0) {
    return searchForwards(text, needle, options, range, accept);
  }
  // Nothing follows the last match.
  const NSRange last = searchBackwards(text, needle, options, range);
  return last.length != 0 && (!accept || accept(last)) ? last : NSNotFoundRange;
}

void NSVisitOccurrences(std::u16string_view text, std::u16string_view needle,
                        NSBlockRef<void(std::span<const NSRange>)> visit) {
  if (needle.empty()) return;
  const auto visitFrom = [&](std::size_t from) {
    NSSearchUnits(text, needle, 0, {from, text.size() - from}, [&](NSRange found) {
      visit({&found, 1});
      return false;
    });
  };
  const bool hasNoMarks = isWithoutMarks(text);
  if (!isWithoutForms(needle, 0) || !NSIsComposed(text, hasNoMarks)) return visitFrom(0);
  const NSKnuthMorrisPratt linear(needle.begin(), needle.end(), LiteralMatcher::isEqual);
  std::array<std::size_t, 64> places;
  std::array<NSRange, places.size()> ranges;
  std::size_t from = 0;
  for (std::size_t found = places.size(); found == places.size();) {
    found = NSFindUnits(text, needle, from, places);
    std::size_t count = 0;
    for (const std::size_t place : std::span(places).first(found)) {
      from = place + needle.size();
      if (hasNoMarks || (NSIsComposedBoundary(text, place) && NSIsComposedBoundary(text, from))) {
        ranges[count++] = {place, needle.size()};
      } else if (linear.overlapsItself()) {
        // A place that cuts a composed character is no match, but one that overlaps it may be.
        visit(std::span(ranges).first(count));
        return visitFrom(place + 1);
      }
    }
    visit(std::span(ranges).first(count));
  }
}

NSRange NSSearchMember(const NSCharacterSet& set, std::u16string_view text, NSUInteger options) {
  constexpr auto characters = NSMembership::characters;
  if (text.empty()) return NSNotFoundRange;
  const auto startOf = [&](std::size_t last) { return last - (NSSplitsPair(text, last) ? 1 : 0); };
  const auto widthAt = [&](std::size_t at) { return NSSplitsPair(text, at + 1) ? 2U : 1U; };
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  std::size_t place = 0;
  if ((options & NSAnchoredSearch) != 0) {
    if (isBackwards) place = startOf(text.size() - 1);
    const std::u16string_view end = text.substr(place, widthAt(place));
    if (NSFirstMember(set, end, 0, characters) == none) return NSNotFoundRange;
  } else if (isBackwards) {
    const std::size_t end = NSEndOfLastMember(set, text, characters);
    if (end == 0) return NSNotFoundRange;
    place = startOf(end - 1);
  } else {
    place = NSFirstMember(set, text, 0, characters);
    if (place == none) return NSNotFoundRange;
  }
  return {place, widthAt(place)};
}

std::size_t NSStartOfRun(const NSCharacterSet& set, std::u16string_view text, std::size_t index) {
  return NSEndOfLastMember(set, text.substr(0, index), NSMembership::characters);
}

std::size_t NSEndOfRun(const NSCharacterSet& set, std::u16string_view text, std::size_t index) {
  const std::size_t after = NSFirstMember(set, text.substr(index), 0, NSMembership::characters);
  return after == none ? text.size() : index + after;
}

std::size_t NSCountMembersAtEnd(const NSCharacterSet& set, std::u16string_view text,
                                NSUInteger options) {
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  std::size_t count = 0;
  while (count < text.size()) {
    const char16_t unit = text[isBackwards ? text.size() - 1 - count : count];
    std::size_t width = set.characterIsMember(unit) ? 1 : 0;
    if (NSIsSurrogate(unit)) {
      const std::u16string_view rest =
          isBackwards ? text.substr(0, text.size() - count) : text.substr(count);
      width = NSSearchMember(set, rest, options | NSAnchoredSearch).length;
    }
    if (width == 0) break;
    count += width;
  }
  return count;
}
