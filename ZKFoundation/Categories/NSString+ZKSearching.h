#pragma once

#include <cstdint>

#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSOptions.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// Searches for editors, word ranges, trimming and title case. Ranges count units; one that does not
// fit raises `NSRangeException` before anything is changed. "Not found" is `NSNotFoundRange`. A nil
// receiver raises `NSInvalidArgumentException`.
//
// Of words and runs a surrogate pair is one character, whichever of its units an index names; it is
// a member of the sets that have the character. A half that stands alone is asked about by itself.

/// Tells which match `findString_searchRange_options_wordCompareOption` accepts. Other codes from 5
/// on accept the first match and give its word.
enum ZKWordCompareOption : NSUInteger {
  ZKWordCompareNone = 0,
  /// The match is a whole word.
  ZKWordCompareWhole = 1,
  /// A word begins where the match does.
  ZKWordCompareStart = 2,
  /// A word ends where the match does.
  ZKWordCompareEnd = 3,
  /// As `ZKWordCompareNone`.
  ZKWordCompareAny = 4,
};

/// Names the ends that `trimRange_prefixRange_postfixRange_trimOptions` trims; a set of bits.
enum ZKTrimOptions : NSUInteger {
  ZKTrimStart = 1,
  ZKTrimEnd = 2,
};
template <>
inline constexpr bool NSIsBitSet<ZKTrimOptions> = true;

namespace ZKFoundationExtensions {

/// Finds the next occurrence after the selection, or with `NSBackwardsSearch` the last one before
/// it; with `wrap` then on the other side. What is selected, or overlaps the selection, is never
/// found. Options as for `rangeOfString_options`.
[[nodiscard]] ZK_EXPORT NSRange findString_selectedRange_options_wrap(
    const NSRef<NSString>& string, const NSRef<NSString>& needle, NSRange selectedRange,
    NSOptions<NSStringCompareOptions> options, bool wrap);

/// Finds the first match in the search range whose word, in the whole string, satisfies the
/// `ZKWordCompareOption`, and gives that word's range: searching "app" at word starts in
/// "snapp apple" gives {6, 5}. Without a condition it gives the match itself.
///
/// A rejected match is followed by a search forwards from its end, so that with `NSBackwardsSearch`
/// only the last occurrence is examined.
[[nodiscard]] ZK_EXPORT NSRange findString_searchRange_options_wordCompareOption(
    const NSRef<NSString>& string, const NSRef<NSString>& needle, NSRange searchRange,
    NSOptions<NSStringCompareOptions> options, NSOptions<ZKWordCompareOption> wordCompareOption);

/// Gives the run between the delimiters around the index; it ends in front of the character there
/// when that is a delimiter. The index may be the length. A nil set has no members.
[[nodiscard]] ZK_EXPORT NSRange rangeOfCharactersAtIndex_delimitedBy(
    const NSRef<NSString>& string, NSUInteger index, const NSRef<NSCharacterSet>& delimiters);

/// Gives the run of letters, marks and digits around the character at the index, or the run of
/// everything else when that is none of them. The index must be below the length.
[[nodiscard]] ZK_EXPORT NSRange rangeOfWordContainingCharacter(const NSRef<NSString>& string,
                                                               NSUInteger index);

/// Gives the range from the start of the word that holds the range's first unit to the end of the
/// one that holds its last; {0, 0} for an empty range, wherever it lies.
[[nodiscard]] ZK_EXPORT NSRange rangeOfWordsIntersectingRange(const NSRef<NSString>& string,
                                                              NSRange range);

/// Trims spaces and line breaks off the ends of the range that the `ZKTrimOptions` name. The runs
/// around its start and end are written to the out-ranges, either of which may be null; they may
/// reach outside of the range. An end that is not trimmed is an empty run there.
///
/// A range of white space alone, trimmed at both ends, is empty at the end of its run; trimmed at
/// its end alone it stays when it begins where the run does.
[[nodiscard]] ZK_EXPORT NSRange trimRange_prefixRange_postfixRange_trimOptions(
    const NSRef<NSString>& string, NSRange range, NSRange* prefixRange, NSRange* postfixRange,
    NSOptions<ZKTrimOptions> trimOptions);

/// Gives the substring without control characters and attachments. The selected range is made
/// relative to it and follows what is removed; one that starts before the range or does not fit the
/// string raises `NSRangeException`, null `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableString> normalizedSubStringWithRange_selectedRange(
    const NSRef<NSString>& string, NSRange range, NSRange* selectedRange);

/// Writes the string in title case, its words (between spaces and tabs) joined by single spaces:
/// letters by the current locale, and "A", "An", "The", "Of" and "And" in lower case unless the
/// text begins with that word, which then keeps its capital everywhere: "the lord of the rings"
/// gives "The Lord of The Rings".
[[nodiscard]] ZK_EXPORT NSRef<NSString> titlecaseString(const NSRef<NSString>& string);

}  // namespace ZKFoundationExtensions
