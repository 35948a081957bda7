#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

/// Ends the run, which the fuzzer reports with the input, unless the statement holds.
inline void require(bool holds) {
  if (!holds) std::abort();
}

/// The input as UTF-16 units; an odd byte at its end is dropped.
inline std::u16string unitsOf(const std::uint8_t* data, std::size_t size) {
  std::u16string units(size / 2, u'\0');
  if (!units.empty()) std::memcpy(units.data(), data, units.size() * 2);
  return units;
}

inline std::string_view bytesOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}
