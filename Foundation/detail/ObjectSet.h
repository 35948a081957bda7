#pragma once

#include <cstddef>

#include <Foundation/NSExport.h>
#include <Foundation/detail/HashIndex.h>
#include <Foundation/detail/MutationCheck.h>
#include <Foundation/detail/ObjectVector.h>

/// What collections keep objects in of which no two are equal: a sequence that finds them by their
/// hashes. Counts its changes. Nil is never found.
///
/// A `hash` or `isEqual` that changes the collection for which it is asked raises
/// `NSGenericException`, if it leaves the collection alive.
class NS_EXPORT NSObjectSet {
 public:
  static constexpr std::size_t notFound = NSHashIndex::notFound;

  std::size_t size() const noexcept { return _elements.size(); }
  const NSRef<NSObject>& operator[](std::size_t position) const noexcept {
    return _elements[position];
  }
  const NSObjectVector& elements() const noexcept { return _elements; }
  const NSMutationCount& mutations() const noexcept { return _mutations; }

  std::size_t find(const NSRef<NSObject>& object) const {
    return object && size() != 0 ? find(object, object->hash()) : notFound;
  }
  /// Of an object with this hash.
  std::size_t find(const NSRef<NSObject>& object, NSUInteger hash) const;
  bool contains(const NSRef<NSObject>& object) const { return find(object) != notFound; }

  void reserve(std::size_t count);
  /// Until a copy is made, removing cannot fail.
  void makeOwn() { _elements.makeOwn(); }
  /// The object's hash, which must not change the collection.
  NSUInteger hashOf(const NSRef<NSObject>& object) const;
  /// Does nothing when an equal one is there already.
  void insert(std::size_t position, const NSRef<NSObject>& object);
  void append(const NSRef<NSObject>& object) { insert(size(), object); }
  /// Of one with this hash that is known not to be there.
  void appendNew(const NSRef<NSObject>& object, NSUInteger hash) {
    insertNew(size(), object, hash);
  }
  /// The values of a present one have changed.
  void noteMutation() noexcept { ++_mutations; }
  /// What goes is handed back, so that it dies when the caller's collection is in order again.
  [[nodiscard]] NSRef<NSObject> remove(std::size_t position);
  /// The last one takes the place of what goes.
  [[nodiscard]] NSRef<NSObject> replaceByLast(std::size_t position);
  [[nodiscard]] NSObjectVector removeAll() noexcept;

 private:
  void requireUnchanged(NSUInteger mutations) const;
  void insertNew(std::size_t position, NSRef<NSObject> object, NSUInteger hash);

  NSObjectVector _elements;
  NSHashIndex _index;
  NSMutationCount _mutations;
};
