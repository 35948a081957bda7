#pragma once

#include <cstddef>
#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/detail/HashIndex.h>
#include <Foundation/detail/MutationCheck.h>
#include <Foundation/detail/ObjectVector.h>

/// The hash set of collections, in order of insertion: a vector of objects of which no two are
/// equal, with an index by their hashes. Counts its changes. Nil is never found.
///
/// A `hash` or `isEqual` that changes the collection for which it is asked raises
/// `NSGenericException`, if it leaves the collection alive.
class NS_EXPORT NSObjectSet {
 public:
  static constexpr std::size_t notFound = NSHashIndex::notFound;

  [[nodiscard]] std::size_t size() const noexcept { return _elements.size(); }
  const NSRef<NSObject>& operator[](std::size_t position) const noexcept {
    return _elements[position];
  }
  [[nodiscard]] const NSObjectVector& elements() const noexcept { return _elements; }
  [[nodiscard]] const NSMutationCount& mutations() const noexcept { return _mutations; }

  [[nodiscard]] std::size_t find(const NSRef<NSObject>& object) const {
    return object && size() != 0 ? find(object, object->hash()) : notFound;
  }
  /// Finds the position of an object with this hash.
  [[nodiscard]] std::size_t find(const NSRef<NSObject>& object, NSUInteger hash) const;
  [[nodiscard]] bool contains(const NSRef<NSObject>& object) const {
    return find(object) != notFound;
  }

  void reserve(std::size_t count);
  /// Makes its elements its own: until a copy is made, removing cannot fail.
  void makeOwn() { _elements.makeOwn(); }
  /// Asks the object for its hash, which must not change the collection.
  [[nodiscard]] NSUInteger hashOf(const NSRef<NSObject>& object) const;
  /// Inserts the object; does nothing when an equal one is there already.
  void insert(std::size_t position, const NSRef<NSObject>& object);
  void append(const NSRef<NSObject>& object) { insert(size(), object); }
  /// Appends an object with this hash that is known not to be there.
  void appendNew(NSRef<NSObject> object, NSUInteger hash) {
    insertNew(size(), std::move(object), hash);
  }
  /// Counts a change of what belongs to a present element.
  void noteMutation() noexcept { ++_mutations; }
  /// Hands the removed element back, so that it dies when the caller's collection is in order
  /// again.
  [[nodiscard]] NSRef<NSObject> remove(std::size_t position);
  /// Removes the element as `remove` does, but puts the last one in its place.
  [[nodiscard]] NSRef<NSObject> replaceByLast(std::size_t position);
  [[nodiscard]] NSObjectVector removeAll() noexcept;

 private:
  void requireUnchanged(NSUInteger mutations) const;
  void insertNew(std::size_t position, NSRef<NSObject> object, NSUInteger hash);

  NSObjectVector _elements;
  NSHashIndex _index;
  NSMutationCount _mutations;
};
