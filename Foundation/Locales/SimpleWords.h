#pragma once

#include <cstddef>
#include <string_view>

/// Capitalises the words that begin a text by tables, into the room for all of it: letters whose
/// cases are single units and depend on nothing around them, digits, spaces and punctuation, in
/// languages without habits of their own. Stops in front of a word with anything else, and gives
/// how many units it has written: up to a place that no rule of words and cases looks across.
[[nodiscard]] std::size_t NSCapitalizeSimpleWords(std::u16string_view text, char16_t* out);

/// Gives the length of as many words at the start of a text as have `least` units or more, up to
/// such a place.
[[nodiscard]] std::size_t NSLengthOfWords(std::u16string_view text, std::size_t least);
