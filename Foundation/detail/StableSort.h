#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/// Sorts entries that are cheap to copy; those of which none is before the other stay in their
/// order. Whatever `isBefore` answers, even at random, the result has each entry once, which the
/// standard library's sorts do not promise. `fetch` is told which entries are asked about soon.
template <class Entry, class IsBefore, class Fetch>
void NSStableSort(std::vector<Entry>& entries, IsBefore isBefore, Fetch fetch) {
  constexpr std::ptrdiff_t ahead = 4;
  // What is sorted by insertion before runs are merged.
  constexpr std::size_t shortRun = 8;
  const std::size_t count = entries.size();
  for (std::size_t start = 0; start < count; start += shortRun) {
    const std::size_t end = std::min(start + shortRun, count);
    for (std::size_t next = start + 1; next < end; ++next) {
      const Entry entry = entries[next];
      std::size_t place = next;
      for (; place > start && isBefore(entry, entries[place - 1]); --place) {
        entries[place] = entries[place - 1];
      }
      entries[place] = entry;
    }
  }
  if (count <= shortRun) return;
  std::vector<Entry> merged(entries);
  for (std::size_t width = shortRun; width < count; width *= 2) {
    Entry* out = merged.data();
    for (std::size_t start = 0; start < count; start += 2 * width) {
      const Entry* a = entries.data() + start;
      const Entry* const middle = entries.data() + std::min(start + width, count);
      const Entry* b = middle;
      const Entry* const end = entries.data() + std::min(start + 2 * width, count);
      // Two runs that follow one another need no merging.
      if (b != end && isBefore(*b, *(b - 1))) {
        while (a != middle && b != end) {
          if (middle - a > ahead) fetch(a[ahead]);
          if (end - b > ahead) fetch(b[ahead]);
          const bool takesB = isBefore(*b, *a);
          *out++ = takesB ? *b : *a;
          a += takesB ? 0 : 1;
          b += takesB ? 1 : 0;
        }
      }
      out = std::copy(a, middle, out);
      out = std::copy(b, end, out);
    }
    entries.swap(merged);
  }
}
