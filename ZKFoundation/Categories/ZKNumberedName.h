#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <ZKFoundation/Categories/ZKFreeNumber.h>

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
  bool _isTaken = false;
  ZKFreeNumber _numbers;
};
