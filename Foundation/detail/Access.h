#pragma once

/// The way of the platform's own sources to what its classes keep from their users. Public headers
/// declare it a friend; none includes it.
struct NSAccess {
  /// What a run loop or a notification queue is made of.
  [[nodiscard]] static auto& core(const auto& object) noexcept { return *object._core; }

  /// How a locale writes decimal numbers.
  [[nodiscard]] static const auto& decimalSymbols(const auto& locale) {
    return locale.decimalSymbols();
  }

  /// The members of a character set, valid until it changes: bit `u % 64` of word `u / 64` tells
  /// whether the unit u is one.
  [[nodiscard]] static const auto* unitBitmap(const auto& set) noexcept { return set._basicPlane; }
  /// The ASCII members in 16 bytes: bit h of byte l stands for the unit 16 h + l.
  [[nodiscard]] static const auto* asciiRows(const auto& set) noexcept {
    return set._asciiRows.data();
  }
};
