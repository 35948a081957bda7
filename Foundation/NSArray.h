#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/ObjectVector.h>
#include <Foundation/detail/TypedWalk.h>

class NSIndexSet;
class NSMutableArray;
class NSPredicate;
class NSString;

/// An ordered sequence of objects. An index that does not fit raises `NSRangeException`, nil as an
/// element, block, predicate or index set `NSInvalidArgumentException`.
class NS_EXPORT NSArray : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSArray() noexcept = default;
  explicit NSArray(Elements elements) : NSArray(std::span(elements.begin(), elements.size())) {}
  explicit NSArray(std::span<const NSRef<NSObject>> elements);
  explicit NSArray(std::vector<NSRef<NSObject>>&& elements);
  /// Adopts elements that are known not to be nil.
  explicit NSArray(NSObjectVector elements) noexcept : _elements(std::move(elements)) {}

  [[nodiscard]] NSUInteger count() const noexcept { return _elements.size(); }
  [[nodiscard]] NSRef<NSObject> objectAtIndex(NSUInteger index) const;
  /// Gives the object at the index, as `objectAtIndex` does.
  [[nodiscard]] NSRef<NSObject> operator[](NSUInteger index) const { return objectAtIndex(index); }
  /// Gives nil when the array is empty, as `lastObject` does.
  [[nodiscard]] NSRef<NSObject> firstObject() const {
    return count() == 0 ? nullptr : _elements[0];
  }
  [[nodiscard]] NSRef<NSObject> lastObject() const {
    return count() == 0 ? nullptr : _elements[count() - 1];
  }

  /// Gives the elements of the range as an array.
  [[nodiscard]] NSRef<NSArray> subarrayWithRange(NSRange range) const;

  /// Gives the elements at the indexes, however many, as an array in their order.
  [[nodiscard]] NSRef<NSArray> objectsAtIndexes(const NSRef<NSIndexSet>& indexes) const;

  /// Finds the first index whose element is equal, or gives `NSNotFound`.
  [[nodiscard]] NSUInteger indexOfObject(const NSRef<NSObject>& object) const;
  /// Finds the first index whose element is this very object, or gives `NSNotFound`.
  [[nodiscard]] NSUInteger indexOfObjectIdenticalTo(const NSRef<NSObject>& object) const noexcept;
  [[nodiscard]] bool containsObject(const NSRef<NSObject>& object) const {
    return indexOfObject(object) != NSNotFound;
  }
  /// Joins the descriptions of the elements with the separator, or nothing for nil, between them.
  [[nodiscard]] NSRef<NSString> componentsJoinedByString(const NSRef<NSString>& separator) const;

  /// Calls the block with each element, its index and a flag that ends the walk once it is set; a
  /// block may take the element alone. Raises as range-for does.
  void enumerateObjectsUsingBlock(
      NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> aBlock) const;
  /// Gives the elements for which the predicate holds, in their order.
  [[nodiscard]] NSRef<NSArray> filteredArrayUsingPredicate(
      const NSRef<NSPredicate>& predicate) const;

  /// Lends the elements; valid until the array changes.
  [[nodiscard]] std::span<const NSRef<NSObject>> objects() const noexcept {
    return _elements.view();
  }
  /// Gives the elements for who copies them: a copy stays as it is when the array changes.
  [[nodiscard]] const NSObjectVector& elements() const noexcept { return _elements; }
  /// Begins a range-for. When the array has changed, its next step raises `NSGenericException`; the
  /// element at hand stays valid.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(_elements, {self(), _mutations});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  /// Walks over the elements as objects of a class: `for (const auto& chapter :
  /// array->each<Chapter>())` gives references that are valid until the next step. One of another
  /// class raises `NSInvalidArgumentException`: "NSString is no Chapter (at index 3)".
  template <class T>
  [[nodiscard]] auto each() const noexcept {
    return NSTypedWalk<T, NSArray>(self(), *this);
  }

  /// Whether the other array has as many elements, equal one by one.
  [[nodiscard]] bool isEqualToArray(const NSRef<NSArray>& other) const;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "(a, b)".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives an array of the elements' answers, `NSNull` where an element answers nil.
  [[nodiscard]] NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const override;

  /// Gives the array itself while it is immutable; copies share the elements.
  [[nodiscard]] NSRef<NSArray> copy() const { return copyWithZone(nullptr).as<NSArray>(); }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableArray> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  /// Gives the elements to who is about to change them.
  NSObjectVector& changing() noexcept {
    ++_mutations;
    return _elements;
  }
  void reserveElements(std::size_t count) { _elements.reserve(count); }

 private:
  NSObjectVector _elements;
  NSMutationCount _mutations;
};

/// An array that may be changed, by one thread at a time. A change that raises leaves it as it was.
class NS_EXPORT NSMutableArray : public NSArray {
 public:
  using NSArray::NSArray;

  void addObject(const NSRef<NSObject>& anObject);
  /// Appends the other array's elements; nil has none. The array may be its own other one.
  void addObjectsFromArray(const NSRef<NSArray>& other);
  void insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index);
  /// Inserts the elements in their order, the first at the index.
  void insertElements_atIndex(NSObjectVector elements, NSUInteger index);
  void replaceObjectAtIndex_withObject(NSUInteger index, const NSRef<NSObject>& anObject);
  /// Puts the other array's elements in the places of those at the indexes, one for each, else it
  /// raises `NSInvalidArgumentException`.
  void replaceObjectsAtIndexes_withObjects(const NSRef<NSIndexSet>& indexes,
                                           const NSRef<NSArray>& objects);
  void removeObjectAtIndex(NSUInteger index);
  /// Removes the elements at the indexes, in one pass.
  void removeObjectsAtIndexes(const NSRef<NSIndexSet>& indexes);
  /// Removes every element that is equal.
  void removeObject(const NSRef<NSObject>& anObject);
  /// Removes the elements for which the callable holds; none when it throws or changes the array.
  void removeObjectsWhere(NSBlockRef<bool(const NSRef<NSObject>&)> isRemoved);
  /// Removes the elements for which the predicate does not hold.
  void filterUsingPredicate(const NSRef<NSPredicate>& predicate);
  /// Puts the elements into the order in which the callable, which is lent them, lists their
  /// places, each once. When it throws they stay as they are; when it changes the array, which then
  /// stays as that leaves it, this raises `NSGenericException`.
  void arrangeElements(NSBlockRef<std::vector<std::size_t>(std::span<const NSRef<NSObject>>)> list);
  /// Removes the last element; does nothing when the array is empty.
  void removeLastObject();
  void removeAllObjects() noexcept;
  /// Makes room for that many elements altogether.
  void reserve(NSUInteger count) { reserveElements(count); }

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
