#include "ZKFoundation/Classes/ZKTextFinder/TextSearch.h"

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/NormalForm.h>

using ZKFoundationExtensions::rangeOfWordContainingCharacter;

namespace {

// Whether a text is a part of one word, or of one run of what is between words.
bool isWithinWord(const NSRef<NSString>& text) {
  return rangeOfWordContainingCharacter(text, 0).length == text->length();
}

}  // namespace

ZKTextSearch::ZKTextSearch(const Subject& subject, const NSRef<NSString>& string)
    : _subject(subject),
      _string(string),
      _options(subject.options & (NSCaseInsensitiveSearch | NSLiteralSearch)),
      _isBackwards((_subject.options & NSBackwardsSearch) != 0) {
  if (_subject.pattern != nullptr) {
    _subject.pattern->setText(text());
    _limit = std::chrono::steady_clock::now() + subject.timeLimit.duration();
    _mayOverlap = true;
  } else {
    const bool mindsStart =
        _subject.condition == ZKWordCompareWhole || _subject.condition == ZKWordCompareStart;
    // What overlaps a part of a word that begins in it does not begin with the word. What is
    // equivalent to the needle may have other words: "≠" has none, "=" with a mark has two.
    const auto isPart = [&] {
      const NSRef<NSString>& needle = _subject.needle;
      return isWithinWord(needle) &&
             isWithinWord(NSMake<NSString>(NSNormalForm(needle->view(), _options)));
    };
    _mayOverlap = _subject.condition == ZKWordCompareEnd || (mindsStart && !isPart());
  }
}

NSRange ZKTextSearch::wordAt(NSUInteger index) {
  if (!NSLocationInRange(index, _word)) _word = rangeOfWordContainingCharacter(_string, index);
  return _word;
}

NSRange ZKTextSearch::wordsOf(NSRange match) {
  if (match.length == 0) return match;
  const NSRange first = wordAt(match.location);
  return NSUnionRange(first, wordAt(NSMaxRange(match) - 1));
}

bool ZKTextSearch::accepts(NSRange match) {
  if (match.length == 0 && match.location == _passedBy) return false;
  switch (_subject.condition) {
    case ZKWordCompareWhole:
      return wordsOf(match) == match;
    case ZKWordCompareStart:
      return wordsOf(match).location == match.location;
    case ZKWordCompareEnd:
      return NSMaxRange(wordsOf(match)) == NSMaxRange(match);
    default:
      return true;
  }
}

NSRange ZKTextSearch::findNeedle(NSRange range, NSUInteger options) {
  return NSSearchUnits(text(), _subject.needle->view(), _options | options, range,
                       [this](NSRange match) { return accepts(match); });
}

NSRange ZKTextSearch::findPattern(NSRange range) {
  const bool isLate = std::chrono::steady_clock::now() > _limit;
  const auto found = isLate ? std::nullopt : _subject.pattern->find(range, _limit);
  if (!found) throw ZKTextFinderFailure{ZKTextFinderTimedOut, "The search takes too long"};
  return *found;
}

// What is left of a range after the character at an index; not found when there is not even an end.
NSRange ZKTextSearch::rest(NSRange range, NSUInteger index) const {
  const NSUInteger next = index + (NSSplitsPair(text(), index + 1) ? 2 : 1);
  return next > NSMaxRange(range) ? NSNotFoundRange : NSRange{next, NSMaxRange(range) - next};
}

// The first match in what is left of a range after a match.
NSRange ZKTextSearch::following(NSRange range, NSRange match) {
  const NSUInteger end = NSMaxRange(match);
  return first(match.length == 0 ? rest(range, end) : NSRange{end, NSMaxRange(range) - end});
}

NSRange ZKTextSearch::first(NSRange range) {
  if (_subject.pattern == nullptr) return findNeedle(range, _mayOverlap ? NSOverlappingSearch : 0);
  while (range != NSNotFoundRange) {
    const NSRange match = findPattern(range);
    if (match == NSNotFoundRange || accepts(match)) return match;
    range = rest(range, match.location);
  }
  return range;
}

NSRange ZKTextSearch::last(NSRange range) {
  if (_subject.pattern == nullptr) {
    return findNeedle(range, NSBackwardsSearch | NSOverlappingSearch);
  }
  // It sees the text to its end: cut off there, another part of it might match.
  const NSRange seen = {range.location, text().size() - range.location};
  NSRange match = NSNotFoundRange;
  for (NSRange next = first(seen); NSMaxRange(next) <= NSMaxRange(range);
       next = following(seen, next)) {
    match = next;
  }
  return match;
}

NSRange ZKTextSearch::next(NSRange selection, bool wraps, bool standsForEmpty) {
  const NSUInteger end = NSMaxRange(selection);
  const NSRange all = {0, text().size()};
  if (selection.length == 0 || standsForEmpty) _passedBy = _isBackwards ? selection.location : end;
  const NSRange match =
      nearest(_isBackwards ? NSRange{0, selection.location} : NSRange{end, all.length - end});
  _passedBy = NSNotFound;
  return match == NSNotFoundRange && wraps ? nearest(all) : match;
}

bool ZKTextSearch::isMatch(NSRange range) {
  // A pattern may match less where it sees less.
  const NSUInteger end = _subject.pattern == nullptr ? NSMaxRange(range) : text().size();
  return first({range.location, end - range.location}) == range;
}

void ZKTextSearch::forEach(NSBlockRef<void(NSRange)> visit) {
  const NSRange all = {0, text().size()};
  if (_mayOverlap) {
    for (NSRange match = first(all); match != NSNotFoundRange; match = following(all, match)) {
      visit(match);
    }
    return;
  }
  NSForEachOccurrence(text(), _subject.needle->view(), _options, all, [&](NSRange match) {
    if (accepts(match)) visit(match);
  });
}
