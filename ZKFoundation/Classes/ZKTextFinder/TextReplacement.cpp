#include "ZKFoundation/Classes/ZKTextFinder/TextReplacement.h"

#include <optional>
#include <utility>

#include <Foundation/NSUnicode.h>
#include <ZKFoundation/Classes/ZKTextFinder/TextSearch.h>

namespace {

constexpr bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

[[noreturn]] void refuse(std::u16string_view group) {
  throw ZKTextFinderFailure{ZKTextFinderInvalidReplacement,
                            "There is no group \"" + NSUTF8FromUnits(group) + "\""};
}

}  // namespace

ZKTextReplacement::ZKTextReplacement(std::u16string_view text, const NSRegularExpression* pattern)
    : _pattern(pattern) {
  if (pattern == nullptr) {
    _end = text;
    return;
  }
  for (std::size_t place = 0; place < text.size(); ++place) {
    if (text[place] == u'$') {
      place = readGroup(text, place);
      continue;
    }
    if (text[place] == u'\\' && place + 1 < text.size()) ++place;
    _end += text[place];
  }
}

// Reads "$1" or "${name}" there, and gives the place of its last unit. Of digits as many belong to
// the number as make that of a group.
std::size_t ZKTextReplacement::readGroup(std::u16string_view text, std::size_t place) {
  const std::u16string_view rest = text.substr(place + 1);
  std::optional<int> group;
  std::size_t used = 0;
  if (rest.starts_with(u'{')) {
    used = rest.find(u'}');
    if (used == std::u16string_view::npos) refuse(rest);
    const std::u16string_view name = rest.substr(1, used - 1);
    group = _pattern->groupWithName(name);
    if (!group) refuse(name);
    ++used;
  } else {
    for (; used < rest.size() && isDigit(rest[used]); ++used) {
      const int longer = group.value_or(0) * 10 + (rest[used] - u'0');
      if (longer > _pattern->groupCount()) break;
      group = longer;
    }
    if (!group) refuse(rest.substr(0, 1));
  }
  _pieces.push_back({std::exchange(_end, {}), *group});
  return place + used;
}

void ZKTextReplacement::appendTo(NSUnitBuffer& result, std::u16string_view text) const {
  for (const Piece& piece : _pieces) {
    result.append(piece.text);
    const NSRange group = _pattern->group(piece.group);
    if (group != NSNotFoundRange) result.append(text.substr(group.location, group.length));
  }
  result.append(_end);
}

void ZKCarriedSelection::moveOver(NSRange before, NSRange after) {
  const auto move = [&](NSUInteger old, NSUInteger& now, NSUInteger inside) {
    if (old <= before.location) return;
    const NSUInteger end = NSMaxRange(before);
    now = old < end ? inside : old - end + NSMaxRange(after);
  };
  const bool isEmpty = _before.start == _before.end;
  move(_before.start, _after.start, isEmpty ? NSMaxRange(after) : after.location);
  move(_before.end, _after.end, NSMaxRange(after));
}
