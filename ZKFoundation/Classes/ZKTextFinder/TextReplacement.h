#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSRange.h>
#include <Foundation/NSUnitBuffer.h>
#include <Foundation/Text/RegularExpression.h>

/// What matches are replaced by: a text or, for a pattern, one with the groups of the match.
class ZKTextReplacement {
 public:
  /// Takes the text as it is where there is no pattern. With one "$1" and "${name}" are groups and
  /// "\\" quotes what follows; throws `ZKTextFinderFailure` for a group that there is not.
  ZKTextReplacement(std::u16string_view text, const NSRegularExpression* pattern);

  /// Appends the replacement for the pattern's latest match, which was in that text.
  void appendTo(NSUnitBuffer& result, std::u16string_view text) const;

 private:
  // Some text and the group that follows it.
  struct Piece {
    std::u16string text;
    int group;
  };

  std::size_t readGroup(std::u16string_view text, std::size_t place);

  const NSRegularExpression* _pattern;
  std::vector<Piece> _pieces;
  // What follows the last group.
  std::u16string _end;
};

/// Moves a selection over replacements, told from left to right.
class ZKCarriedSelection {
 public:
  explicit ZKCarriedSelection(NSRange selection)
      : _before{selection.location, NSMaxRange(selection)}, _after(_before) {}

  /// Takes note that a range of the old text became that range of the new one.
  void moveOver(NSRange before, NSRange after);
  [[nodiscard]] NSRange range() const { return {_after.start, _after.end - _after.start}; }

 private:
  struct Ends {
    NSUInteger start;
    NSUInteger end;
  };

  Ends _before;
  Ends _after;
};
