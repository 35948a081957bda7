#include "Foundation/Text/StringSorting.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>

#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/NormalForm.h>
#include <Foundation/detail/StableSort.h>

namespace {

struct Entry {
  std::uint64_t beginning;
  std::size_t place;
};

// The first eight bytes, of which each unit has one to three as in UTF-8: they order as the units
// do, also where one is cut. Missing ones are 0.
std::uint64_t beginningOf(std::u16string_view text) {
  std::uint64_t bytes = 0;
  std::uint32_t room = 64;
  const auto append = [&](std::uint64_t byte) {
    if (room == 0) return;
    room -= 8;
    bytes |= byte << room;
  };
  for (const char16_t unit : text.substr(0, 8)) {
    const std::uint32_t value = unit;
    if (value < 0x80) {
      append(value);
    } else if (value < 0x800) {
      append(0xC0U | value >> 6U);
      append(0x80U | (value & 0x3FU));
    } else {
      append(0xE0U | value >> 12U);
      append(0x80U | (value >> 6U & 0x3FU));
      append(0x80U | (value & 0x3FU));
    }
  }
  return bytes;
}

// Counts the units with which all texts begin.
std::size_t countShared(std::span<const std::u16string_view> texts) {
  if (texts.empty()) return 0;
  std::u16string_view shared = texts.front();
  for (const auto text : texts) shared = shared.substr(0, NSCountShared(shared, text));
  return shared.size();
}

}  // namespace

std::vector<std::size_t> NSSortedPlaces(std::span<const std::u16string_view> texts) {
  std::vector<std::u16string_view> forms(texts.begin(), texts.end());
  std::deque<std::u16string> made;
  for (auto& form : forms) {
    if (!NSIsASCII(form) && !std::ranges::all_of(form, NSIsOwnDecomposition)) {
      form = made.emplace_back(NSNormalForm(form, 0));
    }
  }
  const std::size_t shared = countShared(forms);
  std::vector<Entry> entries;
  entries.reserve(texts.size());
  for (auto& form : forms) {
    form.remove_prefix(shared);
    entries.push_back({beginningOf(form), entries.size()});
  }
  NSStableSort(
      entries,
      [&](const Entry& a, const Entry& b) {
        if (a.beginning != b.beginning) return a.beginning < b.beginning;
        return forms[a.place] < forms[b.place];
      },
      [](const Entry& /*entry*/) {});
  std::vector<std::size_t> places;
  places.reserve(entries.size());
  for (const Entry& entry : entries) places.push_back(entry.place);
  return places;
}
