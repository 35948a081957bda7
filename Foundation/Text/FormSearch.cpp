#include "Foundation/Text/FormSearch.h"

#include <algorithm>
#include <span>
#include <vector>

#include <unicode/uchar.h>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/JudgedSearch.h>
#include <Foundation/Text/NormalForm.h>
#include <Foundation/Text/StringSearch.h>

namespace {

// Texts in which less is saved than it takes to choose what stands second.
constexpr std::size_t shortText = 256;

constexpr std::size_t none = std::u16string_view::npos;

// A text brought to a form in which equality is equality of units, with the way back: pieces[k] is
// where the k-th piece of the source begins, and where its form does.
struct Normalized {
  struct Piece {
    std::size_t source;
    std::size_t form;
  };
  NSUnitBuffer form;
  std::vector<Piece> pieces;

  [[nodiscard]] const Piece* pieceAt(std::size_t place) const {
    const auto found = std::ranges::lower_bound(pieces, place, {}, &Piece::form);
    return found != pieces.end() && found->form == place ? &*found : nullptr;
  }
};

}  // namespace

// The search of a range for matches that begin before the limit.
struct NSFormSearch::Scan {
  // Backwards only what is left of it in front of a refused match.
  NSRange range;
  std::size_t limit;
  NSBlockRef<bool(NSRange)> accept;
  // Where matches may begin that overlap none refused.
  std::size_t from = range.location;
  // Units that may be compared in vain before the text is normalized as a whole.
  std::size_t budget = 4 * (limit - range.location) + 1024;

  void spend(std::size_t units) { budget -= std::min(budget, units); }
};

NSFormSearch::NSFormSearch(std::u16string_view text, std::u16string_view needle, NSUInteger options)
    : _text(text),
      _options(options),
      _isLiteral((options & NSLiteralSearch) != 0),
      _forms(NSFormTable::forOptions(options)) {
  for (std::size_t start = 0; start < needle.size();) {
    const std::size_t end = endOfPiece(needle, start);
    appendForm(needle.substr(start, end - start), _form);
    start = end;
  }
  for (const char16_t unit : _form.view()) _units |= NSFormTable::bitOf(unit);
  chooseProbes();
}

// Calls `visit` for the units of each character that may stand for the needle's form from a place
// on, and the length of its own form, which holds no units but the needle's.
template <class Visit>
void NSFormSearch::forEachAtStart(std::size_t at, Visit visit) const {
  const std::u16string_view wanted = _form.view().substr(at);
  const std::size_t width = NSSplitsPair(wanted, 1) ? 2 : 1;
  visit(wanted.substr(0, width), width);
  _forms.forEachAtStart(wanted, _units, [&](char32_t character, std::u16string_view form) {
    if (form.find_first_not_of(_form.view()) != none) return;
    NSFormTable::Room room;
    visit(NSFormTable::unitsOf(character, room), form.size());
  });
}

void NSFormSearch::chooseProbes() {
  bool areUnits = true;
  bool arePairs = true;
  NSUnitChoice seconds;
  forEachAtStart(0, [&](std::u16string_view units, std::size_t formLength) {
    _choices[0].add(units[0]);
    areUnits = areUnits && units.size() == 1 && formLength == 1;
    arePairs = arePairs && units.size() == 2;
    if (arePairs) seconds.add(units[1]);
  });
  if (arePairs) {
    _distance = 1;
    _choices[1] = seconds;
  } else if (areUnits && _form.size() > 1 && _text.size() > shortText) {
    _distance = 1;
    // Of what belongs to the first piece any may be the second unit: it is sorted.
    std::size_t at = 1;
    do {
      forEachAtStart(at,
                     [&](std::u16string_view units, std::size_t) { _choices[1].add(units[0]); });
    } while (!isBoundary(_form.view(), at) && ++at < _form.size());
  } else {
    _choices[1] = _choices[0];
  }
}

bool NSFormSearch::isBoundary(std::u16string_view text, std::size_t at) const {
  return _isLiteral ? !NSSplitsPair(text, at) : NSIsComposedBoundary(text, at);
}

std::size_t NSFormSearch::endOfPiece(std::u16string_view text, std::size_t start) const {
  std::size_t end = start + 1;
  while (end < text.size() && !isBoundary(text, end)) ++end;
  return end;
}

// Whether a piece has the form of its first character, with the marks as they are behind it.
bool NSFormSearch::areKept(std::u16string_view marks, char32_t first,
                           std::size_t formLength) const {
  // A form of several may end with any mark.
  unsigned before = formLength > 1 ? 255U : u_getCombiningClass(static_cast<UChar32>(first));
  return std::ranges::all_of(marks, [&](char16_t mark) {
    const unsigned next = u_getCombiningClass(static_cast<UChar32>(mark));
    const bool isSorted = next == 0 || next >= before;
    before = next;
    NSFormTable::Room room;
    return isSorted && !NSIsSurrogate(mark) &&
           _forms.formOf(mark, room) == std::u16string_view(&mark, 1);
  });
}

void NSFormSearch::appendForm(std::u16string_view piece, NSUnitBuffer& forms) const {
  std::u16string_view marks = piece;
  const char32_t first = NSTakeCharacter(marks);
  NSFormTable::Room room;
  const std::u16string_view form = _forms.formOf(first, room);
  if (marks.empty() || areKept(marks, first, form.size())) {
    for (const char16_t unit : form) *forms.extend(1) = unit;
    forms.append(marks);
  } else {
    forms.append(NSNormalForm(piece, _options));
  }
}

// Where the match ends that begins with the piece at a place; the place when there is none.
std::size_t NSFormSearch::endOfMatch(Scan& scan, std::size_t place) const {
  const std::u16string_view wanted = _form.view();
  const std::size_t end = NSMaxRange(scan.range);
  NSFormTable::Room room;
  std::array<char16_t, 32> wholeRoom;
  NSUnitBuffer whole(wholeRoom);
  std::size_t at = place;
  for (std::size_t done = 0; done < wanted.size();) {
    if (at == end) return place;
    std::u16string_view rest = _text.substr(at);
    const char32_t character = NSTakeCharacter(rest);
    const std::size_t next = _text.size() - rest.size();
    std::u16string_view form = wanted.substr(done, 1);
    if (character != form[0] || NSIsSurrogate(character)) form = _forms.formOf(character, room);
    std::size_t stop = next;
    if (!isBoundary(_text, next)) {
      // What follows belongs to the piece, and may be sorted into the form.
      stop = endOfPiece(_text, next);
      whole.truncate(0);
      appendForm(_text.substr(at, stop - at), whole);
      form = whole.view();
      scan.spend(16 * (stop - at));
    }
    scan.spend(form.size());
    if (stop > end || !wanted.substr(done).starts_with(form)) return place;
    done += form.size();
    at = stop;
  }
  return at;
}

// The match at a place where one may begin, if it is accepted; otherwise none.
NSRange NSFormSearch::judge(Scan& scan, std::size_t place) const {
  if (place < scan.from || !isBoundary(_text, place)) return NSNotFoundRange;
  const NSRange match = {place, endOfMatch(scan, place) - place};
  if (match.length == 0) return NSNotFoundRange;
  if (scan.accept(match)) return match;
  const NSUInteger step = std::min(match.length, NSStepOverRefused(_options));
  if ((_options & NSBackwardsSearch) != 0) {
    scan.range.length = NSMaxRange(match) - step - scan.range.location;
  } else {
    scan.from = match.location + step;
  }
  return NSNotFoundRange;
}

NSRange NSFormSearch::scanForwards(Scan& scan) const {
  const std::u16string_view text = _text.substr(0, scan.limit + _distance);
  std::array<std::size_t, 64> places;
  // A text may begin with a mark, whose form depends on the marks that follow.
  if (scan.from == 0 && !_isLiteral && text[0] >= NSFirstMark) {
    const NSRange match = judge(scan, 0);
    if (match.length != 0) return match;
  }
  std::size_t count = places.size();
  for (std::size_t from = scan.from; count == places.size() && scan.budget > 0;) {
    count = NSFindChoices(text, _choices, _distance, from, places);
    for (const std::size_t place : std::span(places).first(count)) {
      const NSRange match = judge(scan, place);
      if (match.length != 0) return match;
      if (scan.budget == 0) break;
    }
    from = std::max(scan.from, places.back() + 1);
  }
  return NSNotFoundRange;
}

NSRange NSFormSearch::scanBackwards(Scan& scan) const {
  const std::u16string_view text = _text.substr(0, scan.limit + _distance);
  std::vector<std::size_t> places;
  std::array<std::size_t, 64> some;
  std::size_t count = some.size();
  if (scan.from == 0) places.push_back(0);
  for (std::size_t from = scan.from; count == some.size(); from = some.back() + 1) {
    count = NSFindChoices(text, _choices, _distance, from, some);
    places.insert(places.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(count));
  }
  for (; !places.empty() && scan.budget > 0; places.pop_back()) {
    const NSRange match = judge(scan, places.back());
    if (match.length != 0) return match;
  }
  return NSNotFoundRange;
}

// Searches the forms of the pieces that begin in the range; of those from the limit on only as many
// as a match may reach.
NSRange NSFormSearch::findNormalized(const Scan& scan) const {
  Normalized source;
  const std::size_t end = NSMaxRange(scan.range);
  std::size_t start = scan.from;
  while (start < end && !isBoundary(_text, start)) ++start;
  std::size_t formAtLimit = none;
  while (start < end) {
    if (start >= scan.limit) {
      formAtLimit = std::min(formAtLimit, source.form.size());
      if (source.form.size() - formAtLimit >= _form.size()) break;
    }
    const std::size_t next = endOfPiece(_text, start);
    if (next > end) break;
    source.pieces.push_back({start, source.form.size()});
    appendForm(_text.substr(start, next - start), source.form);
    start = next;
  }
  source.pieces.push_back({start, source.form.size()});

  const bool isBackwards = (_options & NSBackwardsSearch) != 0;
  NSRange match;
  const auto judge = [&](std::size_t place) -> std::size_t {
    const auto* const first = source.pieceAt(place);
    const auto* const last = source.pieceAt(place + _form.size());
    if (first == nullptr || last == nullptr) return 1;
    // Pieces that do not fit into the range are left out of the form; an anchor does not move.
    const bool isAnchored =
        isBackwards ? last->source == end : first->source == scan.range.location;
    if ((_options & NSAnchoredSearch) != 0 && !isAnchored) return 1;
    match = {first->source, last->source - first->source};
    return scan.accept(match) ? 0 : std::min(_form.size(), NSStepOverRefused(_options));
  };
  return NSFindJudged(source.form.view(), _form.view(), _options, judge) == none ? NSNotFoundRange
                                                                                 : match;
}

NSRange NSFormSearch::find(NSRange range, std::size_t limit,
                           NSBlockRef<bool(NSRange)> accept) const {
  Scan scan = {range, limit, accept};
  if ((_options & NSAnchoredSearch) == 0) {
    const bool isBackwards = (_options & NSBackwardsSearch) != 0;
    const NSRange match = isBackwards ? scanBackwards(scan) : scanForwards(scan);
    if (match.length != 0 || scan.budget > 0) return match;
  }
  return findNormalized(scan);
}
