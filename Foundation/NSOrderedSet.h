#pragma once

#include <initializer_list>
#include <span>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>
#include <Foundation/detail/TypedWalk.h>

class NSArray;
class NSMutableOrderedSet;
class NSSet;
class NSString;

/// Objects of which no two are equal, in an order. An index that does not fit raises
/// `NSRangeException`, nil as a member or block `NSInvalidArgumentException`.
class NS_EXPORT NSOrderedSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSOrderedSet() noexcept = default;
  /// Keeps the first one of equal objects.
  explicit NSOrderedSet(Elements elements)
      : NSOrderedSet(std::span(elements.begin(), elements.size())) {}
  explicit NSOrderedSet(std::span<const NSRef<NSObject>> elements);
  /// Takes the elements of the array; nil has none.
  explicit NSOrderedSet(const NSRef<NSArray>& array);
  explicit NSOrderedSet(NSObjectVector&& elements) : NSOrderedSet(elements.view()) {}
  explicit NSOrderedSet(NSObjectSet members) noexcept : _members(std::move(members)) {}

  [[nodiscard]] NSUInteger count() const noexcept { return _members.size(); }
  [[nodiscard]] NSRef<NSObject> objectAtIndex(NSUInteger index) const;
  /// Gives the object at the index, as `objectAtIndex` does.
  [[nodiscard]] NSRef<NSObject> operator[](NSUInteger index) const { return objectAtIndex(index); }
  /// Gives nil when the set is empty, as `lastObject` does.
  [[nodiscard]] NSRef<NSObject> firstObject() const { return count() == 0 ? nullptr : _members[0]; }
  [[nodiscard]] NSRef<NSObject> lastObject() const {
    return count() == 0 ? nullptr : _members[count() - 1];
  }
  /// Finds the index of the member that is equal by its hash, or gives `NSNotFound`.
  [[nodiscard]] NSUInteger indexOfObject(const NSRef<NSObject>& object) const;
  [[nodiscard]] bool containsObject(const NSRef<NSObject>& object) const {
    return _members.contains(object);
  }

  /// Gives the members as an array.
  [[nodiscard]] NSRef<NSArray> array() const;
  /// Gives the members as a set without order.
  [[nodiscard]] NSRef<NSSet> set() const;

  /// Calls the block with each member, its index and a flag that ends the walk once it is set; a
  /// block may take the member alone. Raises as range-for does.
  void enumerateObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const;

  /// Lends the members; valid until the set changes.
  [[nodiscard]] std::span<const NSRef<NSObject>> objects() const noexcept {
    return _members.elements().view();
  }
  /// Gives the members for who copies them: a copy stays as it is when the set changes.
  [[nodiscard]] const NSObjectVector& elements() const noexcept { return _members.elements(); }
  /// Begins a range-for. A step after a change raises `NSGenericException`; the member stays valid.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(_members.elements(), {self(), _members.mutations()});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  /// Walks over the members as objects of a class: `for (const auto& chapter :
  /// set->each<Chapter>())` gives references that are valid until the next step. One of another
  /// class raises `NSInvalidArgumentException`: "NSString is no Chapter (at index 3)".
  template <class T>
  [[nodiscard]] auto each() const noexcept {
    return NSTypedWalk<T, NSOrderedSet>(self(), *this);
  }

  /// Whether the other set has as many members, equal one by one.
  [[nodiscard]] bool isEqualToOrderedSet(const NSRef<NSOrderedSet>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "{(a, b)}".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives an ordered set of the members' answers, `NSNull` where a member answers nil.
  [[nodiscard]] NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// Gives the set itself while it is immutable; copies share the members.
  [[nodiscard]] NSRef<NSOrderedSet> copy() const {
    return copyWithZone(nullptr).as<NSOrderedSet>();
  }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableOrderedSet> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  NSObjectSet& members() noexcept { return _members; }
  [[nodiscard]] const NSObjectSet& members() const noexcept { return _members; }

 private:
  NSObjectSet _members;
};

/// An ordered set that one thread at a time may change. A change that raises leaves it as it was.
class NS_EXPORT NSMutableOrderedSet : public NSOrderedSet {
 public:
  using NSOrderedSet::NSOrderedSet;

  /// Adds the object at the end; does nothing when the set has an equal member.
  void addObject(const NSRef<NSObject>& anObject);
  /// Inserts the object; does nothing when the set has an equal member, wherever that is.
  void insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index);
  void removeObjectAtIndex(NSUInteger index);
  /// Removes the member that is equal to the object; does nothing when there is none.
  void removeObject(const NSRef<NSObject>& object);
  void removeAllObjects() noexcept;

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
