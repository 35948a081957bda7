#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

#include <Foundation/NSClass.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Borrowed.h>

/// Raises `NSInvalidArgumentException`: "NSString is no Chapter (at index 3)", without the index
/// when it is `NSNotFound`.
[[noreturn]] NS_EXPORT void NSRaiseWrongElement(const NSRef<NSObject>& element, NSClass wanted,
                                                NSUInteger index);

/// The elements of a collection as objects of a class, for one range-for at a time. It holds the
/// collection, and obeys the rules of the collection's own range-for.
template <class T, class Collection>
class NSTypedWalk {
  using Walk = decltype(std::declval<const Collection&>().begin());
  static constexpr bool hasIndexes = requires(const Collection& collection) {
    collection.objectAtIndex(0);
  };

 public:
  class Iterator {
   public:
    using iterator_concept = std::input_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = NSRef<T>;
    using reference = const NSRef<T>&;

    Iterator() = default;
    explicit Iterator(Walk walk) noexcept : _walk(std::move(walk)) {}

    /// Lends a reference that is valid until the next step.
    reference operator*() const {
      const NSRef<NSObject>& element = *_walk;
      T* const object = element.template cast<T>();
      if (object == nullptr) [[unlikely]] {
        NSRaiseWrongElement(element, NSClass::of<T>(), hasIndexes ? _index : NSNotFound);
      }
      _element = NSBorrowed<T>(object);
      return *_element;
    }
    Iterator& operator++() noexcept {
      ++_walk;
      ++_index;
      return *this;
    }
    void operator++(int) noexcept { ++*this; }
    bool operator==(std::default_sentinel_t end) const { return _walk == end; }

   private:
    Walk _walk;
    mutable NSBorrowed<T> _element;
    NSUInteger _index = 0;
  };

  explicit NSTypedWalk(NSRef<NSObject> holder, const Collection& collection) noexcept
      : _holder(std::move(holder)), _collection(&collection) {}

  [[nodiscard]] Iterator begin() const noexcept { return Iterator(_collection->begin()); }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

 private:
  NSRef<NSObject> _holder;
  const Collection* _collection;
};
