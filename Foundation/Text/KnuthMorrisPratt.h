#pragma once

#include <cstddef>
#include <iterator>
#include <vector>

/// Searches as Knuth, Morris and Pratt do: in time linear in the text whatever it holds, for texts
/// on which quicker searches give up.
template <class Needle, class Equal>
class NSKnuthMorrisPratt {
 public:
  /// The needle, which is not empty, must outlive the search.
  NSKnuthMorrisPratt(Needle first, Needle last, Equal equal)
      : _needle(first),
        _borders(static_cast<std::size_t>(std::distance(first, last))),
        _equal(equal) {
    std::size_t border = 0;
    for (std::size_t k = 1; k < _borders.size(); ++k) {
      border = extended(border, at(k));
      _borders[k] = border;
    }
  }

  /// Gives the offset of the first occurrence that `accept`, which is told its offset, agrees to;
  /// the length of the text when there is none. Occurrences that are not accepted may overlap the
  /// next.
  template <class Text, class Accept>
  [[nodiscard]] std::size_t find(Text first, Text last, Accept accept) const {
    const auto length = static_cast<std::size_t>(std::distance(first, last));
    std::size_t matched = 0;
    for (std::size_t k = 0; k < length; ++k) {
      if (matched == _borders.size()) matched = _borders.back();
      matched = extended(matched, first[static_cast<std::ptrdiff_t>(k)]);
      if (matched == _borders.size() && accept(k + 1 - matched)) return k + 1 - matched;
    }
    return length;
  }

  [[nodiscard]] bool overlapsItself() const { return _borders.back() != 0; }

 private:
  [[nodiscard]] auto at(std::size_t k) const { return _needle[static_cast<std::ptrdiff_t>(k)]; }

  // How much of the needle matches once one more unit follows a match of this much.
  template <class Unit>
  [[nodiscard]] std::size_t extended(std::size_t matched, Unit unit) const {
    while (matched > 0 && !_equal(at(matched), unit)) matched = _borders[matched - 1];
    return _equal(at(matched), unit) ? matched + 1 : 0;
  }

  Needle _needle;
  // borders[k] is the length of the longest proper beginning of the needle that is also the end of
  // its first k + 1 units.
  std::vector<std::size_t> _borders;
  Equal _equal;
};
