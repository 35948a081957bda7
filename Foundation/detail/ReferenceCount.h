#pragma once

#include <atomic>
#include <cassert>
#include <cstdint>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

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
    [[maybe_unused]] const auto before = add(1, std::memory_order_relaxed);
    assert(before != 0 && "retained after its death");
  }

  /// Gives one reference up; true when it was the last and the object must go.
  [[nodiscard]] bool release() const noexcept {
    // A sole holder cannot be joined by another: it needs no costly read-modify-write.
    if (isSole()) {
#ifndef NDEBUG
      _count.store(0, std::memory_order_relaxed);
#endif
      return true;
    }
    // Release hands our writes to the last holder; acquire is for the case that it is us.
    const auto before = add(minusOne, std::memory_order_acq_rel);
    assert(before != 0 && "released after its death");
    return before == 1;
  }

  /// Whether there is no reference but the caller's, who then may change the object.
  [[nodiscard]] bool isSole() const noexcept {
    // Acquire: sees everything that former holders did before they let go.
    return _count.load(std::memory_order_acquire) == 1;
  }

  /// Counts the references, for tests and debuggers; stale as soon as it is read.
  [[nodiscard]] std::uint32_t value() const noexcept {
    return _count.load(std::memory_order_relaxed);
  }

 private:
  static constexpr std::uint32_t minusOne = UINT32_MAX;

  // Where the C library knows of one thread alone, no costly read-modify-write is needed either;
  // the standard library's shared pointers do the same.
  std::uint32_t add(std::uint32_t difference, std::memory_order order) const noexcept {
#if __has_include(<sys/single_threaded.h>)
    if (__libc_single_threaded != 0) {
      const auto before = value();
      _count.store(before + difference, std::memory_order_relaxed);
      return before;
    }
#endif
    return _count.fetch_add(difference, order);
  }

  mutable std::atomic<std::uint32_t> _count{1};
};
