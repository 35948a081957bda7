#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <Foundation/detail/HashSeed.h>

// Hashes contain random numbers of the process. `std::hash` would not do: its seed is fixed, so
// contents of one hash can be prepared, and whatever is mixed in afterwards keeps them together.
// They resist contents that were chosen without knowing these numbers; not one who sees hashes, or
// measures times long enough to infer the numbers, as these are no cryptographic functions.

/// Multiplies to 128 bits and folds the halves, so that every bit counts for all bits.
[[nodiscard]] inline std::uint64_t NSFoldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{a} * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

/// Adds a value to the hash of those before it.
[[nodiscard]] inline std::uint64_t NSHashWith(std::uint64_t hash, std::uint64_t value) noexcept {
  return NSFoldedProduct(value ^ NSHashSeed[1], std::rotl(hash, 32) ^ NSHashSeed[2]);
}

/// Hashes units or bytes: each 16 bytes go into one product, as in wyhash.
template <class Unit>
[[nodiscard]] std::uint64_t NSHashText(std::basic_string_view<Unit> text) noexcept {
  const std::uint64_t secret = NSHashSeed[1];
  const auto load = [](const Unit* from, std::size_t count) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, count * sizeof(Unit));
    return value;
  };
  constexpr std::size_t word = sizeof(std::uint64_t) / sizeof(Unit);
  constexpr std::size_t half = word / 2;
  const Unit* at = text.data();
  std::size_t rest = text.size();
  std::uint64_t hash = rest * secret ^ NSHashSeed[2];
  for (; rest > 2 * word; at += 2 * word, rest -= 2 * word) {
    hash = NSFoldedProduct(load(at, word) ^ secret, load(at + word, word) ^ hash);
  }
  // The last words may overlap: together they hold every unit that is left.
  std::uint64_t a = 0;
  std::uint64_t b = 0;
  if (rest >= word) {
    a = load(at, word);
    b = load(at + rest - word, word);
  } else if (rest >= half) {
    a = load(at, half);
    b = load(at + rest - half, half);
  } else if (rest != 0) {
    a = load(at, 1);
    if constexpr (half > 2) b = load(at + rest / 2, 1) << 8U | load(at + rest - 1, 1);
  }
  return NSFoldedProduct(a ^ secret, b ^ hash);
}
