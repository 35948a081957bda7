#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

#include <Foundation/detail/MutationCheck.h>

/// What compilers name when an algorithm needs more than a walk. Its name says what to use instead.
struct NSWalkOnly_SortBy_sortUsingFunction_ReadFrom_objects : std::forward_iterator_tag {};

/// The iterator of range-for over a collection. It holds the collection and a list of its entries;
/// where that is a copy, the entry at hand stays valid whatever happens to the collection. When the
/// collection has changed, the next step raises `NSGenericException`, even the last one.
template <class Entries>
class NSEnumeration {
 public:
  using iterator_concept = NSWalkOnly_SortBy_sortUsingFunction_ReadFrom_objects;
  using iterator_category = std::input_iterator_tag;
  using difference_type = std::ptrdiff_t;
  using reference = decltype(std::declval<const Entries&>()[0]);
  using value_type = std::remove_cvref_t<reference>;

  NSEnumeration() = default;
  NSEnumeration(Entries entries, NSMutationCheck check) noexcept
      : _entries(std::move(entries)), _check(std::move(check)) {}

  reference operator*() const { return _entries[_index]; }
  NSEnumeration& operator++() noexcept {
    ++_index;
    return *this;
  }
  NSEnumeration operator++(int) {
    auto former = *this;
    ++_index;
    return former;
  }
  bool operator==(std::default_sentinel_t /*end*/) const {
    _check();
    return _index == _entries.size();
  }
  /// Whether both have come as far in one collection.
  bool operator==(const NSEnumeration& other) const noexcept { return _index == other._index; }

 private:
  Entries _entries;
  NSMutationCheck _check;
  std::size_t _index = 0;
};
