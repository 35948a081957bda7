#include "Foundation/NSIndexSet.h"

#include <algorithm>
#include <array>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/ContentHash.h>

namespace {

NSRange rangeBetween(NSUInteger start, NSUInteger end) { return {start, end - start}; }

void checkRange(const char* operation, NSRange range) {
  if (!NSRangeFits(range, NSNotFound)) NSRaiseRangeOutOfBounds(operation, range, NSNotFound);
}

// Gives the end of a range, at most the first number after the largest index.
NSUInteger endOf(NSRange range) { return std::min(NSClampedMaxRange(range), NSNotFound); }

// Whether ranges are runs: they ascend, none is empty, and there are gaps between them.
bool areRuns(std::span<const NSRange> ranges) {
  if (!ranges.empty() && ranges.front().length == 0) return false;
  return std::ranges::adjacent_find(ranges, [](const NSRange& run, const NSRange& next) {
           return next.location <= NSMaxRange(run) || next.length == 0;
         }) == ranges.end();
}

// Makes runs of ranges that ascend.
void join(std::vector<NSRange>& ranges) {
  std::size_t count = 0;
  for (const NSRange& range : ranges) {
    if (range.length == 0) continue;
    if (count != 0 && range.location <= NSMaxRange(ranges[count - 1])) {
      ranges[count - 1] = NSUnionRange(ranges[count - 1], range);
    } else {
      ranges[count++] = range;
    }
  }
  ranges.resize(count);
}

NSUInteger countOf(std::span<const NSRange> ranges) {
  NSUInteger count = 0;
  for (const NSRange& range : ranges) count += range.length;
  return count;
}

}  // namespace

NSIndexSet::NSIndexSet(std::vector<NSRange> ranges) {
  for (const NSRange& range : ranges) checkRange("initWithRanges:", range);
  if (!areRuns(ranges)) {
    std::ranges::sort(ranges, {}, &NSRange::location);
    join(ranges);
  }
  setRanges(std::move(ranges));
}

void NSIndexSet::setRanges(std::vector<NSRange>&& ranges) noexcept {
  // A walk that goes on uses the present ones.
  if (ranges == _ranges) return;
  ++_mutations;
  _count = countOf(ranges);
  _ranges = std::move(ranges);
}

NSIndexSet::NSIndexSet(Elements indexes) {
  for (const NSUInteger index : indexes) add("initWithIndexes:", {index, 1});
}

std::size_t NSIndexSet::firstRangeEndingAbove(NSUInteger index) const noexcept {
  const auto found = std::ranges::upper_bound(_ranges, index, {}, NSMaxRange);
  return static_cast<std::size_t>(found - _ranges.begin());
}

std::size_t NSIndexSet::firstRangeStartingAt(NSUInteger index) const noexcept {
  const auto found = std::ranges::lower_bound(_ranges, index, {}, &NSRange::location);
  return static_cast<std::size_t>(found - _ranges.begin());
}

NSUInteger NSIndexSet::firstIndex() const noexcept {
  return _ranges.empty() ? NSNotFound : _ranges.front().location;
}

NSUInteger NSIndexSet::lastIndex() const noexcept {
  return _ranges.empty() ? NSNotFound : NSMaxRange(_ranges.back()) - 1;
}

NSUInteger NSIndexSet::indexGreaterThanOrEqualToIndex(NSUInteger index) const noexcept {
  const std::size_t k = firstRangeEndingAbove(index);
  return k == _ranges.size() ? NSNotFound : std::max(index, _ranges[k].location);
}

NSUInteger NSIndexSet::indexGreaterThanIndex(NSUInteger index) const noexcept {
  return index >= NSNotFound ? NSNotFound : indexGreaterThanOrEqualToIndex(index + 1);
}

NSUInteger NSIndexSet::indexLessThanIndex(NSUInteger index) const noexcept {
  const std::size_t k = firstRangeStartingAt(index);
  return k == 0 ? NSNotFound : std::min(index, NSMaxRange(_ranges[k - 1])) - 1;
}

NSUInteger NSIndexSet::indexLessThanOrEqualToIndex(NSUInteger index) const noexcept {
  return containsIndex(index) ? index : indexLessThanIndex(index);
}

bool NSIndexSet::containsIndex(NSUInteger index) const noexcept {
  const std::size_t k = firstRangeEndingAbove(index);
  return k != _ranges.size() && _ranges[k].location <= index;
}

bool NSIndexSet::containsIndexesInRange(NSRange range) const noexcept {
  if (range.length == 0) return false;
  const std::size_t k = firstRangeEndingAbove(range.location);
  return k != _ranges.size() && _ranges[k].location <= range.location &&
         endOf(range) <= NSMaxRange(_ranges[k]);
}

bool NSIndexSet::intersectsIndexesInRange(NSRange range) const noexcept {
  if (range.length == 0) return false;
  const std::size_t k = firstRangeEndingAbove(range.location);
  return k != _ranges.size() && _ranges[k].location < NSClampedMaxRange(range);
}

NSUInteger NSIndexSet::countOfIndexesInRange(NSRange range) const noexcept {
  NSUInteger count = 0;
  for (std::size_t k = firstRangeEndingAbove(range.location); k < _ranges.size(); ++k) {
    const NSUInteger common = NSIntersectionRange(_ranges[k], range).length;
    if (common == 0) break;
    count += common;
  }
  return count;
}

NSUInteger NSIndexSet::getIndexes_maxCount_inIndexRange(NSUInteger* indexes, NSUInteger maxCount,
                                                        NSRange* range) const noexcept {
  NSRange rest = range != nullptr ? *range : NSRange{0, NSNotFound};
  const NSUInteger end = NSClampedMaxRange(rest);
  NSUInteger given = 0;
  for (std::size_t k = firstRangeEndingAbove(rest.location); k < _ranges.size(); ++k) {
    const NSRange common = NSIntersectionRange(_ranges[k], rest);
    const NSUInteger taken = std::min(common.length, maxCount - given);
    if (taken == 0) break;
    for (NSUInteger i = 0; i < taken; ++i) indexes[given + i] = common.location + i;
    given += taken;
    rest = rangeBetween(common.location + taken, end);
  }
  if (range != nullptr) *range = rest;
  return given;
}

void NSIndexSet::enumerateIndexesUsingBlock(NSBlockRef<void(NSUInteger, bool&)> aBlock) const {
  if (!aBlock) NSRaiseNilArgument("aBlock", "enumerateIndexesUsingBlock:");
  bool stop = false;
  for (const NSUInteger index : *this) {
    aBlock(index, stop);
    if (stop) return;
  }
}

void NSIndexSet::enumerateRangesUsingBlock(NSBlockRef<void(NSRange, bool&)> aBlock) const {
  if (!aBlock) NSRaiseNilArgument("aBlock", "enumerateRangesUsingBlock:");
  const NSMutationCheck check(self(), _mutations);
  bool stop = false;
  for (auto rest = ranges(); !rest.empty(); rest = rest.subspan(1)) {
    aBlock(rest.front(), stop);
    if (stop) return;
    check();
  }
}

void NSIndexSet::replaceRanges(std::size_t first, std::size_t end, std::span<const NSRange> by) {
  NSUInteger count = _count;
  for (std::size_t k = first; k < end; ++k) count -= _ranges[k].length;
  for (const NSRange& range : by) count += range.length;
  const auto at = [&](std::size_t k) { return _ranges.begin() + static_cast<std::ptrdiff_t>(k); };
  const std::size_t common = std::min(end - first, by.size());
  // The part that may fail comes first.
  _ranges.insert(at(end), by.begin() + static_cast<std::ptrdiff_t>(common), by.end());
  std::ranges::copy(by.first(common), at(first));
  _ranges.erase(at(first + common), at(end));
  _count = count;
  ++_mutations;
}

void NSIndexSet::add(const char* operation, NSRange range) {
  checkRange(operation, range);
  if (range.length == 0) return;
  // Mostly they come in ascending order.
  if (_ranges.empty() || NSMaxRange(_ranges.back()) < range.location) {
    _ranges.push_back(range);
    _count += range.length;
    ++_mutations;
    return;
  }
  if (containsIndexesInRange(range)) return;
  // All that it touches becomes one with it: neighbours, too.
  const std::size_t first = range.location == 0 ? 0 : firstRangeEndingAbove(range.location - 1);
  const std::size_t end = firstRangeStartingAt(NSMaxRange(range) + 1);
  for (std::size_t k = first; k < end; ++k) range = NSUnionRange(range, _ranges[k]);
  replaceRanges(first, end, {&range, 1});
}

void NSIndexSet::remove(NSRange range) {
  if (!intersectsIndexesInRange(range)) return;
  const NSUInteger rangeEnd = NSClampedMaxRange(range);
  const std::size_t first = firstRangeEndingAbove(range.location);
  const std::size_t end = firstRangeStartingAt(rangeEnd);
  std::array<NSRange, 2> rests;
  std::size_t count = 0;
  const NSUInteger start = _ranges[first].location;
  const NSUInteger lastEnd = NSMaxRange(_ranges[end - 1]);
  if (start < range.location) rests[count++] = rangeBetween(start, range.location);
  if (rangeEnd < lastEnd) rests[count++] = rangeBetween(rangeEnd, lastEnd);
  replaceRanges(first, end, std::span(rests).first(count));
}

void NSIndexSet::removeAll() noexcept {
  if (_count == 0) return;
  _ranges.clear();
  _count = 0;
  ++_mutations;
}

bool NSIndexSet::isEqualToIndexSet(const NSRef<NSIndexSet>& other) const noexcept {
  return other && _ranges == other.get()->_ranges;
}

bool NSIndexSet::isEqual(const NSRef<NSObject>& other) const {
  return isEqualToIndexSet(other.as<NSIndexSet>());
}

NSUInteger NSIndexSet::hash() const {
  NSUInteger hash = _count;
  for (const NSRange& range : _ranges) {
    hash = NSHashWith(NSHashWith(hash, range.location), range.length);
  }
  return hash;
}

NSRef<NSString> NSIndexSet::description() const {
  NSUnitBuffer text(u"(");
  for (const NSRange& range : _ranges) {
    if (text.size() > 1) text.append(u" ");
    text.appendDecimal(range.location);
    if (range.length == 1) continue;
    text.append(u"-");
    text.appendDecimal(NSMaxRange(range) - 1);
  }
  text.append(u")");
  return NSMake<NSString>(std::move(text));
}

NSRef<NSMutableIndexSet> NSIndexSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableIndexSet>();
}

NSRef<NSObject> NSIndexSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  auto copy = NSMake<NSMutableIndexSet>();
  copy->_ranges = _ranges;
  copy->_count = _count;
  return copy;
}

void NSMutableIndexSet::addIndexes(const NSRef<NSIndexSet>& other) {
  if (!other) return;
  std::vector<NSRange> all(ranges().size() + other->ranges().size());
  std::ranges::merge(ranges(), other->ranges(), all.begin(), {}, &NSRange::location,
                     &NSRange::location);
  join(all);
  setRanges(std::move(all));
}

void NSMutableIndexSet::removeIndexes(const NSRef<NSIndexSet>& other) {
  if (!other) return;
  std::vector<NSRange> rest;
  auto removed = other->ranges();
  for (const NSRange& run : ranges()) {
    NSUInteger start = run.location;
    while (!removed.empty() && removed.front().location < NSMaxRange(run)) {
      const NSRange gap = removed.front();
      if (gap.location > start) rest.push_back(rangeBetween(start, gap.location));
      start = std::max(start, NSMaxRange(gap));
      if (start >= NSMaxRange(run)) break;
      removed = removed.subspan(1);
    }
    if (start < NSMaxRange(run)) rest.push_back(rangeBetween(start, NSMaxRange(run)));
  }
  setRanges(std::move(rest));
}

NSRef<NSObject> NSMutableIndexSet::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSIndexSet>(static_cast<const NSIndexSet&>(*this));
}
