#pragma once

#include <span>
#include <string_view>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSStringComparison.h>

/// An option of `NSSearchUnits`, for what may overlap a match that was refused.
inline constexpr NSUInteger NSOverlappingSearch = 1U << 31U;

/// Gives how many units of a refused match a search passes by, if the match has so many.
[[nodiscard]] constexpr NSUInteger NSStepOverRefused(NSUInteger options) {
  return (options & NSOverlappingSearch) != 0 ? 1 : NSUIntegerMax;
}

/// Finds the needle in a range of the text, which must fit it; `NSNotFoundRange` when there is none
/// or the needle is empty. With `NSBackwardsSearch` the last occurrence, with `NSAnchoredSearch`
/// only one at the start of the range (at its end, backwards).
///
/// With `NSLiteralSearch` units are compared as they are, or their default case foldings character
/// by character. Without it canonically equivalent text matches, so that the match may be longer or
/// shorter than the needle, and no match begins or ends inside a composed character, the units
/// outside of the range included.
///
/// With `accept` the first match that it agrees to. After one that it refuses the search begins
/// anew over what follows it in the range, which backwards holds no other. `NSOverlappingSearch`
/// lets it go on in its direction instead, a unit further. All of it takes time linear in the
/// range.
NS_EXPORT NSRange NSSearchUnits(std::u16string_view text, std::u16string_view needle,
                                NSUInteger options, NSRange range,
                                NSBlockRef<bool(NSRange)> accept = nullptr);

/// Calls `visit`, with the places and the length of some at a time, for the occurrences that
/// searches of the range with these options find from left to right, each starting where the last
/// match ended. Knows no direction and no anchor.
NS_EXPORT void NSVisitOccurrences(
    std::u16string_view text, std::u16string_view needle, NSUInteger options, NSRange range,
    NSBlockRef<void(std::span<const std::size_t>, std::size_t)> visit);

/// Calls `visit` for each of these occurrences.
template <class Visit>
void NSForEachOccurrence(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                         NSRange range, Visit visit) {
  NSVisitOccurrences(text, needle, options, range,
                     [&](std::span<const std::size_t> places, std::size_t length) {
                       for (const std::size_t place : places) visit(NSRange{place, length});
                     });
}
template <class Visit>
void NSForEachOccurrence(std::u16string_view text, std::u16string_view needle, Visit visit) {
  NSForEachOccurrence(text, needle, 0, {0, text.size()}, visit);
}

class NSCharacterSet;

/// Finds a member of the set, a surrogate pair as one of two units; knows `NSBackwardsSearch` and
/// `NSAnchoredSearch`.
[[nodiscard]] NS_EXPORT NSRange NSSearchMember(const NSCharacterSet& set, std::u16string_view text,
                                               NSUInteger options);

/// Gives the run of units around the index without members of the set: from the end of the last
/// member before it to the first one at or after it. A pair that the index divides counts as two
/// halves.
[[nodiscard]] NS_EXPORT std::size_t NSStartOfRun(const NSCharacterSet& set,
                                                 std::u16string_view text, std::size_t index);
[[nodiscard]] NS_EXPORT std::size_t NSEndOfRun(const NSCharacterSet& set, std::u16string_view text,
                                               std::size_t index);
[[nodiscard]] inline NSRange NSRunWithoutMembers(const NSCharacterSet& set,
                                                 std::u16string_view text, std::size_t index) {
  const std::size_t start = NSStartOfRun(set, text, index);
  return {start, NSEndOfRun(set, text, index) - start};
}

/// Counts the units of the members of the set that the text begins with, or ends with when
/// `options` hold `NSBackwardsSearch`.
[[nodiscard]] NS_EXPORT std::size_t NSCountMembersAtEnd(const NSCharacterSet& set,
                                                        std::u16string_view text,
                                                        NSUInteger options);
