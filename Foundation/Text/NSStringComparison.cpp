#include "Foundation/NSStringComparison.h"

#include <algorithm>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/ICU.h>
#include <Foundation/Text/NormalForm.h>

namespace {

NSComparisonResult resultOf(std::int64_t sign) {
  return sign < 0 ? NSOrderedAscending : sign > 0 ? NSOrderedDescending : NSOrderedSame;
}

NSComparisonResult compareASCIIFolded(std::u16string_view a, std::u16string_view b) {
  const auto [atA, atB] = std::ranges::mismatch(a, b, {}, NSLowerASCII, NSLowerASCII);
  if (atA == a.end() || atB == b.end()) return resultOf((atA != a.end()) - (atB != b.end()));
  return resultOf(NSLowerASCII(*atA) - NSLowerASCII(*atB));
}

// Whether the order of two texts is that of their units from this place on, the first that are
// not the same, or that of their lengths: forms have a boundary in front of such units.
bool isDecidedBy(std::u16string_view a, std::u16string_view b, std::size_t place) {
  return (place == a.size() || NSIsOwnDecomposition(a[place])) &&
         (place == b.size() || NSIsOwnDecomposition(b[place]));
}

}  // namespace

NSComparisonResult NSCompareUnits(std::u16string_view a, std::u16string_view b,
                                  NSOptions<NSStringCompareOptions> options) {
  const bool foldsCase = (options & NSCaseInsensitiveSearch) != 0;
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  if (!foldsCase) {
    if (isLiteral) return resultOf(a.compare(b));
    const std::size_t place = NSCountShared(a, b);
    if (isDecidedBy(a, b, place)) return resultOf(a.substr(place).compare(b.substr(place)));
  } else if (NSIsASCII(a) && NSIsASCII(b)) {
    return compareASCIIFolded(a, b);
  }
  if (!isLiteral && (NSHasLongRunsOfMarks(a) || NSHasLongRunsOfMarks(b))) {
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
