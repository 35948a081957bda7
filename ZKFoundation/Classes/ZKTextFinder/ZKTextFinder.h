#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <Foundation/NSDelay.h>
#include <Foundation/NSError.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/Categories/NSString+ZKSearching.h>
#include <ZKFoundation/ZKExport.h>

class NSRegularExpression;

/// An option of a `ZKTextFinder`: the needle is a regular expression in ICU's syntax, in which "^"
/// and "$" stand at every line.
inline constexpr NSStringCompareOptions ZKRegularExpressionSearch{1024};

/// Names the domain of the errors of a `ZKTextFinder`; the codes are `ZKTextFinderError`.
[[nodiscard]] ZK_EXPORT const NSRef<NSString>& ZKTextFinderErrorDomain();

enum ZKTextFinderError : NSInteger {
  /// The needle is no regular expression.
  ZKTextFinderInvalidNeedle = 1,
  /// The replacement names a group that the needle has not.
  ZKTextFinderInvalidReplacement = 2,
  /// A regular expression took longer than the time limit, or too much memory.
  ZKTextFinderTimedOut = 3,
};

/// A match, and the words from that of its first unit to that of its last.
struct ZKTextMatch {
  NSRange match;
  NSRange words;

  friend bool operator==(const ZKTextMatch&, const ZKTextMatch&) = default;
};

/// What a find panel holds: what to look for and how. It finds, counts and replaces in any text.
///
///     auto finder = NSMake<ZKTextFinder>(u"ring"_ns, NSCaseInsensitiveSearch, ZKWordCompareWhole);
///     // The next one, or around the end.
///     const auto found = finder->nextMatchInString_selectedRange(text, selection);
///     finder->replaceAllInString_withString_selectedRange(text, u"bell"_ns, &selection);
///
/// A word is a run of letters, marks and digits, or of what is between such runs, as
/// `rangeOfWordContainingCharacter` (NSString+ZKSearching.h) gives it. A word condition looks at
/// all words of a match: "New York" is a whole word in "a New York day". Every match that satisfies
/// it is found, in both directions, also where it overlaps one that does not. A nil or empty needle
/// is found nowhere. What fails finds and replaces nothing and sets the error, where one is asked
/// for; what does not fail sets it to nil, also where nothing is found. A nil text raises
/// `NSInvalidArgumentException`, a selection that does not fit it `NSRangeException`. A finder
/// belongs to one thread at a time.
class ZK_EXPORT ZKTextFinder : public NSObject {
 public:
  /// Takes `NSStringCompareOptions` and `ZKRegularExpressionSearch`. `NSBackwardsSearch` is the
  /// direction; `NSAnchoredSearch` means nothing, nor does `NSLiteralSearch` to a regular
  /// expression. In that, half of a surrogate pair is an error: "\p{Cs}" finds those that stand
  /// alone.
  explicit ZKTextFinder(const NSRef<NSString>& needle,
                        NSOptions<NSStringCompareOptions> options = 0,
                        ZKWordCompareOption wordCompareOption = ZKWordCompareNone);
  ~ZKTextFinder() override;

  [[nodiscard]] NSRef<NSString> needle() const noexcept { return _needle; }
  /// Keeps a copy.
  void setNeedle(const NSRef<NSString>& needle);
  [[nodiscard]] NSUInteger options() const noexcept { return _options; }
  void setOptions(NSOptions<NSStringCompareOptions> options);
  [[nodiscard]] ZKWordCompareOption wordCompareOption() const noexcept { return _condition; }
  void setWordCompareOption(ZKWordCompareOption option) noexcept { _condition = option; }
  /// Whether the search goes on at the other end of the text; at first it does.
  [[nodiscard]] bool wraps() const noexcept { return _wraps; }
  void setWraps(bool wraps) noexcept { _wraps = wraps; }
  /// How long one operation may take with a regular expression: a second at first. To replace all
  /// in a text is one operation: a second is enough for some ten million units by a simple pattern.
  void setTimeLimit(NSDelay limit) noexcept { _timeLimit = limit; }

  /// Gives what is wrong with the needle, nil when it can be searched for.
  [[nodiscard]] NSRef<NSError> needleError() const;

  /// Finds the first match after the selection, or with `NSBackwardsSearch` the last one before it;
  /// when there is none and it wraps, the first or last one of the whole text, which may be the
  /// selection itself. An empty match at an empty selection is passed by. Backwards a regular
  /// expression's matches are those that follow one another from the start of the text: "[0-9]+"
  /// finds all of "12345" or nothing of it.
  [[nodiscard]] std::optional<ZKTextMatch> nextMatchInString_selectedRange(
      const NSRef<NSString>& string, NSRange selectedRange, NSRef<NSError>* error = nullptr) const;

  /// Gives all matches from left to right, each search starting where the last match ended.
  [[nodiscard]] std::vector<NSRange> matchesInString(const NSRef<NSString>& string,
                                                     NSRef<NSError>* error = nullptr) const;

  /// Replaces the selection if it is a match, or else the next match, and selects what stands there
  /// now; so it is called again for the one after it: a selection that this finder's last
  /// replacement has made is passed by, even where it is a match. Gives whether there was one. In
  /// the replacement for a regular expression "$1" and "${name}" stand for groups, "\\$" for the
  /// sign.
  bool replaceNextInString_withString_selectedRange(const NSRef<NSMutableString>& string,
                                                    const NSRef<NSString>& replacement,
                                                    NSRange* selectedRange,
                                                    NSRef<NSError>* error = nullptr) const;

  /// Replaces the matches that `matchesInString` gives, in one pass, and gives their number; after
  /// an error none is replaced. The selection, which may be null, stays on the text that it was on:
  /// ends within a match move to the end of the replacement, starts to its start.
  NSUInteger replaceAllInString_withString_selectedRange(const NSRef<NSMutableString>& string,
                                                         const NSRef<NSString>& replacement,
                                                         NSRange* selectedRange = nullptr,
                                                         NSRef<NSError>* error = nullptr) const;

 private:
  [[nodiscard]] NSRegularExpression* pattern() const;
  template <class F>
  auto search(const NSRef<NSString>& string, NSRef<NSError>* error, const F& operation) const;

  NSRef<NSString> _needle;
  NSUInteger _options;
  ZKWordCompareOption _condition;
  bool _wraps = true;
  NSDelay _timeLimit = 1;
  // The needle as a regular expression, once it has been used as one.
  mutable std::unique_ptr<NSRegularExpression> _pattern;
  // What the last replacement of one match has put where.
  struct Written {
    NSRange range;
    NSRef<NSString> text;
    bool isOfEmptyMatch;
  };
  mutable Written _written{NSNotFoundRange, nullptr, false};
};
