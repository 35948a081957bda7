#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include <Foundation/detail/HashSeed.h>

/// Hashes the units: each 16 bytes go into one product of 128 bits whose halves are folded, as in
/// wyhash, so that every bit counts for all bits of the hash.
///
/// The factors contain random numbers of the process. `std::hash` would not do: its seed is fixed,
/// so texts of one hash can be prepared, and whatever is mixed in afterwards keeps them together.
/// Resists texts that were chosen without knowing these numbers; not one who sees hashes, or
/// measures times long enough to infer the numbers, as this is no cryptographic function.
[[nodiscard]] inline std::uint64_t NSHashUnits(std::u16string_view units) noexcept {
  const std::uint64_t secret = NSHashSeed[1];
  __extension__ using Wide = unsigned __int128;
  const auto fold = [](std::uint64_t a, std::uint64_t b) {
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
  };
  const auto load = [](const char16_t* from, std::size_t count) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, count * sizeof(char16_t));
    return value;
  };
  constexpr std::size_t word = 4;
  const char16_t* at = units.data();
  std::size_t rest = units.size();
  std::uint64_t hash = rest * secret ^ NSHashSeed[2];
  for (; rest > 2 * word; at += 2 * word, rest -= 2 * word) {
    hash = fold(load(at, word) ^ secret, load(at + word, word) ^ hash);
  }
  // The last words may overlap: together they hold every unit that is left.
  std::uint64_t a = 0;
  std::uint64_t b = 0;
  if (rest >= word) {
    a = load(at, word);
    b = load(at + rest - word, word);
  } else if (rest >= 2) {
    a = load(at, 2);
    b = load(at + rest - 2, 2);
  } else if (rest == 1) {
    a = *at;
  }
  return fold(a ^ secret, b ^ hash);
}
