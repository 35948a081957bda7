#pragma once

#include <cstddef>
#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>

/// A key with its object, in place in their collection.
using NSEntry = std::pair<const NSRef<NSObject>&, const NSRef<NSObject>&>;

/// Keys and their objects as a walk holds them.
struct NSEntryList {
  NSObjectVector keys;
  NSObjectVector objects;

  std::size_t size() const noexcept { return keys.size(); }
  NSEntry operator[](std::size_t index) const noexcept { return {keys[index], objects[index]}; }
};

/// What dictionaries and map tables keep their entries in. Nil has no entry.
class NS_EXPORT NSObjectMap {
 public:
  std::size_t size() const noexcept { return _keys.size(); }
  const NSObjectVector& keys() const noexcept { return _keys.elements(); }
  const NSObjectVector& objects() const noexcept { return _objects; }
  const NSMutationCount& mutations() const noexcept { return _keys.mutations(); }
  NSEntryList list() const noexcept { return {keys(), objects()}; }

  /// The key's object, or null. Valid until the entries change.
  const NSRef<NSObject>* find(const NSRef<NSObject>& key) const;
  /// False when the key has no object that could be replaced.
  bool replace(const NSRef<NSObject>& key, const NSRef<NSObject>& object);
  /// For a key that is known to have none.
  void append(const NSRef<NSObject>& key, const NSRef<NSObject>& object);
  void remove(const NSRef<NSObject>& key);
  void removeAll() noexcept;

  /// The same keys with equal objects.
  bool isEqual(const NSObjectMap& other) const;

 private:
  NSObjectSet _keys;
  NSObjectVector _objects;
};
