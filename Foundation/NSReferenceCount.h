#pragma once

#include <atomic>
#include <cassert>
#include <cstdint>

/// The intrusive count of an object. It starts at one, for whoever made the object; a copied object
/// starts anew. Debug builds stop at a count that is used after it reached zero.
class NSReferenceCount {
 public:
  NSReferenceCount() noexcept = default;
  NSReferenceCount(const NSReferenceCount& /*other*/) noexcept {}
  NSReferenceCount& operator=(const NSReferenceCount&) = delete;
  ~NSReferenceCount() = default;

  void retain() const noexcept {
    // Relaxed: whoever retains already holds a reference, which keeps the object alive and visible.
    [[maybe_unused]] const auto before = _count.fetch_add(1, std::memory_order_relaxed);
    assert(before != 0 && "retained after its death");
  }

  /// Gives one reference up; true when it was the last and the object must go.
  [[nodiscard]] bool release() const noexcept {
    // Acquire: sees everything that former holders did before they let go. A sole holder cannot be
    // joined by another, so the costly read-modify-write is not needed for it.
    if (_count.load(std::memory_order_acquire) == 1) {
#ifndef NDEBUG
      _count.store(0, std::memory_order_relaxed);
#endif
      return true;
    }
    // Release hands our writes to the last holder; acquire is for the case that it is us.
    const auto before = _count.fetch_sub(1, std::memory_order_acq_rel);
    assert(before != 0 && "released after its death");
    return before == 1;
  }

  /// How many references there are, for tests and debuggers; stale as soon as it is read.
  std::uint32_t value() const noexcept { return _count.load(std::memory_order_relaxed); }

 private:
  mutable std::atomic<std::uint32_t> _count{1};
};
