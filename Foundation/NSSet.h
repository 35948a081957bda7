#pragma once

#include <initializer_list>
#include <unordered_set>
#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSArray;
class NSMutableSet;
class NSString;

/// Objects of which no two are equal, in no order. Nil as a member raises
/// `NSInvalidArgumentException`.
class NS_EXPORT NSSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;
  using Members = std::unordered_set<NSRef<NSObject>, NSHashObject, NSEqualObjects>;

  NSSet() = default;
  /// Of equal objects the first one stays.
  explicit NSSet(Elements elements);
  /// The members of the array; nil has none.
  explicit NSSet(const NSRef<NSArray>& array);

  NSUInteger count() const noexcept { return _members.size(); }
  bool containsObject(const NSRef<NSObject>& object) const { return _members.contains(object); }
  /// The member that is equal to the object, or nil.
  NSRef<NSObject> member(const NSRef<NSObject>& object) const;
  NSRef<NSArray> allObjects() const;
  /// Whether every member is one of the other set's too; nil has none.
  bool isSubsetOfSet(const NSRef<NSSet>& other) const;

  auto begin() const noexcept { return _members.begin(); }
  auto end() const noexcept { return _members.end(); }

  bool isEqualToSet(const NSRef<NSSet>& other) const;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "{(a, b)}"
  NSRef<NSString> description() const override;

  /// A set of the members' answers; nil answers are left out.
  NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// The set itself while it is immutable; copies share the members.
  NSRef<NSSet> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableSet> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  Members& members() noexcept { return _members; }
  void insert(const char* operation, const NSRef<NSObject>& anObject);

 private:
  Members _members;
};

/// A set that may be changed. Belongs to one thread at a time. A change that raises because of nil
/// leaves it as it was.
class NS_EXPORT NSMutableSet : public NSSet {
 public:
  using NSSet::NSSet;
  /// An empty set with room for so many members.
  explicit NSMutableSet(NSUInteger capacity) { members().reserve(capacity); }

  /// Does nothing when the set has an equal member.
  void addObject(const NSRef<NSObject>& anObject) { insert("addObject:", anObject); }
  /// Does nothing when the set has no equal member.
  void removeObject(const NSRef<NSObject>& object) {
    const auto removed = members().extract(object);
  }
  void removeAllObjects() noexcept { const auto removed = std::exchange(members(), {}); }
  /// Adds the other set's members; nil has none.
  void unionSet(const NSRef<NSSet>& other);

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
