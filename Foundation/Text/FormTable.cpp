#include "Foundation/Text/FormTable.h"

#include <algorithm>
#include <numeric>
#include <span>

#include <unicode/uniset.h>
#include <unicode/usetiter.h>
#include <unicode/utf16.h>

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSStringComparison.h>
#include <Foundation/Text/ICU.h>
#include <Foundation/Text/NormalForm.h>

namespace {

// Hangul syllables decompose by arithmetic (The Unicode Standard, section 3.12).
constexpr char32_t firstSyllable = 0xAC00;
constexpr char32_t lastSyllable = 0xD7A3;
constexpr char32_t leadingJamo = 0x1100;
constexpr char32_t vowelJamo = 0x1161;
constexpr char32_t trailingJamo = 0x11A7;
constexpr char32_t leads = 19;
constexpr char32_t vowels = 21;
constexpr char32_t trails = 28;

constexpr bool isSyllable(char32_t character) {
  return character >= firstSyllable && character <= lastSyllable;
}

std::u16string_view syllableForm(char32_t syllable, NSFormTable::Room& room) {
  const char32_t index = syllable - firstSyllable;
  room = {static_cast<char16_t>(leadingJamo + index / (vowels * trails)),
          static_cast<char16_t>(vowelJamo + index / trails % vowels),
          static_cast<char16_t>(trailingJamo + index % trails)};
  return {room.data(), index % trails == 0 ? 2U : 3U};
}

}  // namespace

std::u16string_view NSFormTable::unitsOf(char32_t character, Room& room) {
  std::size_t length = 0;
  U16_APPEND_UNSAFE(room.data(), length, character);
  return {room.data(), length};
}

const NSFormTable& NSFormTable::forOptions(NSUInteger options) {
  const bool isLiteral = (options & NSLiteralSearch) != 0;
  if ((options & NSCaseInsensitiveSearch) == 0) {
    static const NSNeverDestroyed<NSFormTable> decomposed(NSFormTable(0));
    return *decomposed;
  }
  if (isLiteral) {
    static const NSNeverDestroyed<NSFormTable> folded(
        NSFormTable(NSLiteralSearch | NSCaseInsensitiveSearch));
    return *folded;
  }
  static const NSNeverDestroyed<NSFormTable> both(NSFormTable{NSCaseInsensitiveSearch});
  return *both;
}

NSFormTable::NSFormTable(NSUInteger options) : _decomposes((options & NSLiteralSearch) == 0) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeSet changed(
      u"[[:NFD_Quick_Check=No:][:Changes_When_Casefolded:]-[\\uAC00-\\uD7A3]]", status);
  NSCheckICU(status);
  Room room;
  const auto append = [&](std::u16string_view form) {
    const Place place = {static_cast<std::uint16_t>(_forms.size()),
                         static_cast<std::uint16_t>(form.size())};
    _forms += form;
    return place;
  };
  for (icu::UnicodeSetIterator next(changed); next.next();) {
    const auto character = static_cast<char32_t>(next.getCodepoint());
    const std::u16string_view units = unitsOf(character, room);
    const std::u16string form = NSNormalForm(units, options);
    if (form == units) continue;
    _entries.push_back({append(form), character});
  }
  _pages.index(_entries, &Entry::character);
  for (char32_t near = 0; near < _near.size(); ++near) _near[near] = append(farFormOf(near, room));
  _byForm.resize(_entries.size());
  std::iota(_byForm.begin(), _byForm.end(), std::uint16_t{0});
  const auto firstUnit = [&](std::uint16_t k) { return char32_t{formOf(_entries[k])[0]}; };
  std::ranges::sort(_byForm, {}, [&](std::uint16_t k) { return formOf(_entries[k]); });
  _formPages.index(_byForm, firstUnit);
  for (std::size_t near = 0; near < _nearStarts.size(); ++near) {
    const auto first = std::ranges::lower_bound(_byForm, char32_t(near), {}, firstUnit);
    _nearStarts[near] = static_cast<std::uint16_t>(first - _byForm.begin());
  }
}

template <class Entries, class Key>
void NSFormTable::Pages::index(const Entries& entries, Key key) {
  for (std::size_t page = 0; page < _starts.size(); ++page) {
    const auto first = std::ranges::lower_bound(entries, char32_t(page << 8U), {}, key);
    _starts[page] = static_cast<std::uint16_t>(first - entries.begin());
  }
}

template <class Entries, class Key>
auto NSFormTable::Pages::from(const Entries& entries, char32_t wanted, Key key) const {
  const std::size_t page = std::min<std::size_t>(wanted >> 8U, _starts.size() - 1);
  const std::size_t end = page + 1 < _starts.size() ? _starts[page + 1] : entries.size();
  const auto some = std::span(entries).subspan(_starts[page], end - _starts[page]);
  return some.subspan(
      static_cast<std::size_t>(std::ranges::lower_bound(some, wanted, {}, key) - some.begin()));
}

std::u16string_view NSFormTable::farFormOf(char32_t character, Room& room) const {
  if (_decomposes && isSyllable(character)) return syllableForm(character, room);
  const auto found = _pages.from(_entries, character, &Entry::character);
  const bool isChanged = !found.empty() && found.front().character == character;
  return isChanged ? formOf(found.front()) : unitsOf(character, room);
}

char32_t NSFormTable::syllableOf(std::u16string_view form) {
  if (form.size() < 2) return 0;
  const char32_t lead = form[0] - leadingJamo;
  const char32_t vowel = form[1] - vowelJamo;
  const char32_t trail = form.size() > 2 ? form[2] - trailingJamo : 0;
  if (lead >= leads || vowel >= vowels || trail >= trails) return 0;
  return firstSyllable + (lead * vowels + vowel) * trails + trail;
}

std::span<const std::uint16_t> NSFormTable::entriesWith(char16_t first) const {
  if (first < nearCount) {
    const std::size_t start = _nearStarts[first];
    return std::span(_byForm).subspan(start, _nearStarts[first + 1U] - start);
  }
  const auto firstUnit = [&](std::uint16_t k) { return char32_t{formOf(_entries[k])[0]}; };
  const std::span<const std::uint16_t> found = _formPages.from(_byForm, first, firstUnit);
  std::size_t count = 0;
  while (count < found.size() && firstUnit(found[count]) == first) ++count;
  return found.first(count);
}
