#pragma once

#include <initializer_list>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectMap.h>

class NSArray;
class NSMutableDictionary;
class NSString;

/// Objects by key. Keys are compared by `isEqual` and copied when they are entered, so they must be
/// copyable; a nil key or object raises `NSInvalidArgumentException`. Entries have no order.
class NS_EXPORT NSDictionary : public NSObject {
 public:
  using Elements = std::initializer_list<std::pair<NSRef<NSObject>, NSRef<NSObject>>>;

  NSDictionary() noexcept = default;
  /// Of entries with equal keys the last one stays.
  explicit NSDictionary(Elements entries);
  /// The entries of another dictionary; nil has none.
  explicit NSDictionary(const NSRef<NSDictionary>& other);

  NSUInteger count() const noexcept { return _entries.size(); }
  /// Nil when there is no entry for the key, or the key is nil.
  NSRef<NSObject> objectForKey(const NSRef<NSObject>& key) const;
  NSRef<NSArray> allKeys() const;
  NSRef<NSArray> allValues() const;

  /// Entries as pairs of key and object: `for (const auto& [key, object] : dictionary)`. One that
  /// steps on in a dictionary which has changed raises `NSGenericException`.
  auto begin() const noexcept {
    return NSEnumeration(_entries.list(), {self(), _entries.mutations()});
  }
  static std::default_sentinel_t end() noexcept { return {}; }
  /// Calls the block with each key, its object and a flag that ends the walk once it is set. Raises
  /// as range-for does, and for a nil block `NSInvalidArgumentException`.
  void enumerateKeysAndObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, const NSRef<NSObject>&, bool&)> aBlock) const;

  bool isEqualToDictionary(const NSRef<NSDictionary>& other) const;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "{a = 1; b = 2}"
  NSRef<NSString> description() const override;

  /// The entry for the key, nil when there is none.
  NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// The dictionary itself while it is immutable; copies share the entries.
  NSRef<NSDictionary> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableDictionary> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  NSObjectMap& entries() noexcept { return _entries; }
  void setEntry(const char* operation, const NSRef<NSObject>& anObject,
                const NSRef<NSObject>& aKey);

 private:
  NSObjectMap _entries;
};

/// A dictionary that may be changed. Belongs to one thread at a time. A change that raises leaves
/// it as it was.
class NS_EXPORT NSMutableDictionary : public NSDictionary {
 public:
  using NSDictionary::NSDictionary;

  void setObject_forKey(const NSRef<NSObject>& anObject, const NSRef<NSObject>& aKey) {
    setEntry("setObject:forKey:", anObject, aKey);
  }
  /// Does nothing when there is no such entry, or the key is nil.
  void removeObjectForKey(const NSRef<NSObject>& key) { entries().remove(key); }
  void removeAllObjects() noexcept { entries().removeAll(); }

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
