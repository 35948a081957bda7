#pragma once

#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <unicode/utypes.h>

#include <Foundation/NSException.h>

// What every call of ICU needs: it takes lengths of 32 bits, no null texts, and reports by status.

/// Raises `NSInvalidArgumentException` for a text of 2^31 units and more.
[[nodiscard]] inline std::int32_t NSICULength(std::u16string_view text) {
  if (text.size() > std::size_t{std::numeric_limits<std::int32_t>::max()}) {
    NSException::raise(NSInvalidArgumentException,
                       "a text of " + std::to_string(text.size()) + " units is too long");
  }
  return static_cast<std::int32_t>(text.size());
}

[[nodiscard]] inline const char16_t* NSICUText(std::u16string_view text) {
  return text.empty() ? u"" : text.data();
}

/// Something that ICU has opened, and the function that closes it.
template <auto close>
struct NSICUCloser {
  void operator()(auto* handle) const { close(handle); }
};
template <class T, auto close>
using NSICUHandle = std::unique_ptr<T, NSICUCloser<close>>;

/// For calls whose arguments are known to be right, so that nothing but memory can be missing.
inline void NSCheckICU(UErrorCode status) {
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) {
    NSException::raise(NSInternalInconsistencyException,
                       std::string("ICU failed with ").append(u_errorName(status)));
  }
}
