#pragma once

#include <atomic>
#include <cstdint>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

/// The intrusive count of an object. It starts at one, for whoever made the object; a copied object
/// starts anew. A count may be watched: then somebody must be told when it has reached zero.
class NSReferenceCount {
 public:
  NSReferenceCount() noexcept = default;
  NSReferenceCount(const NSReferenceCount& /*other*/) noexcept {}
  NSReferenceCount& operator=(const NSReferenceCount&) = delete;
  ~NSReferenceCount() = default;

  void retain() const noexcept {
    // Relaxed: whoever retains already holds a reference, which keeps the object alive and visible.
    add(1, std::memory_order_relaxed);
  }
  /// Counts a reference for somebody who holds none, unless the last one has gone.
  [[nodiscard]] bool retainIfAlive() const noexcept {
    auto before = _count.load(std::memory_order_relaxed);
    while ((before & ~watched) != 0) {
      // Acquire: as for a sole holder, which the caller may become.
      if (_count.compare_exchange_weak(before, before + 1, std::memory_order_acquire,
                                       std::memory_order_relaxed)) {
        return true;
      }
    }
    return false;
  }

  /// Gives one reference up; true when it was the last and the object must go.
  [[nodiscard]] bool release() const noexcept {
    // Release hands our writes to the last holder; acquire is for the case that it is us.
    return (add(minusOne, std::memory_order_acq_rel) & ~watched) == 1;
  }
  /// Notes that the last reference of a sole holder goes; debug builds ask for it.
  void end() const noexcept { _count.store(0, std::memory_order_relaxed); }

  /// Has the count watched from now on. The caller holds a reference.
  void watch() const noexcept { _count.fetch_or(watched, std::memory_order_relaxed); }
  [[nodiscard]] bool isWatched() const noexcept {
    return (_count.load(std::memory_order_relaxed) & watched) != 0;
  }

  /// Whether there is no reference but the caller's, who then may change the object. Never for one
  /// that is watched: a weak reference may give another at any time.
  [[nodiscard]] bool isSole() const noexcept {
    // Acquire: sees everything that former holders did before they let go.
    return _count.load(std::memory_order_acquire) == 1;
  }

  /// Counts the references, for tests and debuggers; stale as soon as it is read.
  [[nodiscard]] std::uint32_t value() const noexcept {
    return _count.load(std::memory_order_relaxed) & ~watched;
  }

 private:
  static constexpr std::uint32_t watched = 1U << 31U;
  static constexpr std::uint32_t minusOne = UINT32_MAX;

  // Where the C library knows of one thread alone, no costly read-modify-write is needed either;
  // the standard library's shared pointers do the same.
  std::uint32_t add(std::uint32_t difference, std::memory_order order) const noexcept {
#if __has_include(<sys/single_threaded.h>)
    if (__libc_single_threaded != 0) {
      const auto before = _count.load(std::memory_order_relaxed);
      _count.store(before + difference, std::memory_order_relaxed);
      return before;
    }
#endif
    return _count.fetch_add(difference, order);
  }

  mutable std::atomic<std::uint32_t> _count{1};
};
