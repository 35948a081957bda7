#include "Foundation/NSStringSearch.h"

#include "Foundation/NSICU.h"
#include "Foundation/NSLinearSearch.h"
#include "Foundation/NSUnicode.h"
#include "Foundation/NSUnitMembership.h"
#include "Foundation/NSUnitSearch.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace {

constexpr std::size_t none = std::u16string_view::npos;

const UNormalizer2* composition() {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const instance = unorm2_getNFCInstance(&status);
  NSCheckICU(status);
  return instance;
}

const UNormalizer2* decomposition() {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const instance = unorm2_getNFDInstance(&status);
  NSCheckICU(status);
  return instance;
}

char32_t characterAt(std::u16string_view text, std::size_t at) {
  std::u16string_view rest = text.substr(at);
  return NSTakeCharacter(rest);
}

bool splitsPair(std::u16string_view text, std::size_t at) {
  return at > 0 && at < text.size() && NSIsHighSurrogate(text[at - 1]) &&
         NSIsLowSurrogate(text[at]);
}

// All below the first combining mark: composed, decomposed and equivalent to nothing but itself.
constexpr char16_t firstMark = 0x300;

// Whether a composed character may end, and another begin, in front of the unit.
bool isBoundary(std::u16string_view text, std::size_t at) {
  if (at == 0 || at == text.size() || text[at] < firstMark) return true;
  if (splitsPair(text, at)) return false;
  const auto character = static_cast<UChar32>(characterAt(text, at));
  return (U_GET_GC_MASK(character) & U_GC_M_MASK) == 0 &&
         unorm2_hasBoundaryBefore(composition(), character) != 0;
}

char16_t lowerASCII(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
}

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
  static bool isEqual(char16_t a, char16_t b) { return lowerASCII(a) == lowerASCII(b); }
};

// Finds, unit by unit, what `accept` agrees to.
template <class Matcher, class Accept>
std::size_t findPlace(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                      Accept accept) {
  if (needle.empty() || needle.size() > text.size()) return none;
  const std::size_t last = text.size() - needle.size();
  const auto matches = [&](std::size_t place) {
    return std::ranges::equal(text.substr(place, needle.size()), needle, Matcher::isEqual) &&
           accept(place);
  };
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  if ((options & NSAnchoredSearch) != 0) {
    const std::size_t place = isBackwards ? last : 0;
    return matches(place) ? place : none;
  }
  if (isBackwards) {
    const NSLinearSearch search(needle.rbegin(), needle.rend(), Matcher::isEqual);
    const std::size_t fromEnd = search.find(
        text.rbegin(), text.rend(), [&](std::size_t offset) { return accept(last - offset); });
    return fromEnd == text.size() ? none : last - fromEnd;
  }
  std::size_t place = Matcher::find(text, needle, 0);
  while (place != none && !accept(place)) place = Matcher::find(text, needle, place + 1);
  return place;
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

std::u16string decomposed(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  std::u16string result(text.size() * 4, u'\0');
  auto capacity = NSICULength(result);
  auto length = unorm2_normalize(decomposition(), NSICUText(text), NSICULength(text), result.data(),
                                 capacity, &status);
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    status = U_ZERO_ERROR;
    result.resize(static_cast<std::size_t>(length));
    capacity = length;
    length = unorm2_normalize(decomposition(), NSICUText(text), NSICULength(text), result.data(),
                              capacity, &status);
  }
  NSCheckICU(status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::u16string folded(std::u16string_view text) {
  // No unit's default folding is longer than three.
  std::u16string result(text.size() * 3, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const auto length = u_strFoldCase(result.data(), NSICULength(result), NSICUText(text),
                                    NSICULength(text), U_FOLD_CASE_DEFAULT, &status);
  if (status != U_STRING_NOT_TERMINATED_WARNING) NSCheckICU(status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::u16string normalForm(std::u16string_view text, NSUInteger options) {
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  if ((options & NSCaseInsensitiveSearch) == 0) return decomposed(text);
  // Decomposed before and after: canonical caseless matching (Unicode, D145).
  return isLiteral ? folded(text) : decomposed(folded(decomposed(text)));
}

// Pieces that begin in the range; those from `limit` on only as far as they give `margin` units.
Normalized normalized(std::u16string_view text, NSUInteger options, NSRange range,
                      std::size_t limit, std::size_t margin) {
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  const auto begins = [&](std::size_t at) {
    return isLiteral ? !splitsPair(text, at) : isBoundary(text, at);
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
      result.form += foldsCase ? lowerASCII(text[start]) : text[start];
    } else {
      result.form += normalForm(text.substr(start, next - start), options);
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
      : _wanted(normalForm(needle, options)),
        _source(normalized(text, options, range, limit, _wanted.size())),
        _options(options),
        _range(range) {}

  NSRange find() const {
    const auto isWhole = [&](std::size_t place) { return rangeAt(place).length != 0; };
    const std::size_t place = findPlace<LiteralMatcher>(_source.form, _wanted, _options, isWhole);
    return place == none ? NSNotFoundRange : rangeAt(place);
  }

  void forEach(NSBlockRef<void(NSRange)> visit) const {
    std::size_t place = NSFindUnits(_source.form, _wanted);
    while (place != none) {
      const NSRange found = rangeAt(place);
      if (found.length != 0) visit(found);
      place = NSFindUnits(_source.form, _wanted, place + (found.length != 0 ? _wanted.size() : 1));
    }
  }

 private:
  const Normalized::Piece* pieceAt(std::size_t place) const {
    const auto found =
        std::ranges::lower_bound(_source.pieces, place, {}, &Normalized::Piece::form);
    return found != _source.pieces.end() && found->form == place ? &*found : nullptr;
  }

  // What the form's units from `place` on stand for; empty unless these are whole pieces.
  NSRange rangeAt(std::size_t place) const {
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

// Whether all units are below a power of two.
bool isBelow(std::u16string_view text, char16_t bound) {
  // Without an early end the loop becomes vector code.
  constexpr std::size_t block = 256;
  for (std::size_t at = 0; at < text.size(); at += block) {
    char16_t bits = 0;
    for (const char16_t unit : text.substr(at, block)) bits |= unit;
    if (bits >= bound) return false;
  }
  return true;
}

bool isComposed(std::u16string_view text, bool hasNoMarks) {
  if (hasNoMarks) return true;
  UErrorCode status = U_ZERO_ERROR;
  const auto result = unorm2_quickCheck(composition(), NSICUText(text), NSICULength(text), &status);
  NSCheckICU(status);
  return result == UNORM_YES;
}

// Below the first combining mark; a power of two is tested fastest.
bool isWithoutMarks(std::u16string_view text) { return isBelow(text, 0x200); }

bool isComposed(std::u16string_view text) { return isComposed(text, isWithoutMarks(text)); }

bool isWithoutForms(std::u16string_view text, NSUInteger options) {
  if ((options & NSCaseInsensitiveSearch) != 0) return isBelow(text, 0x80);
  return (options & NSLiteralSearch) != 0 || isComposed(text);
}

// Searches a part of the range for matches that begin before the limit; those that begin behind it
// may be found too. The part ends between composed characters, at least a needle's length behind
// the limit or with the range.
NSRange searchPart(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                   NSRange range, NSRange part, std::size_t limit) {
  const std::u16string_view units = text.substr(part.location, part.length);
  if (!isWithoutForms(needle, options) || !isWithoutForms(units, options)) {
    const NSUInteger rest = NSMaxRange(range) - part.location;
    return FormSearch(text, needle, options, {part.location, rest}, limit).find();
  }
  const auto accept = [&](std::size_t place) {
    if ((options & NSLiteralSearch) != 0) return true;
    const std::size_t start = part.location + place;
    return isBoundary(text, start) && isBoundary(text, start + needle.size());
  };
  const std::size_t place = (options & NSCaseInsensitiveSearch) != 0
                                ? findPlace<FoldedMatcher>(units, needle, options, accept)
                                : findPlace<LiteralMatcher>(units, needle, options, accept);
  return place == none ? NSNotFoundRange : NSRange{part.location + place, needle.size()};
}

}  // namespace

NSRange NSSearchUnits(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                      NSRange range) {
  if (needle.empty()) return NSNotFoundRange;
  const NSUInteger end = NSMaxRange(range);
  if ((options & NSBackwardsSearch) != 0) {
    return searchPart(text, needle, options, range, range, end);
  }
  // Part by part, each twice as long as the one before, so that a search costs what lies in front
  // of its match, not what lies behind it. An anchored one looks at the start alone.
  const bool isAnchored = (options & NSAnchoredSearch) != 0;
  NSUInteger size = isAnchored ? 1 : 1024;
  const auto boundaryFrom = [&](NSUInteger at) {
    while (at < end && !isBoundary(text, at)) ++at;
    return at;
  };
  for (NSUInteger start = range.location; start < end; size *= 2) {
    const NSUInteger limit = boundaryFrom(start + std::min(size, end - start));
    const NSUInteger stop =
        boundaryFrom(limit + std::min<NSUInteger>(needle.size() - 1, end - limit));
    const NSRange found = searchPart(text, needle, options, range, {start, stop - start}, limit);
    if (found.length != 0 || isAnchored) return found;
    start = limit;
  }
  return NSNotFoundRange;
}

void NSVisitOccurrences(std::u16string_view text, std::u16string_view needle,
                        NSBlockRef<void(std::span<const NSRange>)> visit) {
  if (needle.empty()) return;
  const bool hasNoMarks = isWithoutMarks(text);
  if (!isComposed(needle) || !isComposed(text, hasNoMarks)) {
    const FormSearch search(text, needle, 0, {0, text.size()}, text.size());
    search.forEach([&](NSRange found) { visit({&found, 1}); });
    return;
  }
  const NSLinearSearch linear(needle.begin(), needle.end(), LiteralMatcher::isEqual);
  std::array<std::size_t, 64> places;
  std::array<NSRange, places.size()> ranges;
  std::size_t from = 0;
  for (std::size_t found = places.size(); found == places.size();) {
    found = NSFindUnits(text, needle, from, places);
    std::size_t count = 0;
    for (const std::size_t place : std::span(places).first(found)) {
      from = place + needle.size();
      if (hasNoMarks || (isBoundary(text, place) && isBoundary(text, from))) {
        ranges[count++] = {place, needle.size()};
      } else if (linear.overlapsItself()) {
        // A place that cuts a composed character is no match, but one that overlaps it may be.
        from = place + 1;
        found = places.size();
        break;
      }
    }
    visit(std::span(ranges).first(count));
  }
}

NSRange NSSearchMember(const NSCharacterSet& set, std::u16string_view text, NSUInteger options) {
  constexpr auto characters = NSMembership::characters;
  if (text.empty()) return NSNotFoundRange;
  const bool isBackwards = (options & NSBackwardsSearch) != 0;
  if ((options & NSAnchoredSearch) != 0) {
    const std::size_t width =
        isBackwards ? splitsPair(text, text.size() - 1) + 1U : splitsPair(text, 1) + 1U;
    const std::u16string_view end =
        isBackwards ? text.substr(text.size() - width) : text.substr(0, width);
    if (NSFirstMember(set, end, 0, characters) == none) return NSNotFoundRange;
    return {isBackwards ? text.size() - width : 0, width};
  }
  if (isBackwards) {
    const std::size_t end = NSEndOfLastMember(set, text, characters);
    if (end == 0) return NSNotFoundRange;
    const std::size_t width = splitsPair(text, end - 1) ? 2 : 1;
    return {end - width, width};
  }
  const std::size_t place = NSFirstMember(set, text, 0, characters);
  if (place == none) return NSNotFoundRange;
  return {place, splitsPair(text, place + 1) ? 2U : 1U};
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
  const std::uint64_t* const bitmap = set.unitBitmap();
  std::size_t count = 0;
  while (count < text.size()) {
    const char16_t unit = text[isBackwards ? text.size() - 1 - count : count];
    if ((unit & 0xF800U) != 0xD800U) {
      if ((bitmap[unit / 64] >> (unit % 64) & 1U) == 0) break;
      ++count;
      continue;
    }
    const std::u16string_view rest =
        isBackwards ? text.substr(0, text.size() - count) : text.substr(count);
    const NSUInteger width = NSSearchMember(set, rest, options | NSAnchoredSearch).length;
    if (width == 0) break;
    count += width;
  }
  return count;
}
