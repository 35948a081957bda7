#pragma once

#include <initializer_list>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>

class NSArray;
class NSMutableSet;
class NSPredicate;
class NSString;

/// Objects of which no two are equal, in no order. Nil as a member raises
/// `NSInvalidArgumentException`.
class NS_EXPORT NSSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSSet() noexcept = default;
  /// Of equal objects the first one stays.
  explicit NSSet(Elements elements);
  /// The elements of the array; nil has none.
  explicit NSSet(const NSRef<NSArray>& array);
  /// The members of another set; nil has none.
  explicit NSSet(const NSRef<NSSet>& other);
  explicit NSSet(NSObjectSet members) noexcept : _members(std::move(members)) {}

  NSUInteger count() const noexcept { return _members.size(); }
  bool containsObject(const NSRef<NSObject>& object) const { return _members.contains(object); }
  /// The member that is equal to the object, or nil.
  NSRef<NSObject> member(const NSRef<NSObject>& object) const;
  NSRef<NSArray> allObjects() const;
  /// Whether every member is one of the other set's too; nil has none.
  bool isSubsetOfSet(const NSRef<NSSet>& other) const;

  /// Calls the block with each member and a flag that ends the walk once it is set; a block may
  /// take the member alone. Raises as range-for does, and for a nil block
  /// `NSInvalidArgumentException`.
  void enumerateObjectsUsingBlock(NSBlockRef<void(const NSRef<NSObject>&, bool&)> aBlock) const;
  /// The members for which the predicate holds. A nil predicate raises
  /// `NSInvalidArgumentException`.
  NSRef<NSSet> filteredSetUsingPredicate(const NSRef<NSPredicate>& predicate) const;

  /// Range-for. One that steps on in a set which has changed raises `NSGenericException`; the
  /// element at hand stays valid.
  auto begin() const noexcept {
    return NSEnumeration(_members.elements(), {self(), _members.mutations()});
  }
  static std::default_sentinel_t end() noexcept { return {}; }

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
  NSObjectSet& members() noexcept { return _members; }
  const NSObjectSet& members() const noexcept { return _members; }
  void insert(const char* operation, const NSRef<NSObject>& anObject);

 private:
  NSObjectSet _members;
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
  void removeObject(const NSRef<NSObject>& object);
  void removeAllObjects() noexcept;
  /// Adds the other set's members; nil has none.
  void unionSet(const NSRef<NSSet>& other);

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
