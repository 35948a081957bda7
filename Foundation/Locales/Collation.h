#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/ucol.h>

#include <Foundation/Text/ICU.h>

/// The order of texts in the language of one locale.
class NSCollation {
 public:
  /// Takes the nearest locale that ICU can read.
  explicit NSCollation(const std::string& locale);

  /// Gives bytes that order as the texts do.
  [[nodiscard]] std::vector<std::byte> keyOf(std::u16string_view text) const;

 private:
  NSICUHandle<UCollator, ucol_close> _collator;
};
