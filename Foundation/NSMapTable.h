#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectMap.h>

class NSArray;
class NSString;

/// Objects by key, as in a dictionary that may be changed. Its keys are not copied, so that any
/// object can be one. It holds keys and objects strongly. Belongs to one thread at a time.
class NS_EXPORT NSMapTable : public NSObject {
 public:
  NSMapTable() noexcept = default;
  /// Makes an empty table that holds keys, compared by `isEqual`, and objects strongly.
  [[nodiscard]] static NSRef<NSMapTable> strongToStrongObjectsMapTable() {
    return NSMake<NSMapTable>();
  }

  [[nodiscard]] NSUInteger count() const noexcept { return _entries.size(); }
  /// Gives nil when there is no entry for the key, or the key is nil.
  [[nodiscard]] NSRef<NSObject> objectForKey(const NSRef<NSObject>& key) const {
    return _entries.find(key);
  }
  /// Enters the object for the key. A nil key or object raises `NSInvalidArgumentException`.
  void setObject_forKey(const NSRef<NSObject>& anObject, const NSRef<NSObject>& aKey);
  /// Removes the entry for the key; does nothing when there is none, or the key is nil.
  void removeObjectForKey(const NSRef<NSObject>& key) { _entries.remove(key); }
  void removeAllObjects() noexcept { _entries.removeAll(); }

  /// Gives the keys at this moment, in the order in which `allValues` gives their objects.
  [[nodiscard]] NSRef<NSArray> allKeys() const;
  [[nodiscard]] NSRef<NSArray> allValues() const;
  /// Begins a range-for over pairs: `for (const auto& [key, object] : table)`. When the table has
  /// changed, its next step raises `NSGenericException`.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(_entries.list(), {self(), _entries.mutations()});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override { return count(); }
  /// Gives "{a = 1; b = 2}".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives another table with the same keys and objects, which may be changed too.
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSObjectMap _entries;
};
