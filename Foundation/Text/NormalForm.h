#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

// Forms in which texts that count as the same have the same units.

/// Whether a composed character may end, and another begin, in front of the unit at `at`, which is
/// none of the ends of the text and not below `NSFirstMark`.
[[nodiscard]] bool NSIsBoundaryAmongMarks(std::u16string_view text, std::size_t at);

/// The first combining mark: all below is composed, decomposed and equivalent to nothing but
/// itself.
inline constexpr char16_t NSFirstMark = 0x300;

/// Whether the unit is a character that decomposes into itself, whatever stands around it. False
/// for surrogates.
[[nodiscard]] bool NSIsOwnDecomposition(char16_t unit);
/// Whether the unit at a place, or the pair that it is a half of, is such a character.
[[nodiscard]] bool NSIsOwnDecompositionAt(std::u16string_view text, std::size_t at);

/// Whether a composed character may end, and another begin, in front of the unit.
[[nodiscard]] inline bool NSIsComposedBoundary(std::u16string_view text, std::size_t at) {
  // The letters of Greek and Russian stand by themselves too.
  return at == 0 || at == text.size() || text[at] < NSFirstMark ||
         (text[at] >= u'\u0370' && text[at] < u'\u0483') || NSIsBoundaryAmongMarks(text, at);
}

/// Whether a text has runs of marks so long that ICU, which orders them by insertion, should not
/// be asked to. False for runs of less than 33 units, true from 96 on.
[[nodiscard]] bool NSHasLongRunsOfMarks(std::u16string_view text);

/// Gives the form for the options of a comparison: the canonical decomposition without
/// `NSLiteralSearch`, the case folding with `NSCaseInsensitiveSearch`, or both. Takes time linear
/// in the text but for the sorting of marks.
[[nodiscard]] NS_EXPORT std::u16string NSNormalForm(std::u16string_view text, NSUInteger options);
