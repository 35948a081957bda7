#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectVector.h>

class NSMutableArray;
class NSPredicate;
class NSString;

/// An ordered sequence of objects. An index that does not fit raises `NSRangeException`, nil as an
/// element `NSInvalidArgumentException`.
class NS_EXPORT NSArray : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSArray() noexcept = default;
  explicit NSArray(Elements elements) : NSArray(std::span(elements.begin(), elements.size())) {}
  explicit NSArray(std::span<const NSRef<NSObject>> elements);
  explicit NSArray(std::vector<NSRef<NSObject>>&& elements);
  /// Of elements that are known not to be nil.
  explicit NSArray(NSObjectVector elements) noexcept : _elements(std::move(elements)) {}

  NSUInteger count() const noexcept { return _elements.size(); }
  NSRef<NSObject> objectAtIndex(NSUInteger index) const;
  /// Nil when the array is empty.
  NSRef<NSObject> firstObject() const { return count() == 0 ? nullptr : _elements[0]; }
  NSRef<NSObject> lastObject() const { return count() == 0 ? nullptr : _elements[count() - 1]; }

  /// The first index whose element is equal, or `NSNotFound`.
  NSUInteger indexOfObject(const NSRef<NSObject>& object) const;
  /// The first index whose element is this very object, or `NSNotFound`.
  NSUInteger indexOfObjectIdenticalTo(const NSRef<NSObject>& object) const noexcept;
  bool containsObject(const NSRef<NSObject>& object) const {
    return indexOfObject(object) != NSNotFound;
  }
  /// The descriptions of the elements with the separator between them; nil separates by nothing.
  NSRef<NSString> componentsJoinedByString(const NSRef<NSString>& separator) const;

  /// Calls the block with each element, its index and a flag that ends the walk once it is set; a
  /// block may take the element alone. Raises as range-for does, and for a nil block
  /// `NSInvalidArgumentException`.
  void enumerateObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const;
  /// The elements for which the predicate holds, in their order. A nil predicate raises
  /// `NSInvalidArgumentException`.
  NSRef<NSArray> filteredArrayUsingPredicate(const NSRef<NSPredicate>& predicate) const;

  /// The elements in place; valid until the array changes.
  std::span<const NSRef<NSObject>> objects() const noexcept { return _elements.view(); }
  /// The same, to be kept while the array may change: it goes on as it was.
  const NSObjectVector& elements() const noexcept { return _elements; }
  /// Range-for. One that steps on in an array which has changed raises `NSGenericException`; the
  /// element at hand stays valid.
  auto begin() const noexcept { return NSEnumeration(_elements, {self(), _mutations}); }
  static std::default_sentinel_t end() noexcept { return {}; }

  /// As many elements, equal one by one.
  bool isEqualToArray(const NSRef<NSArray>& other) const;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "(a, b)"
  NSRef<NSString> description() const override;

  /// An array of the elements' answers, `NSNull` where an element answers nil.
  NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// The array itself while it is immutable; copies share the elements.
  NSRef<NSArray> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableArray> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  /// The elements, which are about to be changed.
  NSObjectVector& changing() noexcept {
    ++_mutations;
    return _elements;
  }
  void reserveElements(std::size_t count) { _elements.reserve(count); }

 private:
  NSObjectVector _elements;
  NSMutationCount _mutations;
};

/// An array that may be changed. Belongs to one thread at a time. A change that raises leaves it as
/// it was.
class NS_EXPORT NSMutableArray : public NSArray {
 public:
  using NSArray::NSArray;

  void addObject(const NSRef<NSObject>& anObject);
  /// Nil has no elements; the array itself may be the other one.
  void addObjectsFromArray(const NSRef<NSArray>& other);
  void insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index);
  /// Inserts them one behind the other.
  void insertElements_atIndex(NSObjectVector elements, NSUInteger index);
  void replaceObjectAtIndex_withObject(NSUInteger index, const NSRef<NSObject>& anObject);
  void removeObjectAtIndex(NSUInteger index);
  /// Removes every element that is equal.
  void removeObject(const NSRef<NSObject>& anObject);
  /// Removes the elements for which the callable holds, in one pass. A callable that throws or
  /// changes the array ends it before any is removed.
  void removeObjectsWhere(NSBlockRef<bool(const NSRef<NSObject>&)> isRemoved);
  /// Removes the elements for which the predicate does not hold. A nil predicate raises
  /// `NSInvalidArgumentException`.
  void filterUsingPredicate(const NSRef<NSPredicate>& predicate);
  /// Does nothing when the array is empty.
  void removeLastObject();
  void removeAllObjects() noexcept;
  /// Makes room for so many elements altogether.
  void reserve(NSUInteger count) { reserveElements(count); }

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
