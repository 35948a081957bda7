#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSExport.h>

/// Tells what a character set is asked about a surrogate pair.
enum class NSMembership : std::uint8_t {
  /// Every unit by itself: the two halves apart.
  units,
  /// The character that the pair stands for; its two units are members together. Halves that stand
  /// alone are asked about by themselves.
  characters,
};

/// Holds which units of a part of a text are members, in bits: bit `k % 64` of word `k / 64`
/// stands for the k-th unit of the part.
struct NSMemberBits {
  static constexpr std::size_t unitCount = 1024;
  // The bits of a part that fills the room are followed by an empty word.
  std::array<std::uint64_t, unitCount / 64 + 1> words;
};

/// Marks the members among the `NSMemberBits::unitCount` units from `from` on, or those that there
/// are. Gives the words in use; bits after the text are 0.
[[nodiscard]] NS_EXPORT std::span<const std::uint64_t> NSFindMembers(const NSCharacterSet& set,
                                                                     std::u16string_view text,
                                                                     std::size_t from,
                                                                     NSMembership membership,
                                                                     NSMemberBits& bits) noexcept;

/// Finds the first member at or after `from`; `npos` when there is none.
[[nodiscard]] NS_EXPORT std::size_t NSFirstMember(const NSCharacterSet& set,
                                                  std::u16string_view text, std::size_t from,
                                                  NSMembership membership) noexcept;

/// Gives the end of the last member; 0 when there is none.
[[nodiscard]] NS_EXPORT std::size_t NSEndOfLastMember(const NSCharacterSet& set,
                                                      std::u16string_view text,
                                                      NSMembership membership) noexcept;

/// Writes the units that are no members to `out`, which has room for the whole text. It may be the
/// text's own storage when the units are asked about. Gives the number of units written.
[[nodiscard]] NS_EXPORT std::size_t NSCopyNonMembers(const NSCharacterSet& set,
                                                     std::u16string_view text,
                                                     NSMembership membership,
                                                     char16_t* out) noexcept;

/// Calls `visit` with the position of every member unit, from left to right.
template <class Visit>
void NSForEachMember(const NSCharacterSet& set, std::u16string_view text, NSMembership membership,
                     Visit visit) {
  NSMemberBits bits;
  for (std::size_t from = 0; from < text.size(); from += NSMemberBits::unitCount) {
    std::size_t at = from;
    for (std::uint64_t word : NSFindMembers(set, text, from, membership, bits)) {
      for (; word != 0; word &= word - 1) {
        visit(at + static_cast<std::size_t>(std::countr_zero(word)));
      }
      at += 64;
    }
  }
}
