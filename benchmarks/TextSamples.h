#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>

#include <Foundation/NSCharacterSet.h>

inline constexpr std::size_t lineLength = 60;
inline constexpr std::size_t longLength = std::size_t{1} << 20U;
inline constexpr std::u16string_view latinLetters = u"etaoinshrdlucmfwypvbgkqjxz";

// Words of 2 to 9 letters, from a fixed seed; `member` stands in place of every n-th unit, of none
// when n is 0.
inline std::u16string makeText(std::size_t length, std::size_t every, char16_t member,
                               std::u16string_view letters = latinLetters) {
  std::u16string text;
  std::uint32_t seed = 1;
  while (text.size() < length) {
    seed = seed * 1664525U + 1013904223U;
    const std::size_t word = 2 + (seed >> 16U) % 8;
    for (std::size_t k = 0; k < word; ++k) {
      seed = seed * 1664525U + 1013904223U;
      text += letters[(seed >> 16U) % letters.size()];
    }
    text += member == u' ' ? u'_' : u' ';
  }
  text.resize(length);
  for (std::size_t k = every; every != 0 && k < length; k += every) text[k] = member;
  return text;
}

struct Language {
  const char* name;
  std::u16string_view letters;
  // Stands in place of every 90th unit.
  char16_t rare;
  std::u16string_view needle;
  // As it stands in the text.
  std::u16string_view word;
};

inline constexpr std::array<Language, 7> languages = {{
    {"ASCII", latinLetters, u'e', u"NEEDLE", u"Needle"},
    {"English", latinLetters, u'’', u"NEEDLE", u"Needle"},
    {"German", u"enisratdhulcgmobwfkzpvjyxäöü", u'ß', u"NÄHNADEL", u"Nähnadel"},
    {"Greek", u"αοιετσνηυρπκμλωγδχθφβξζψάέήίόύώ", u'–', u"ΒΕΛΌΝΑ", u"βελόνα"},
    {"Russian", u"оеаинтсрвлкмдпуяыьгзбчйхжшюцщэф", u'–', u"ИГОЛКА", u"иголка"},
    {"Hindi", u"कखगचजटतदनपबमयरलवशसहािीुेो्ं", u'–', u"सुई", u"सुई"},
    {"Japanese", u"のにはをたがでてとしれさいるな日本人大年出中一国", u'。', u"針仕事", u"針仕事"},
}};

// What an expert would write: one bit a unit.
class Bitmap {
 public:
  explicit Bitmap(const NSRef<NSCharacterSet>& set) {
    for (std::size_t k = 0; k < 0x10000; ++k) {
      _bits[k] = set->characterIsMember(static_cast<char16_t>(k));
    }
  }
  bool operator[](char16_t unit) const { return _bits[unit]; }

 private:
  std::bitset<0x10000> _bits;
};

// What an expert would write with the standard library.
inline std::u16string removedByFinding(std::u16string_view text, std::u16string_view needle) {
  std::u16string result;
  result.reserve(text.size());
  std::size_t start = 0;
  for (auto place = text.find(needle); place != std::u16string_view::npos;
       place = text.find(needle, start)) {
    result.append(text, start, place - start);
    start = place + needle.size();
  }
  return result.append(text, start);
}
