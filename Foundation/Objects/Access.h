#pragma once

/// The only way for the platform's own sources to what its classes keep from their users. Public
/// headers declare it a friend; none includes it.
struct NSAccess {
  /// Gives what does the work of a run loop or a notification queue.
  [[nodiscard]] static auto& core(const auto& object) noexcept { return *object._core; }

  /// Gives what a notification holds, without counting a reference.
  [[nodiscard]] static const auto& name(const auto& notification) noexcept {
    return notification._name;
  }
  [[nodiscard]] static const auto& object(const auto& notification) noexcept {
    return notification._object;
  }

  /// Tells how a locale writes decimal numbers.
  [[nodiscard]] static const auto& decimalSymbols(const auto& locale) {
    return locale.decimalSymbols();
  }

  /// Gives the members of a character set, valid until it changes: bit `u % 64` of word `u / 64`
  /// tells whether the unit u is one.
  [[nodiscard]] static const auto* unitBitmap(const auto& set) noexcept {
    return set._contents->unitBitmap.data();
  }
  /// Gives the ASCII members in 16 bytes: bit h of byte l stands for the unit 16 h + l.
  [[nodiscard]] static const auto* asciiRows(const auto& set) noexcept {
    return set._contents->asciiRows.data();
  }
  /// Gives two runs of units above ASCII, none a surrogate, by start and length: one that has no
  /// members and one that has nothing else.
  [[nodiscard]] static const auto* runs(const auto& set) noexcept {
    return set._contents->runs.data();
  }
};
