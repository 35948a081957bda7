#include "Foundation/detail/ObjectVector.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr std::size_t smallestRoom = 4;
constexpr std::size_t largestCapacity =
    (std::numeric_limits<std::ptrdiff_t>::max() / sizeof(NSRef<NSObject>)) - 16;

// A reference is one pointer that knows nothing of its place: moved bytes are a moved reference.
void relocate(NSRef<NSObject>* to, const NSRef<NSObject>* from, std::size_t count) noexcept {
  if (count != 0) {
    std::memmove(static_cast<void*>(to), static_cast<const void*>(from), count * sizeof(*from));
  }
}

bool isNearerToFront(std::size_t index, std::size_t count) { return index < count - count / 2; }

}  // namespace

NSObjectVector::Block::~Block() { std::destroy_n(begin(), count); }

NSRef<NSObjectVector::Block> NSObjectVector::makeBlock(std::size_t capacity) {
  if (capacity > largestCapacity) throw std::bad_array_new_length();
  void* const memory = ::operator new(sizeof(Block) + capacity * sizeof(NSRef<NSObject>));
  return NSRef<Block>::adopt(::new (memory) Block(capacity));
}

NSObjectVector::NSObjectVector(std::span<const NSRef<NSObject>> objects) {
  if (objects.empty()) return;
  _block = makeBlock(objects.size());
  std::ranges::uninitialized_copy(objects, std::span(_block->room(), objects.size()));
  _block->count = objects.size();
}

NSObjectVector::NSObjectVector(std::vector<NSRef<NSObject>>&& objects) {
  if (objects.empty()) return;
  _block = makeBlock(objects.size());
  std::ranges::uninitialized_move(objects, std::span(_block->room(), objects.size()));
  _block->count = objects.size();
}

// To a block of its own, at that place in it.
void NSObjectVector::moveTo(std::size_t capacity, std::size_t first) {
  auto block = makeBlock(capacity);
  block->first = first;
  if (_block && _block->isUniquelyReferenced()) {
    relocate(block->begin(), _block->begin(), _block->count);
    block->count = std::exchange(_block->count, 0);
  } else {
    const auto objects = view();
    std::ranges::uninitialized_copy(objects, std::span(block->begin(), objects.size()));
    block->count = objects.size();
  }
  _block = std::move(block);
}

void NSObjectVector::makeOwn() {
  if (_block && !_block->isUniquelyReferenced()) moveTo(_block->capacity, _block->first);
}

void NSObjectVector::reserve(std::size_t count) {
  if (_block && count <= _block->capacity - _block->first) {
    makeOwn();
  } else if (count != 0) {
    // Half as much again at least: who asks for one more each time pays no more for it.
    moveTo(std::max(count, size() + size() / 2), 0);
  }
}

void NSObjectVector::shift(std::size_t from, std::size_t count, std::ptrdiff_t by) noexcept {
  NSRef<NSObject>* const source = _block->room() + from;
  relocate(source + by, source, count);
}

// A block with half as much room again, most of it where this insertion wants it.
void NSObjectVector::grow(std::size_t index, std::size_t added) {
  const std::size_t count = size();
  const std::size_t wanted = count + added + std::max(smallestRoom, count / 2);
  const std::size_t capacity = _block ? std::max(_block->capacity, wanted) : wanted;
  const std::size_t spare = capacity - count - added;
  std::size_t first = spare / 2;
  if (index == count) {
    first = _block && _block->first != 0 ? spare / 4 : 0;
  } else if (index == 0) {
    first = spare - spare / 4;
  }
  if (isNearerToFront(index, count)) first += added;
  moveTo(capacity, first);
}

// Makes `width` elements' room, which the caller fills and counts.
NSRef<NSObject>* NSObjectVector::openGap(std::size_t index, std::size_t width) {
  const std::size_t count = size();
  const bool isInFront = isNearerToFront(index, count);
  const std::size_t room = !_block     ? 0
                           : isInFront ? _block->first
                                       : _block->capacity - _block->first - count;
  if (room >= width) {
    makeOwn();
  } else {
    grow(index, width);
  }
  const auto distance = static_cast<std::ptrdiff_t>(width);
  if (isInFront) {
    shift(_block->first, index, -distance);
    _block->first -= width;
  } else {
    shift(_block->first + index, count - index, distance);
  }
  return _block->begin() + index;
}

void NSObjectVector::insert(std::size_t index, NSRef<NSObject> object) {
  std::construct_at(openGap(index, 1), std::move(object));
  ++_block->count;
}

void NSObjectVector::insert(std::size_t index, NSObjectVector&& elements) {
  const auto objects = elements.view();
  if (objects.empty()) return;
  NSRef<NSObject>* const gap = openGap(index, objects.size());
  std::ranges::uninitialized_copy(objects, std::span(gap, objects.size()));
  _block->count += objects.size();
}

NSRef<NSObject> NSObjectVector::replace(std::size_t index, NSRef<NSObject> object) {
  makeOwn();
  return std::exchange(_block->begin()[index], std::move(object));
}

NSRef<NSObject> NSObjectVector::remove(std::size_t index) {
  makeOwn();
  Block& block = *_block;
  // Its bytes are written over, or lie outside of the elements afterwards.
  NSRef<NSObject> removed = std::move(block.begin()[index]);
  const std::size_t behind = --block.count - index;
  if (index < behind) {
    shift(block.first, index, 1);
    ++block.first;
  } else {
    shift(block.first + index + 1, behind, -1);
  }
  return removed;
}

void NSObjectVector::arrange(std::span<const std::size_t> places) {
  if (places.empty()) return;
  std::vector<NSObject*> arranged;
  arranged.reserve(places.size());
  for (const std::size_t place : places) arranged.push_back((*this)[place].get());
  makeOwn();
  // Bytes again: every count finds its reference.
  std::memcpy(static_cast<void*>(_block->begin()), arranged.data(),
              arranged.size() * sizeof(NSRef<NSObject>));
}

NSObjectVector NSObjectVector::removeMarked(const std::vector<bool>& marks) {
  makeOwn();
  NSObjectVector removed;
  removed.reserve(static_cast<std::size_t>(std::ranges::count(marks, true)));
  NSRef<NSObject>* const objects = _block->begin();
  std::size_t kept = 0;
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k]) {
      removed.append(std::move(objects[k]));
    } else {
      objects[kept++] = std::move(objects[k]);
    }
  }
  // The slots behind them are nil now.
  _block->count = kept;
  return removed;
}
