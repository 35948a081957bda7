#pragma once

#include <initializer_list>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>
#include <Foundation/detail/TypedWalk.h>

class NSArray;
class NSMutableSet;
class NSPredicate;
class NSString;

/// Objects of which no two are equal, in no order. Nil as a member, block or predicate raises
/// `NSInvalidArgumentException`.
class NS_EXPORT NSSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSSet() noexcept = default;
  /// Keeps the first one of equal objects.
  explicit NSSet(Elements elements);
  /// Takes the elements of the array; nil has none.
  explicit NSSet(const NSRef<NSArray>& array);
  /// Takes the members of another set; nil has none.
  explicit NSSet(const NSRef<NSSet>& other);
  explicit NSSet(NSObjectSet members) noexcept : _members(std::move(members)) {}

  [[nodiscard]] NSUInteger count() const noexcept { return _members.size(); }
  [[nodiscard]] bool containsObject(const NSRef<NSObject>& object) const {
    return _members.contains(object);
  }
  /// Gives the member that is equal to the object, or nil.
  [[nodiscard]] NSRef<NSObject> member(const NSRef<NSObject>& object) const;
  [[nodiscard]] NSRef<NSArray> allObjects() const;
  /// Whether every member is in the other set too; nil has none.
  [[nodiscard]] bool isSubsetOfSet(const NSRef<NSSet>& other) const;

  /// Calls the block with each member and a flag that ends the walk once it is set; a block may
  /// take the member alone. Raises as range-for does.
  void enumerateObjectsUsingBlock(NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock) const;
  /// Gives the members for which the predicate holds.
  [[nodiscard]] NSRef<NSSet> filteredSetUsingPredicate(const NSRef<NSPredicate>& predicate) const;

  /// Begins a range-for. A step after a change raises `NSGenericException`; the member stays valid.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(_members.elements(), {self(), _members.mutations()});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  /// Walks over the members as objects of a class: `for (const auto& chapter :
  /// set->each<Chapter>())` gives references that are valid until the next step. One of another
  /// class raises `NSInvalidArgumentException`: "NSString is no Chapter".
  template <class T>
  [[nodiscard]] auto each() const noexcept {
    return NSTypedWalk<T, NSSet>(self(), *this);
  }

  [[nodiscard]] bool isEqualToSet(const NSRef<NSSet>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "{(a, b)}".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives a set of the members' answers, without the nil ones.
  [[nodiscard]] NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// Gives the set itself while it is immutable; copies share the members.
  [[nodiscard]] NSRef<NSSet> copy() const { return copyWithZone(nullptr).as<NSSet>(); }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableSet> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  NSObjectSet& members() noexcept { return _members; }
  [[nodiscard]] const NSObjectSet& members() const noexcept { return _members; }
  void insert(const char* operation, const NSRef<NSObject>& anObject);

 private:
  NSObjectSet _members;
};

/// A set that may be changed, by one thread at a time. What raises because of nil changes nothing.
class NS_EXPORT NSMutableSet : public NSSet {
 public:
  using NSSet::NSSet;
  /// Makes an empty set with room for that many members.
  explicit NSMutableSet(NSUInteger capacity) { members().reserve(capacity); }

  /// Adds the object; does nothing when the set has an equal member.
  void addObject(const NSRef<NSObject>& anObject) { insert("addObject:", anObject); }
  /// Removes the member that is equal to the object; does nothing when there is none.
  void removeObject(const NSRef<NSObject>& object);
  void removeAllObjects() noexcept;
  /// Adds the other set's members; nil has none.
  void unionSet(const NSRef<NSSet>& other);

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
