#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <tuple>
#include <utility>

/// Searches in time linear in the text and without memory of its own, for texts on which quicker
/// searches give up. After M. Crochemore and D. Perrin, "Two-way string-matching" (1991).
template <std::random_access_iterator Needle>
class NSTwoWaySearch {
 public:
  /// The needle, which is not empty, must outlive the search.
  NSTwoWaySearch(Needle first, Needle last)
      : _needle(first), _length(static_cast<std::size_t>(last - first)) {
    const Factor ascending = greatestSuffix([](auto a, auto b) { return a < b; });
    const Factor descending = greatestSuffix([](auto a, auto b) { return b < a; });
    std::tie(_middle, _period) = std::max(ascending, descending);
    if (std::equal(first, at(_middle), at(_period))) {
      _remembered = _length - _period;
    } else {
      _period = std::max(_middle, _length - _middle) + 1;
    }
  }

  /// Gives the offset of the first occurrence that `accept`, which is told its offset, agrees to;
  /// the length of the text when there is none. Occurrences that are not accepted may overlap the
  /// next.
  template <std::random_access_iterator Text, class Accept>
  [[nodiscard]] std::size_t find(Text first, Text last, Accept accept) const {
    const auto length = static_cast<std::size_t>(last - first);
    std::size_t known = 0;  // So much of the needle's start is known to match.
    for (std::size_t place = 0; place + _length <= length;) {
      const Text text = first + static_cast<std::ptrdiff_t>(place);
      const std::size_t right = matchedUpTo(text, std::max(_middle, known));
      if (right < _length) {
        place += right - _middle + 1;
        known = 0;
        continue;
      }
      std::size_t left = _middle;
      while (left > known && *at(left - 1) == text[static_cast<std::ptrdiff_t>(left - 1)]) --left;
      if (left <= known && accept(place)) return place;
      place += _period;
      known = _remembered;
    }
    return length;
  }

 private:
  // Where a suffix begins, and its period.
  using Factor = std::pair<std::size_t, std::size_t>;

  [[nodiscard]] Needle at(std::size_t k) const { return _needle + static_cast<std::ptrdiff_t>(k); }

  // The greatest suffix by an order of the units.
  template <class Less>
  [[nodiscard]] Factor greatestSuffix(Less less) const {
    Factor best = {0, 1};
    auto& [start, period] = best;
    std::size_t other = 1;
    for (std::size_t k = 0; other + k < _length;) {
      const auto a = *at(other + k);
      const auto b = *at(start + k);
      if (less(a, b)) {
        other += k + 1;
        k = 0;
        period = other - start;
      } else if (less(b, a)) {
        start = other++;
        k = 0;
        period = 1;
      } else if (++k == period) {
        other += period;
        k = 0;
      }
    }
    return best;
  }

  // Where the needle's units from k on first differ from the text's.
  template <class Text>
  [[nodiscard]] std::size_t matchedUpTo(Text text, std::size_t k) const {
    if constexpr (std::contiguous_iterator<Needle> && std::contiguous_iterator<Text>) {
      constexpr std::size_t block = 32;
      const auto* const units = std::to_address(text);
      while (k + block <= _length &&
             std::memcmp(units + k, std::to_address(at(k)), block * sizeof(*units)) == 0) {
        k += block;
      }
    }
    while (k < _length && *at(k) == text[static_cast<std::ptrdiff_t>(k)]) ++k;
    return k;
  }

  Needle _needle;
  std::size_t _length;
  // The critical factorization, how far a match of the right part lets the needle move, and how
  // much of it is known to match then.
  std::size_t _middle = 0;
  std::size_t _period = 1;
  std::size_t _remembered = 0;
};
