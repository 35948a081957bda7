#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <ZKFoundation/Categories/ZKFreeNumber.h>
#include <ZKFoundation/Categories/ZKNamingOptions.h>

/// Finds a free name by the naming options, in one pass over those that are taken.
class ZKStyledName {
 public:
  /// The name must outlive this. At most `count` names will be taken.
  ZKStyledName(std::u16string_view name, const ZKNamingOptions& options, std::size_t count);

  /// Notes that a name is taken.
  void take(std::u16string_view name);
  /// Gives the name itself, or one with the first free number after its own.
  [[nodiscard]] std::u16string freeName() const;

 private:
  // What stands before and after the number, which has leading zeros up to the width.
  struct Parts {
    std::u16string before;
    std::u16string after;
    std::uint64_t number = 1;
    std::size_t width = 0;
  };
  [[nodiscard]] static Parts partsOf(std::u16string_view name, const ZKNamingOptions& options);
  [[nodiscard]] std::u16string form(std::u16string_view text) const;

  std::u16string_view _name;
  bool _ignoresCase;
  Parts _parts;
  // The name and its parts as they are compared.
  std::u16string _nameForm;
  std::u16string _before;
  std::u16string _after;
  bool _isTaken = false;
  ZKFreeNumber _numbers;
};
