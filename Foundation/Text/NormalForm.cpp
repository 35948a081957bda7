#include "Foundation/Text/NormalForm.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <Foundation/NSStringComparison.h>
#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ICU.h>

namespace {

const UNormalizer2* composition() {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const instance = unorm2_getNFCInstance(&status);
  NSCheckICU(status);
  return instance;
}

const UNormalizer2* decomposition() {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const instance = unorm2_getNFDInstance(&status);
  NSCheckICU(status);
  return instance;
}

UChar32 takeCharacter(std::u16string_view& text) {
  return static_cast<UChar32>(NSTakeCharacter(text));
}

// Canonical ordering (Unicode, D109), by a stable sort of the marks between two starters.
void orderMarks(std::vector<UChar32>& characters) {
  const auto isStarter = [](UChar32 character) { return u_getCombiningClass(character) == 0; };
  for (auto start = characters.begin(); start != characters.end();) {
    const auto end = std::find_if(start, characters.end(), isStarter);
    std::ranges::stable_sort(start, end, {}, u_getCombiningClass);
    start = std::find_if_not(end, characters.end(), isStarter);
  }
}

std::u16string decomposedBySorting(std::u16string_view text) {
  std::vector<UChar32> characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    const UChar32 character = takeCharacter(text);
    // No character's decomposition is longer than four.
    std::array<char16_t, 8> room;
    UErrorCode status = U_ZERO_ERROR;
    const auto length =
        unorm2_getDecomposition(decomposition(), character, room.data(), room.size(), &status);
    NSCheckICU(status);
    if (length < 0) {
      characters.push_back(character);
    } else {
      std::u16string_view parts(room.data(), static_cast<std::size_t>(length));
      while (!parts.empty()) characters.push_back(takeCharacter(parts));
    }
  }
  orderMarks(characters);
  std::u16string result;
  result.reserve(characters.size());
  for (const UChar32 character : characters) {
    if (U_IS_SUPPLEMENTARY(character)) result += static_cast<char16_t>(U16_LEAD(character));
    result +=
        static_cast<char16_t>(U_IS_SUPPLEMENTARY(character) ? U16_TRAIL(character) : character);
  }
  return result;
}

std::u16string decomposed(std::u16string_view text) {
  if (NSHasLongRunsOfMarks(text)) return decomposedBySorting(text);
  UErrorCode status = U_ZERO_ERROR;
  std::u16string result(text.size() * 4, u'\0');
  auto capacity = NSICULength(result);
  auto length = unorm2_normalize(decomposition(), NSICUText(text), NSICULength(text), result.data(),
                                 capacity, &status);
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    status = U_ZERO_ERROR;
    result.resize(static_cast<std::size_t>(length));
    capacity = length;
    length = unorm2_normalize(decomposition(), NSICUText(text), NSICULength(text), result.data(),
                              capacity, &status);
  }
  NSCheckICU(status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::u16string folded(std::u16string_view text) {
  // No unit's default folding is longer than three.
  std::u16string result(text.size() * 3, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const auto length = u_strFoldCase(result.data(), NSICULength(result), NSICUText(text),
                                    NSICULength(text), U_FOLD_CASE_DEFAULT, &status);
  if (status != U_STRING_NOT_TERMINATED_WARNING) NSCheckICU(status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

bool isBoundaryCharacter(UChar32 character) {
  return (U_GET_GC_MASK(character) & U_GC_M_MASK) == 0 &&
         unorm2_hasBoundaryBefore(composition(), character) != 0;
}

// Answers for all units, kept for 32 units at a time with a bit that tells that they are known.
template <bool (*ask)(UChar32)>
bool keptAnswer(char16_t unit) {
  static constinit std::array<std::atomic<std::uint64_t>, 0x10000 / 32> answers{};
  std::atomic<std::uint64_t>& known = answers[unit / 32U];
  std::uint64_t bits = known.load(std::memory_order_relaxed);
  if (bits == 0) {
    bits = std::uint64_t{1} << 32U;
    for (std::uint32_t k = 0; k < 32; ++k) {
      const std::uint64_t answer = ask(static_cast<UChar32>((unit & ~31U) + k));
      bits |= answer << k;
    }
    known.store(bits, std::memory_order_relaxed);
  }
  return (bits >> (unit % 32U) & 1U) != 0;
}

bool isOwnDecomposition(UChar32 character) {
  return !NSIsSurrogate(static_cast<char16_t>(character)) &&
         unorm2_isInert(decomposition(), character) != 0;
}

}  // namespace

bool NSIsBoundaryAmongMarks(std::u16string_view text, std::size_t at) {
  const char16_t unit = text[at];
  if (!NSIsSurrogate(unit)) return keptAnswer<isBoundaryCharacter>(unit);
  if (NSSplitsPair(text, at)) return false;
  std::u16string_view rest = text.substr(at);
  return isBoundaryCharacter(takeCharacter(rest));
}

bool NSIsOwnDecomposition(char16_t unit) {
  constexpr char16_t firstDecomposable = 0xC0;
  return unit < firstDecomposable || keptAnswer<isOwnDecomposition>(unit);
}

bool NSIsOwnDecompositionAt(std::u16string_view text, std::size_t at) {
  if (!NSIsSurrogate(text[at])) return NSIsOwnDecomposition(text[at]);
  std::u16string_view rest = text.substr(NSSplitsPair(text, at) ? at - 1 : at);
  return unorm2_isInert(decomposition(), takeCharacter(rest)) != 0;
}

bool NSHasLongRunsOfMarks(std::u16string_view text) {
  // Two neighbours of these places lie in a run that is long enough.
  constexpr std::size_t stride = 32;
  bool wasInside = false;
  for (std::size_t at = stride; at < text.size(); at += stride) {
    const std::size_t start = NSSplitsPair(text, at) ? at - 1 : at;
    const bool isInside = !NSIsComposedBoundary(text, start);
    if (isInside && wasInside) return true;
    wasInside = isInside;
  }
  return false;
}

std::u16string NSNormalForm(std::u16string_view text, NSUInteger options) {
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  if ((options & NSCaseInsensitiveSearch) == 0) return decomposed(text);
  // Decomposed before and after: canonical caseless matching (Unicode, D145).
  return isLiteral ? folded(text) : decomposed(folded(decomposed(text)));
}
