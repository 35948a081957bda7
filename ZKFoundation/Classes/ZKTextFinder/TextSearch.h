#pragma once

#include <chrono>
#include <string>

#include <Foundation/NSDelay.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/RegularExpression.h>
#include <Foundation/Text/StringSearch.h>
#include <ZKFoundation/Classes/ZKTextFinder/ZKTextFinder.h>

/// Why a search failed; thrown within, an `NSError` for callers.
struct ZKTextFinderFailure {
  ZKTextFinderError code;
  std::string reason;
};

/// One operation of a finder on one text: its matches within ranges, whose ends are no borders to
/// words, composed characters and the assertions of patterns.
class ZKTextSearch {
 public:
  /// What is searched for: the needle, or a pattern where there is one.
  struct Subject {
    const NSRef<NSString>& needle;
    NSRegularExpression* pattern;
    NSDelay timeLimit;
    NSUInteger options;
    ZKWordCompareOption condition;
  };

  /// The subject, whose needle is not empty, and the text must outlive the search and stay as they
  /// are.
  ZKTextSearch(const Subject& subject, const NSRef<NSString>& string);

  /// Gives the first match that begins in the range and lies in it, or `NSNotFoundRange`.
  [[nodiscard]] NSRange first(NSRange range);
  [[nodiscard]] NSRange last(NSRange range);
  /// Gives the first match there, or the last one when the search goes backwards.
  [[nodiscard]] NSRange nearest(NSRange range) { return _isBackwards ? last(range) : first(range); }
  /// Gives the match next to the selection, as `ZKTextFinder` promises. An empty match at the end
  /// of a selection that stands for one is passed by, as at an empty selection.
  [[nodiscard]] NSRange next(NSRange selection, bool wraps, bool standsForEmpty = false);
  /// Whether the range is that of a match; then the pattern's groups are those of it.
  [[nodiscard]] bool isMatch(NSRange range);
  /// Calls `visit` with the matches from left to right, each search starting where the last match
  /// ended. The groups of a pattern are those of the match.
  void forEach(NSBlockRef<void(NSRange)> visit);

  [[nodiscard]] NSRange wordsOf(NSRange match);
  [[nodiscard]] std::u16string_view text() const noexcept { return _string->view(); }

 private:
  [[nodiscard]] bool accepts(NSRange match);
  [[nodiscard]] NSRange findNeedle(NSRange range, NSUInteger options);
  [[nodiscard]] NSRange findPattern(NSRange range);
  [[nodiscard]] NSRange rest(NSRange range, NSUInteger index) const;
  [[nodiscard]] NSRange following(NSRange range, NSRange match);
  [[nodiscard]] NSRange wordAt(NSUInteger index);

  const Subject& _subject;
  const NSRef<NSString>& _string;
  NSUInteger _options;
  std::chrono::steady_clock::time_point _limit;
  bool _isBackwards;
  // Whether a match that is accepted may overlap one before it that is not.
  bool _mayOverlap;
  // Where an empty match is passed by.
  NSUInteger _passedBy = NSNotFound;
  // The last word that was looked at, so that matches in one long word do not walk it again.
  NSRange _word;
};
