#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Finds a free name by the number at its end, in one pass over those that are taken.
class ZKNumberedName {
 public:
  /// The name must outlive this. At most `count` names will be taken.
  ZKNumberedName(std::u16string_view name, std::size_t count);

  /// Notes that a name is taken.
  void take(std::u16string_view name);
  /// Gives the name itself, or its base with the first free number after its own.
  [[nodiscard]] std::u16string freeName() const;

 private:
  // The name in two, the second of which is its number.
  std::u16string_view _base;
  std::u16string_view _digits;
  std::uint64_t _number = 0;
  bool _isTaken = false;
  // Of `count` names no more can be taken than these bits are; bit k is number + 1 + k.
  std::vector<std::uint64_t> _takenNumbers;
};
