#include "Foundation/NSStringComparison.h"

#include <algorithm>
#include <optional>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <Foundation/NSUnicode.h>
#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/ICU.h>
#include <Foundation/Text/NormalForm.h>

namespace {

NSComparisonResult resultOf(std::int64_t sign) {
  return sign < 0 ? NSOrderedAscending : sign > 0 ? NSOrderedDescending : NSOrderedSame;
}

// Counts the units with which both texts begin, the capital and small letters of ASCII alike.
std::size_t countSharedFolded(std::u16string_view a, std::u16string_view b) {
  const auto shared = std::ranges::mismatch(a, b, {}, NSLowerASCII, NSLowerASCII);
  return static_cast<std::size_t>(shared.in1 - a.begin());
}

// The first unit of what a text's form has from a place on, -1 at its end; nothing where that
// depends on what stands around the place.
std::optional<int> unitOfFormAt(std::u16string_view text, std::size_t place, bool foldsCase) {
  if (place == text.size()) return -1;
  const char16_t unit = text[place];
  const bool isPlain = foldsCase ? unit < 0x80 : NSIsOwnDecompositionAt(text, place);
  if (!isPlain) return std::nullopt;
  return foldsCase ? NSLowerASCII(unit) : unit;
}

// The last place up to that one at which the forms of both texts may be cut.
std::size_t boundaryUpTo(std::size_t place, std::u16string_view a, std::u16string_view b) {
  const auto isBoundary = [&](std::u16string_view text) {
    const bool isEnd = place == text.size();
    return isEnd || (!NSIsSurrogate(text[place]) && NSIsComposedBoundary(text, place));
  };
  while (place > 0 && !(isBoundary(a) && isBoundary(b))) --place;
  return place;
}

// Whether ICU may be asked. Where one text has all of a pair and the other its first half alone,
// ICU goes astray and may read in front of the text; long runs of marks it sorts slowly.
bool isForICU(std::u16string_view text, bool isLiteral) {
  return NSIsWellFormed(text) && (isLiteral || !NSHasLongRunsOfMarks(text));
}

}  // namespace

NSComparisonResult NSCompareUnits(std::u16string_view a, std::u16string_view b,
                                  NSOptions<NSStringCompareOptions> options) {
  const bool foldsCase = (options & NSCaseInsensitiveSearch) != 0;
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  if (!foldsCase && isLiteral) return resultOf(a.compare(b));
  const std::size_t place = foldsCase ? countSharedFolded(a, b) : NSCountShared(a, b);
  const auto unitOfA = unitOfFormAt(a, place, foldsCase);
  const auto unitOfB = unitOfFormAt(b, place, foldsCase);
  if (unitOfA && unitOfB) return resultOf(*unitOfA - *unitOfB);
  const std::size_t start = boundaryUpTo(place, a, b);
  a.remove_prefix(start);
  b.remove_prefix(start);
  if (!isForICU(a, isLiteral) || !isForICU(b, isLiteral)) {
    return resultOf(NSNormalForm(a, options).compare(NSNormalForm(b, options)));
  }

  UErrorCode status = U_ZERO_ERROR;
  const auto compare = isLiteral ? u_strCaseCompare : unorm_compare;
  const std::uint32_t mode = foldsCase ? U_COMPARE_IGNORE_CASE : U_FOLD_CASE_DEFAULT;
  const std::int32_t sign =
      compare(NSICUText(a), NSICULength(a), NSICUText(b), NSICULength(b), mode, &status);
  NSCheckICU(status);
  return resultOf(sign);
}
