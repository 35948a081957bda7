#pragma once

#include <initializer_list>
#include <span>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectSet.h>

class NSArray;
class NSMutableOrderedSet;
class NSSet;
class NSString;

/// Objects of which no two are equal, in an order. An index that does not fit raises
/// `NSRangeException`, nil as a member `NSInvalidArgumentException`.
class NS_EXPORT NSOrderedSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSOrderedSet() noexcept = default;
  /// Of equal objects the first one stays.
  explicit NSOrderedSet(Elements elements)
      : NSOrderedSet(std::span(elements.begin(), elements.size())) {}
  explicit NSOrderedSet(std::span<const NSRef<NSObject>> elements);
  /// The elements of the array; nil has none.
  explicit NSOrderedSet(const NSRef<NSArray>& array);
  explicit NSOrderedSet(NSObjectVector&& elements) : NSOrderedSet(elements.view()) {}
  explicit NSOrderedSet(NSObjectSet members) noexcept : _members(std::move(members)) {}

  NSUInteger count() const noexcept { return _members.size(); }
  NSRef<NSObject> objectAtIndex(NSUInteger index) const;
  /// Nil when the set is empty.
  NSRef<NSObject> firstObject() const { return count() == 0 ? nullptr : _members[0]; }
  NSRef<NSObject> lastObject() const { return count() == 0 ? nullptr : _members[count() - 1]; }
  /// The index of the member that is equal, or `NSNotFound`; looked up by its hash.
  NSUInteger indexOfObject(const NSRef<NSObject>& object) const;
  bool containsObject(const NSRef<NSObject>& object) const { return _members.contains(object); }

  /// The members as an array and as a set without order.
  NSRef<NSArray> array() const;
  NSRef<NSSet> set() const;

  /// As `NSArray` does.
  void enumerateObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const;

  /// The members in place; valid until the set changes.
  std::span<const NSRef<NSObject>> objects() const noexcept { return _members.elements().view(); }
  /// The same, to be kept while the set may change: it goes on as it was.
  const NSObjectVector& elements() const noexcept { return _members.elements(); }
  /// Range-for. One that steps on in a set which has changed raises `NSGenericException`; the
  /// element at hand stays valid.
  auto begin() const noexcept {
    return NSEnumeration(_members.elements(), {self(), _members.mutations()});
  }
  static std::default_sentinel_t end() noexcept { return {}; }

  /// As many members, equal one by one.
  bool isEqualToOrderedSet(const NSRef<NSOrderedSet>& other) const;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "{(a, b)}"
  NSRef<NSString> description() const override;

  /// An ordered set of the members' answers, `NSNull` where a member answers nil.
  NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// The set itself while it is immutable; copies share the members.
  NSRef<NSOrderedSet> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableOrderedSet> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  NSObjectSet& members() noexcept { return _members; }
  const NSObjectSet& members() const noexcept { return _members; }

 private:
  NSObjectSet _members;
};

/// An ordered set that may be changed. Belongs to one thread at a time. A change that raises leaves
/// it as it was.
class NS_EXPORT NSMutableOrderedSet : public NSOrderedSet {
 public:
  using NSOrderedSet::NSOrderedSet;

  /// At the end; does nothing when the set has an equal member.
  void addObject(const NSRef<NSObject>& anObject);
  /// Does nothing when the set has an equal member, wherever that is.
  void insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index);
  void removeObjectAtIndex(NSUInteger index);
  /// Does nothing when the set has no equal member.
  void removeObject(const NSRef<NSObject>& object);
  void removeAllObjects() noexcept;

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
