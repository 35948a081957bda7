#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSMutableArray;
class NSString;

/// An ordered sequence of objects. An index that does not fit raises `NSRangeException`, nil as an
/// element `NSInvalidArgumentException`.
class NS_EXPORT NSArray : public NSObject {
 public:
  using Elements = std::initializer_list<NSRef<NSObject>>;

  NSArray() noexcept = default;
  explicit NSArray(Elements elements) : NSArray(std::vector<NSRef<NSObject>>(elements)) {}
  explicit NSArray(std::vector<NSRef<NSObject>> elements);

  NSUInteger count() const noexcept { return _objects.size(); }
  NSRef<NSObject> objectAtIndex(NSUInteger index) const;
  /// Nil when the array is empty.
  NSRef<NSObject> firstObject() const { return _objects.empty() ? nullptr : _objects.front(); }
  NSRef<NSObject> lastObject() const { return _objects.empty() ? nullptr : _objects.back(); }

  /// The first index whose element is equal, or `NSNotFound`.
  NSUInteger indexOfObject(const NSRef<NSObject>& object) const;
  bool containsObject(const NSRef<NSObject>& object) const {
    return indexOfObject(object) != NSNotFound;
  }
  /// The descriptions of the elements with the separator between them; nil separates by nothing.
  NSRef<NSString> componentsJoinedByString(const NSRef<NSString>& separator) const;

  /// The elements in place; valid until the array changes.
  std::span<const NSRef<NSObject>> objects() const noexcept { return _objects; }
  auto begin() const noexcept { return _objects.begin(); }
  auto end() const noexcept { return _objects.end(); }

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
  std::vector<NSRef<NSObject>>& elements() noexcept { return _objects; }

 private:
  std::vector<NSRef<NSObject>> _objects;
};

/// An array that may be changed. Belongs to one thread at a time. A change that raises leaves it as
/// it was.
class NS_EXPORT NSMutableArray : public NSArray {
 public:
  using NSArray::NSArray;

  void addObject(const NSRef<NSObject>& anObject);
  void insertObject_atIndex(const NSRef<NSObject>& anObject, NSUInteger index);
  void replaceObjectAtIndex_withObject(NSUInteger index, const NSRef<NSObject>& anObject);
  void removeObjectAtIndex(NSUInteger index);
  /// Does nothing when the array is empty.
  void removeLastObject() noexcept;
  void removeAllObjects() noexcept;
  /// Makes room for so many elements altogether.
  void reserve(NSUInteger count) { elements().reserve(count); }

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
