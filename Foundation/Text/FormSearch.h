#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <Foundation/NSBlock.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSUnitBuffer.h>
#include <Foundation/Text/FormTable.h>
#include <Foundation/Text/UnitSearch.h>

/// Searches a text for what has the same normal form as a needle. A match consists of whole pieces:
/// of composed characters, the units around it included, or of characters in a literal search.
class NSFormSearch {
 public:
  /// The text must outlive the search; the needle is not empty.
  NSFormSearch(std::u16string_view text, std::u16string_view needle, NSUInteger options);

  /// Finds the first match, or the last one backwards, or one at an end of the range, that `accept`
  /// agrees to, which is not nil, among those in the range that begin before the limit.
  [[nodiscard]] NSRange find(NSRange range, std::size_t limit,
                             NSBlockRef<bool(NSRange)> accept) const;

 private:
  struct Scan;
  void chooseProbes();
  template <class Visit>
  void forEachAtStart(std::size_t at, Visit visit) const;
  [[nodiscard]] bool isBoundary(std::u16string_view text, std::size_t at) const;
  [[nodiscard]] std::size_t endOfPiece(std::u16string_view text, std::size_t start) const;
  [[nodiscard]] bool areKept(std::u16string_view marks, char32_t first,
                             std::size_t formLength) const;
  void appendForm(std::u16string_view piece, NSUnitBuffer& forms) const;
  [[nodiscard]] std::size_t endOfMatch(Scan& scan, std::size_t place) const;
  [[nodiscard]] NSRange judge(Scan& scan, std::size_t place) const;
  [[nodiscard]] NSRange scanForwards(Scan& scan) const;
  [[nodiscard]] NSRange scanBackwards(Scan& scan) const;
  [[nodiscard]] NSRange findNormalized(const Scan& scan) const;

  std::u16string_view _text;
  NSUInteger _options;
  bool _isLiteral;
  const NSFormTable& _forms;
  // The needle's form, which for most words needs no memory but this, and bits of its units.
  std::array<char16_t, 32> _room;
  NSUnitBuffer _form{_room};
  std::uint64_t _units = 0;
  // Units that a match begins with, and what stands so many units after its start.
  std::array<NSUnitChoice, 2> _choices;
  std::size_t _distance = 0;
};
