#include "Foundation/Text/StringSearch.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/FormSearch.h>
#include <Foundation/Text/JudgedSearch.h>
#include <Foundation/Text/NormalForm.h>
#include <Foundation/Text/UnitMembership.h>
#include <Foundation/Text/UnitSearch.h>

namespace {

constexpr std::size_t none = std::u16string_view::npos;

// Whether all units are Latin, Greek, Cyrillic or punctuation, among which are neither marks nor
// two that decompose alike: such texts are equivalent when they are equal.
bool isWithoutMarks(std::u16string_view text) {
  // A power of two is tested fastest.
  if (NSIsBelow(text, 0x200)) return true;
  constexpr std::size_t block = 256;
  for (std::size_t at = 0; at < text.size(); at += block) {
    char16_t others = 0;
    for (const char16_t unit : text.substr(at, block)) {
      const bool isKnown =
          unit < 0x200 || (unit >= 0x388 && unit < 0x483) || (unit >= 0x2010 && unit < 0x2028);
      others |= isKnown ? 0 : 1;
    }
    if (others != 0) return false;
  }
  return true;
}

// A search goes part by part, each twice as long as the one before, so that it costs what lies in
// front of its match, not what follows it.
constexpr NSUInteger firstPart = 128;

class Search {
 public:
  Search(std::u16string_view text, std::u16string_view needle, NSUInteger options, NSRange range)
      : _text(text),
        _needle(needle),
        _options(options),
        _step(NSStepOverRefused(options)),
        _start(range.location),
        _end(NSMaxRange(range)),
        _isLiteral((options & NSLiteralSearch) != 0),
        _folds((options & NSCaseInsensitiveSearch) != 0),
        _isPlain(!_folds ? _isLiteral || isWithoutMarks(needle) : NSIsASCII(needle)) {}

  [[nodiscard]] NSRange findForwards(NSBlockRef<bool(NSRange)> accept);
  [[nodiscard]] NSRange findBackwards(NSBlockRef<bool(NSRange)> accept);

 private:
  [[nodiscard]] bool isAnchored() const { return (_options & NSAnchoredSearch) != 0; }
  [[nodiscard]] NSUInteger boundaryFrom(NSUInteger at) const {
    while (at < _end && !NSIsComposedBoundary(_text, at)) ++at;
    return at;
  }
  [[nodiscard]] NSRange findPlainly(std::u16string_view units, std::u16string_view needle,
                                    NSUInteger start, NSBlockRef<bool(NSRange)> accept) const;
  [[nodiscard]] NSRange findInPart(NSUInteger start, NSUInteger limit,
                                   NSBlockRef<bool(NSRange)> accept);

  std::u16string_view _text;
  std::u16string_view _needle;
  NSUInteger _options;
  // A choice between it and a length, made for each match, would wait for the match to be stored.
  NSUInteger _step;
  NSUInteger _start;
  NSUInteger _end;
  bool _isLiteral;
  bool _folds;
  // Whether units match units: in a literal search, in texts without marks, in small letters.
  bool _isPlain;
  std::optional<NSFormSearch> _forms;
};

// Finds units of the needle as they are among units that stand for the text's from `start` on.
NSRange Search::findPlainly(std::u16string_view units, std::u16string_view needle, NSUInteger start,
                            NSBlockRef<bool(NSRange)> accept) const {
  const auto judge = [&](std::size_t place) -> std::size_t {
    const NSRange match = {start + place, needle.size()};
    const bool isWhole = _isLiteral || (NSIsComposedBoundary(_text, match.location) &&
                                        NSIsComposedBoundary(_text, NSMaxRange(match)));
    if (!isWhole) return 1;
    return accept(match) ? 0 : std::min(needle.size(), _step);
  };
  const std::size_t place = NSFindJudged(units, needle, _options, judge);
  return place == none ? NSNotFoundRange : NSRange{start + place, needle.size()};
}

// Searches from the start of a part for matches that begin before the limit; those that begin after
// it may be found too.
NSRange Search::findInPart(NSUInteger start, NSUInteger limit, NSBlockRef<bool(NSRange)> accept) {
  if (_isPlain) {
    const NSUInteger stop = boundaryFrom(limit + std::min(_needle.size() - 1, _end - limit));
    const std::u16string_view units = _text.substr(start, stop - start);
    if (!_folds && (_isLiteral || isWithoutMarks(units))) {
      return findPlainly(units, _needle, start, accept);
    }
    // For a line a copy in small letters is made faster than a plan.
    std::array<char16_t, 2 * firstPart> lower;
    if (_folds && units.size() + _needle.size() <= lower.size() && NSIsASCII(units)) {
      auto* const needle = std::ranges::transform(units, lower.data(), NSLowerASCII).out;
      auto* const end = std::ranges::transform(_needle, needle, NSLowerASCII).out;
      return findPlainly({lower.data(), needle}, {needle, end}, start, accept);
    }
  }
  if (!_forms) _forms.emplace(_text, _needle, _options);
  return _forms->find({start, _end - start}, limit, accept);
}

NSRange Search::findForwards(NSBlockRef<bool(NSRange)> accept) {
  // An anchored search looks at the start alone.
  NSUInteger size = isAnchored() ? 1 : firstPart;
  NSUInteger start = _start;
  while (start < _end) {
    const NSUInteger limit = boundaryFrom(start + std::min(size, _end - start));
    NSUInteger next = start;  // After what has been refused.
    const auto acceptOrGoOn = [&](NSRange match) {
      next = match.location + std::min(match.length, _step);
      return !accept || accept(match);
    };
    const NSRange found = findInPart(start, limit, acceptOrGoOn);
    if (found.length != 0 || (isAnchored() && next == start)) return found;
    start = isAnchored() ? next : std::max(limit, next);
    if (!isAnchored()) size *= 2;
  }
  return NSNotFoundRange;
}

NSRange Search::findBackwards(NSBlockRef<bool(NSRange)> accept) {
  NSUInteger size = firstPart;
  if (isAnchored()) {
    // A form has a unit at least for every pair.
    size = 2 * std::max(_needle.size(), NSNormalForm(_needle, _options).size());
  }
  NSUInteger limit = _end;
  while (limit > _start) {
    NSUInteger start = limit - std::min(size, limit - _start);
    while (start > _start && !NSIsComposedBoundary(_text, start)) --start;
    NSUInteger end = _end;  // Of what has not been refused.
    const auto acceptOrGoOn = [&](NSRange match) {
      end = NSMaxRange(match) - std::min(match.length, _step);
      return !accept || accept(match);
    };
    const NSRange found = findInPart(start, limit, acceptOrGoOn);
    if (found.length != 0 || isAnchored()) return found;
    limit = start;
    _end = end;
    size *= 2;
  }
  return NSNotFoundRange;
}

}  // namespace

NSRange NSSearchUnits(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                      NSRange range, NSBlockRef<bool(NSRange)> accept) {
  if (needle.empty()) return NSNotFoundRange;
  Search search(text, needle, options, range);
  if ((options & NSBackwardsSearch) == 0) return search.findForwards(accept);
  if ((options & NSOverlappingSearch) != 0) return search.findBackwards(accept);
  // Nothing follows the last match.
  const NSRange last = search.findBackwards(nullptr);
  return last.length != 0 && (!accept || accept(last)) ? last : NSNotFoundRange;
}

void NSVisitOccurrences(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                        NSRange range,
                        NSBlockRef<void(std::span<const std::size_t>, std::size_t)> visit) {
  if (needle.empty()) return;
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  const bool folds = (options & NSCaseInsensitiveSearch) != 0;
  if (folds || (!isLiteral && (!isWithoutMarks(needle) || !isWithoutMarks(text)))) {
    constexpr NSUInteger kept = NSCaseInsensitiveSearch | NSLiteralSearch;
    NSSearchUnits(text, needle, options & kept, range, [&](NSRange found) {
      visit({&found.location, 1}, found.length);
      return false;
    });
    return;
  }
  std::array<std::size_t, 64> places;
  const std::u16string_view searched = text.substr(0, NSMaxRange(range));
  std::size_t from = range.location;
  for (std::size_t count = places.size(); count == places.size();) {
    count = NSFindUnits(searched, needle, from, places);
    visit(std::span(places).first(count), needle.size());
    from = places.back() + needle.size();
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
