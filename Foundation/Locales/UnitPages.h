#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

/// A table of all UTF-16 units in pages of 256, each made by its constructor from its first unit
/// when it is first asked for, and kept. Safe across threads. One for each kind of page.
template <class Page>
class NSUnitPages {
 public:
  [[nodiscard]] static const Page& of(char16_t unit) {
    std::atomic<const Page*>& place = pages[unit >> 8U];
    const Page* const page = place.load(std::memory_order_acquire);
    return page != nullptr ? *page : make(place, static_cast<char16_t>(unit & 0xFF00U));
  }

 private:
  // Never inlined: a loop over units would keep its variables in memory for this rare call.
  [[gnu::noinline]] static const Page& make(std::atomic<const Page*>& place, char16_t first) {
    auto page = std::make_unique<const Page>(first);
    const Page* made = nullptr;
    if (place.compare_exchange_strong(made, page.get())) made = page.release();
    return *made;
  }

  static inline constinit std::array<std::atomic<const Page*>, 256> pages{};
};
