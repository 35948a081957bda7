#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSTypes.h>

/// The normal forms of single characters (`NSNormalForm`), looked up instead of computed, and the
/// way back from a form to what has it.
class NSFormTable {
 public:
  /// Room for a form that stands in no table.
  using Room = std::array<char16_t, 3>;

  /// Gives the table for the options of a comparison, which is made when it is first asked for.
  [[nodiscard]] static const NSFormTable& forOptions(NSUInteger options);

  /// Gives the units of a character.
  [[nodiscard]] static std::u16string_view unitsOf(char32_t character, Room& room);

  /// Gives the form of a character; of a surrogate half itself.
  [[nodiscard]] std::u16string_view formOf(char32_t character, Room& room) const {
    return character < _near.size() ? formOf(_near[character]) : farFormOf(character, room);
  }

  /// Calls `visit` for the characters whose form may stand at the start of a text in that form: for
  /// all whose form begins with its first unit but those that are their own form, and but syllables
  /// of Hangul that cannot. Leaves out most of those whose second unit has no bit in `units`.
  template <class Visit>
  void forEachAtStart(std::u16string_view text, std::uint64_t units, Visit visit) const {
    for (const std::uint16_t k : entriesWith(text[0])) {
      const std::u16string_view form = formOf(_entries[k]);
      if (form.size() == 1 || (units & bitOf(form[1])) != 0) visit(_entries[k].character, form);
    }
    if (!_decomposes) return;
    Room room;
    for (const std::size_t length : {2U, 3U}) {
      const char32_t syllable = syllableOf(text.substr(0, length));
      if (syllable != 0) visit(syllable, formOf(syllable, room));
    }
  }
  [[nodiscard]] static std::uint64_t bitOf(char16_t unit) {
    return std::uint64_t{1} << (unit % 64U);
  }

 private:
  // Latin, Greek and Cyrillic letters lie below, for which an index is faster than a search.
  static constexpr std::size_t nearCount = 0x530;

  // Where a form is in `_forms`.
  struct Place {
    std::uint16_t start;
    std::uint16_t length;
  };
  struct Entry : Place {
    char32_t character;
  };

  explicit NSFormTable(NSUInteger options);
  // The syllable of Hangul with this form, if there is one; otherwise 0.
  [[nodiscard]] static char32_t syllableOf(std::u16string_view form);
  // Indexes of those whose form begins with the unit.
  [[nodiscard]] std::span<const std::uint16_t> entriesWith(char16_t first) const;
  [[nodiscard]] std::u16string_view formOf(Place place) const {
    return {_forms.data() + place.start, place.length};
  }
  [[nodiscard]] std::u16string_view farFormOf(char32_t character, Room& room) const;

  // Entries with keys in ascending order: where those of each 256 keys begin, up to U+FFFF.
  class Pages {
   public:
    template <class Entries, class Key>
    void index(const Entries& entries, Key key);
    // Those of the key's 256 that do not lie before it.
    template <class Entries, class Key>
    auto from(const Entries& entries, char32_t wanted, Key key) const;

   private:
    std::array<std::uint16_t, 257> _starts{};
  };

  std::u16string _forms;
  // Of characters below, those included that are their own form.
  std::array<Place, nearCount> _near{};
  // In the order of the characters.
  std::vector<Entry> _entries;
  Pages _pages;
  // Indexes of entries, in the order of their forms.
  std::vector<std::uint16_t> _byForm;
  Pages _formPages;
  // Where those of them begin whose form begins with each unit below.
  std::array<std::uint16_t, nearCount + 1> _nearStarts{};
  bool _decomposes;
};
