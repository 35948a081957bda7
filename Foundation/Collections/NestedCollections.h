#pragma once

#include <cstddef>

#include <Foundation/NSBlock.h>
#include <Foundation/detail/ObjectMap.h>

// Hashes and comparisons of collections that may be in each other, and shared: where each of n
// levels holds the next one twice, a walk over all of them would visit the last one 2^n times. And
// descriptions, which end where a collection is in itself.

/// The most objects that one hash asks for theirs, in collections in each other altogether.
inline constexpr std::size_t NSMostHashedObjects = 64;

// Callers pass copies of the elements, as an element may change its collection.

/// Hashes elements in their order: some of them, spread evenly.
[[nodiscard]] NSUInteger NSHashSequence(const NSObjectVector& elements,
                                        std::size_t most = NSMostHashedObjects);
/// Hashes elements in any order: all of them, or their number alone when they are many.
[[nodiscard]] NSUInteger NSHashSet(const NSObjectVector& elements,
                                   std::size_t most = NSMostHashedObjects);
/// Hashes entries in any order: all of them, or their number alone when they are many.
[[nodiscard]] NSUInteger NSHashEntries(const NSEntryList& entries,
                                       std::size_t most = NSMostHashedObjects);

/// Gives the answer of `isEqualTo`, which compares the contents of two collections. Within one
/// outermost call each pair of collections that others may hold as well is compared once.
[[nodiscard]] bool NSCompareCollections(const NSObject& a, const NSRef<NSObject>& b,
                                        NSBlockRef<bool(const NSRef<NSObject>&)> isEqualTo);

/// Tells that the thread describes a collection, as long as it lives.
class NSDescribing {
 public:
  explicit NSDescribing(const NSObject& collection) noexcept;
  NSDescribing(const NSDescribing&) = delete;
  ~NSDescribing();

  /// Whether the collection is in itself: a description of it goes on already.
  [[nodiscard]] bool isWithin() const noexcept;

 private:
  const NSObject& _collection;
  const NSDescribing* const _outer;
};
