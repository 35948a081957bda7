#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectMap.h>

class NSArray;
class NSString;

/// Objects by key, as a dictionary that may be changed, but for its keys: they are not copied, so
/// that any object can be one. It holds keys and objects strongly. Belongs to one thread at a time.
class NS_EXPORT NSMapTable : public NSObject {
 public:
  NSMapTable() noexcept = default;
  /// An empty table whose keys, compared by `isEqual`, and objects are held strongly.
  static NSRef<NSMapTable> strongToStrongObjectsMapTable() { return NSMake<NSMapTable>(); }

  NSUInteger count() const noexcept { return _entries.size(); }
  /// Nil when there is no entry for the key, or the key is nil.
  NSRef<NSObject> objectForKey(const NSRef<NSObject>& key) const;
  /// A nil key or object raises `NSInvalidArgumentException`.
  void setObject_forKey(const NSRef<NSObject>& anObject, const NSRef<NSObject>& aKey);
  /// Does nothing when there is no such entry, or the key is nil.
  void removeObjectForKey(const NSRef<NSObject>& key) { _entries.remove(key); }
  void removeAllObjects() noexcept { _entries.removeAll(); }

  /// The keys and the objects at this moment, in the same order.
  NSRef<NSArray> allKeys() const;
  NSRef<NSArray> allValues() const;
  /// Entries as pairs of key and object: `for (const auto& [key, object] : table)`. One that
  /// steps on in a table which has changed raises `NSGenericException`.
  auto begin() const noexcept {
    return NSEnumeration(_entries.list(), {self(), _entries.mutations()});
  }
  static std::default_sentinel_t end() noexcept { return {}; }

  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override { return count(); }
  /// "{a = 1; b = 2}"
  NSRef<NSString> description() const override;

  /// Another table with the same keys and objects, which may be changed too.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSObjectMap _entries;
};
