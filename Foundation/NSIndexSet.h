#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <span>
#include <vector>

#include <Foundation/NSBlock.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>
#include <Foundation/detail/MutationCheck.h>

class NSMutableIndexSet;
class NSString;

/// A set of indexes below `NSNotFound`, kept as ranges: a million consecutive indexes cost as much
/// as one. An index that cannot be one raises `NSRangeException`.
class NS_EXPORT NSIndexSet : public NSObject {
 public:
  using Elements = std::initializer_list<NSUInteger>;

  NSIndexSet() noexcept = default;
  explicit NSIndexSet(Elements indexes);
  explicit NSIndexSet(NSUInteger index) { add("initWithIndex:", {index, 1}); }
  explicit NSIndexSet(NSRange range) { add("initWithIndexesInRange:", range); }
  /// Accepts ranges in any order; adopts them if sorted and disjoint.
  explicit NSIndexSet(std::vector<NSRange> ranges);

  [[nodiscard]] NSUInteger count() const noexcept { return _count; }
  /// Gives `NSNotFound` when the set is empty, as `lastIndex` does.
  [[nodiscard]] NSUInteger firstIndex() const noexcept;
  [[nodiscard]] NSUInteger lastIndex() const noexcept;
  /// Finds the nearest index of the set on that side, or gives `NSNotFound`, as the next three do.
  [[nodiscard]] NSUInteger indexGreaterThanIndex(NSUInteger index) const noexcept;
  [[nodiscard]] NSUInteger indexGreaterThanOrEqualToIndex(NSUInteger index) const noexcept;
  [[nodiscard]] NSUInteger indexLessThanIndex(NSUInteger index) const noexcept;
  [[nodiscard]] NSUInteger indexLessThanOrEqualToIndex(NSUInteger index) const noexcept;

  [[nodiscard]] bool containsIndex(NSUInteger index) const noexcept;
  /// Whether every index of the range is in the set; an empty range is in none. A range that would
  /// pass the largest index ends there, here and below.
  [[nodiscard]] bool containsIndexesInRange(NSRange range) const noexcept;
  [[nodiscard]] bool intersectsIndexesInRange(NSRange range) const noexcept;
  [[nodiscard]] NSUInteger countOfIndexesInRange(NSRange range) const noexcept;

  /// Copies up to `maxCount` indexes that lie in the range, or any when it is null, in ascending
  /// order, and tells how many. The range then begins after the last one copied; its end stays.
  NSUInteger getIndexes_maxCount_inIndexRange(NSUInteger* indexes, NSUInteger maxCount,
                                              NSRange* range) const noexcept;

  /// Calls the block with each index and a flag that ends the walk once it is set. Raises as
  /// range-for does, and for a nil block `NSInvalidArgumentException`.
  void enumerateIndexesUsingBlock(NSBlockRef<void(NSUInteger, bool&)> aBlock) const;
  /// Calls the block with each run of consecutive indexes and a flag that ends the walk once it is
  /// set. Raises as `enumerateIndexesUsingBlock` does.
  void enumerateRangesUsingBlock(NSBlockRef<void(NSRange, bool&)> aBlock) const;

  /// Lends the runs of consecutive indexes, ascending, none empty, with gaps between them; valid
  /// until the set changes.
  [[nodiscard]] std::span<const NSRange> ranges() const noexcept { return _ranges; }

  class Iterator;
  /// Begins a range-for over the indexes. A step after a change raises `NSGenericException`.
  [[nodiscard]] Iterator begin() const noexcept;
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  [[nodiscard]] bool isEqualToIndexSet(const NSRef<NSIndexSet>& other) const noexcept;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "(1-3 7)".
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Gives the set itself while it is immutable.
  [[nodiscard]] NSRef<NSIndexSet> copy() const { return copyWithZone(nullptr).as<NSIndexSet>(); }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableIndexSet> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  void add(const char* operation, NSRange range);
  void remove(NSRange range);
  void removeAll() noexcept;
  void setRanges(std::vector<NSRange>&& ranges) noexcept;

 private:
  [[nodiscard]] std::size_t firstRangeEndingAbove(NSUInteger index) const noexcept;
  [[nodiscard]] std::size_t firstRangeStartingAt(NSUInteger index) const noexcept;
  void replaceRanges(std::size_t first, std::size_t end, std::span<const NSRange> by);

  std::vector<NSRange> _ranges;
  NSUInteger _count = 0;
  NSMutationCount _mutations;
};

class NSIndexSet::Iterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using difference_type = std::ptrdiff_t;
  using value_type = NSUInteger;
  using reference = NSUInteger;

  Iterator() = default;
  Iterator(std::span<const NSRange> ranges, NSMutationCheck check) noexcept
      : _ranges(ranges), _check(std::move(check)) {}

  NSUInteger operator*() const {
    _check();
    return _ranges.front().location + _offset;
  }
  Iterator& operator++() {
    _check();
    if (++_offset == _ranges.front().length) {
      _ranges = _ranges.subspan(1);
      _offset = 0;
    }
    return *this;
  }
  Iterator operator++(int) {
    auto former = *this;
    ++*this;
    return former;
  }
  bool operator==(std::default_sentinel_t /*end*/) const {
    _check();
    return _ranges.empty();
  }
  bool operator==(const Iterator& other) const noexcept {
    return _ranges.size() == other._ranges.size() && _offset == other._offset;
  }

 private:
  std::span<const NSRange> _ranges;
  NSMutationCheck _check;
  NSUInteger _offset = 0;
};

inline NSIndexSet::Iterator NSIndexSet::begin() const noexcept {
  return {_ranges, {self(), _mutations}};
}

/// A set of indexes that one thread at a time may change. A change that raises leaves it as it was.
class NS_EXPORT NSMutableIndexSet : public NSIndexSet {
 public:
  using NSIndexSet::NSIndexSet;

  void addIndex(NSUInteger index) { add("addIndex:", {index, 1}); }
  void addIndexesInRange(NSRange range) { add("addIndexesInRange:", range); }
  /// Adds the other set's indexes; nil has none.
  void addIndexes(const NSRef<NSIndexSet>& other);
  void removeIndex(NSUInteger index) { remove({index, 1}); }
  void removeIndexesInRange(NSRange range) { remove(range); }
  /// Removes the other set's indexes; nil has none.
  void removeIndexes(const NSRef<NSIndexSet>& other);
  void removeAllIndexes() noexcept { removeAll(); }

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
