#pragma once

#include <cstddef>
#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>

/// A key with its object, as references into their collection.
using NSEntry = std::pair<const NSRef<NSObject>&, const NSRef<NSObject>&>;

/// Keys and their objects as a walk holds them.
struct NSEntryList {
  NSObjectVector keys;
  NSObjectVector objects;

  [[nodiscard]] std::size_t size() const noexcept { return keys.size(); }
  NSEntry operator[](std::size_t index) const noexcept { return {keys[index], objects[index]}; }
};

/// The hash map of dictionaries and map tables, in order of insertion: a hash set of keys with a
/// vector of their objects beside it. Nil has no entry.
class NS_EXPORT NSObjectMap {
 public:
  [[nodiscard]] std::size_t size() const noexcept { return _keys.size(); }
  [[nodiscard]] const NSObjectVector& keys() const noexcept { return _keys.elements(); }
  [[nodiscard]] const NSObjectVector& objects() const noexcept { return _objects; }
  [[nodiscard]] const NSMutationCount& mutations() const noexcept { return _keys.mutations(); }
  [[nodiscard]] NSEntryList list() const noexcept { return {keys(), objects()}; }

  /// Gives the key's object, or nil.
  [[nodiscard]] NSRef<NSObject> find(const NSRef<NSObject>& key) const;
  /// Asks the key for its hash, which must not change the map.
  [[nodiscard]] NSUInteger hashOf(const NSRef<NSObject>& key) const { return _keys.hashOf(key); }
  /// Replaces the object of a key with this hash, and tells whether there was one.
  bool replace(const NSRef<NSObject>& key, NSUInteger hash, const NSRef<NSObject>& object);
  /// Adds an entry for a key with this hash that is known to have none.
  void append(NSRef<NSObject> key, NSUInteger hash, const NSRef<NSObject>& object);
  void remove(const NSRef<NSObject>& key);
  void removeAll() noexcept;

  /// Whether the other map has the same keys with equal objects.
  [[nodiscard]] bool isEqual(const NSObjectMap& other) const;

 private:
  NSObjectSet _keys;
  NSObjectVector _objects;
};
