#pragma once

#include "tests/Support.h"

// One-loop models of what the library does with characters and sets, and texts on which simple
// mistakes show: few units, of kinds that are easily taken for each other.

/// Letters, separators, white space of several kinds, an attachment, controls, a combining mark, an
/// emoji, and halves of pairs.
inline rc::Gen<std::u16string> mixedTexts() {
  const std::u16string halves = {0xD83D, 0xDE00, 0xDE00, 0xDBFF};
  return rc::gen::oneOf(textOver(u"ab,, \t\n"), rc::gen::scale(20, textOver(u"ab, ")),
                        textOver(u"aé\u0301\u00A0\u3000\u2028\u0001\u200B\uFFFC, " + halves),
                        rc::gen::scale(30, textOver(u"abcdefgh\U0001F600\uFFFC \u0416" + halves)));
}

inline rc::Gen<NSRef<NSCharacterSet>> mixedSets() {
  const auto make = [](const NSRef<NSString>& text) { return NSMake<NSCharacterSet>(text); };
  return rc::gen::element<NSRef<NSCharacterSet>>(
      make(u","_ns), make(u""_ns), make(u"a\U0001F600"_ns), make(u"b,\u0416\u0301"_ns),
      NSMake<NSCharacterSet>(NSRange{0xDE00, 1}), NSCharacterSet::whitespaceCharacterSet(),
      NSCharacterSet::controlCharacterSet(), make(u"\U0001F600"_ns)->invertedSet());
}

/// A member of a set in a text: one unit, or two for a pair.
inline std::vector<NSRange> charactersOf(std::u16string_view text) {
  std::vector<NSRange> result;
  for (std::size_t at = 0; at < text.size();) {
    const bool isPair =
        at + 1 < text.size() && NSIsHighSurrogate(text[at]) && NSIsLowSurrogate(text[at + 1]);
    result.push_back({at, isPair ? 2U : 1U});
    at += isPair ? 2 : 1;
  }
  return result;
}

inline bool isMember(const NSRef<NSCharacterSet>& set, std::u16string_view text,
                     NSRange character) {
  if (character.length == 1) return set->characterIsMember(text[character.location]);
  std::u16string_view pair = text.substr(character.location, 2);
  return set->longCharacterIsMember(NSTakeCharacter(pair));
}

/// What a search for a member finds.
inline NSRange memberModel(const NSRef<NSCharacterSet>& set, std::u16string_view text,
                           NSUInteger options, NSRange range) {
  const std::u16string_view part = text.substr(range.location, range.length);
  std::vector<NSRange> characters = charactersOf(part);
  if ((options & NSBackwardsSearch) != 0) std::ranges::reverse(characters);
  if ((options & NSAnchoredSearch) != 0 && characters.size() > 1) characters.resize(1);
  for (const NSRange character : characters) {
    if (isMember(set, part, character)) {
      return {range.location + character.location, character.length};
    }
  }
  return NSNotFoundRange;
}

/// A range that fits a text of this length.
inline NSRange anyRange(NSUInteger length) {
  const auto start = *rc::gen::inRange<NSUInteger>(0, length + 1);
  return {start, *rc::gen::inRange<NSUInteger>(0, length - start + 1)};
}
