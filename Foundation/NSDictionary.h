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
  /// Keeps the last one of entries with equal keys.
  explicit NSDictionary(Elements entries);
  /// Takes the entries of another dictionary; nil has none.
  explicit NSDictionary(const NSRef<NSDictionary>& other);

  [[nodiscard]] NSUInteger count() const noexcept { return _entries.size(); }
  /// Gives nil when there is no entry for the key, or the key is nil.
  [[nodiscard]] NSRef<NSObject> objectForKey(const NSRef<NSObject>& key) const {
    return _entries.find(key);
  }
  [[nodiscard]] NSRef<NSArray> allKeys() const;
  [[nodiscard]] NSRef<NSArray> allValues() const;

  /// Begins a range-for over pairs: `for (const auto& [key, object] : dictionary)`. When the
  /// dictionary has changed, its next step raises `NSGenericException`.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(_entries.list(), {self(), _entries.mutations()});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }
  /// Calls the block with each key, its object and a flag that ends the walk once it is set. Raises
  /// as range-for does, and for a nil block `NSInvalidArgumentException`.
  void enumerateKeysAndObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, const NSRef<NSObject>&, bool&)> aBlock) const;

  [[nodiscard]] bool isEqualToDictionary(const NSRef<NSDictionary>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "{a = 1; b = 2}".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives the object for the key, nil when there is none or the key is nil.
  [[nodiscard]] NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// Gives the dictionary itself while it is immutable; copies share the entries.
  [[nodiscard]] NSRef<NSDictionary> copy() const {
    return copyWithZone(nullptr).as<NSDictionary>();
  }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableDictionary> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  NSObjectMap& entries() noexcept { return _entries; }
  void setEntry(const char* operation, const NSRef<NSObject>& anObject,
                const NSRef<NSObject>& aKey);

 private:
  NSObjectMap _entries;
};

/// A dictionary that one thread at a time may change. A change that raises leaves it as it was.
class NS_EXPORT NSMutableDictionary : public NSDictionary {
 public:
  using NSDictionary::NSDictionary;

  void setObject_forKey(const NSRef<NSObject>& anObject, const NSRef<NSObject>& aKey) {
    setEntry("setObject:forKey:", anObject, aKey);
  }
  /// Removes the entry for the key; does nothing when there is none, or the key is nil.
  void removeObjectForKey(const NSRef<NSObject>& key) { entries().remove(key); }
  void removeAllObjects() noexcept { entries().removeAll(); }

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
