#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include <Foundation/NSObject.h>

/// The hashes of an archive's long texts while it is read. Any number of collections may hold one
/// text, which then is hashed once.
class NSHashMemo {
 public:
  /// Shorter contents are sooner hashed than looked up. In bytes.
  static constexpr std::size_t shortest = 512;

  /// What is not remembered, such as texts that may change, may be hashed up to so many bytes.
  explicit NSHashMemo(std::size_t budget) noexcept : _budget(budget) {}

  /// Remembers the hash of an object that outlives the memo and is never changed.
  void add(const NSObject& object) { _hashes.try_emplace(&object); }
  /// Remembers the hash of one that may be changed, for as long as a collection is being filled.
  void addChangeable(const NSObject& object) { _changeable.try_emplace(&object); }

  /// Gives the hash of an object of so many bytes, by the memo that the thread uses. Raises
  /// `NSInvalidUnarchiveOperationException` when that has spent its budget.
  template <class Compute>
  [[nodiscard]] static NSUInteger hash(const NSObject& object, std::size_t bytes, Compute compute) {
    if (bytes < shortest || _current == nullptr) return compute();
    if (std::optional<NSUInteger>* const known = _current->find(object, bytes)) {
      if (!*known) *known = compute();
      return **known;
    }
    return compute();
  }

  /// Lets the thread use a memo as long as it lives.
  class Use {
   public:
    explicit Use(NSHashMemo& memo) noexcept : _former(_current) { _current = &memo; }
    Use(const Use&) = delete;
    ~Use() { _current = _former; }

   private:
    NSHashMemo* const _former;
  };

  /// Tells the memo that the thread uses that a collection is being filled, as long as it lives.
  class Filling {
   public:
    Filling() noexcept { _current->_isFilling = true; }
    Filling(const Filling&) = delete;
    ~Filling() { _current->endFilling(); }
  };

 private:
  using Hashes = std::unordered_map<const NSObject*, std::optional<NSUInteger>>;

  // Gives the place of a hash that is remembered; else spends the bytes.
  std::optional<NSUInteger>* find(const NSObject& object, std::size_t bytes);
  void endFilling() noexcept;

  static thread_local NSHashMemo* _current;

  Hashes _hashes;
  Hashes _changeable;
  bool _isFilling = false;
  // Those of changeable objects that are known until the collection is filled.
  std::vector<std::optional<NSUInteger>*> _known;
  std::size_t _budget;
};
