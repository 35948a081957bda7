#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// The copy-on-write vector of collections: strong references in one block of memory with room at
/// both ends, so that an insertion moves the shorter side only.
///
/// Copies share the block until one of them is changed. So a copy costs no time, and whoever holds
/// one keeps the elements alive, whatever happens to the collection. Indexes are not checked.
class NS_EXPORT NSObjectVector {
 public:
  NSObjectVector() noexcept = default;
  explicit NSObjectVector(std::span<const NSRef<NSObject>> objects);
  explicit NSObjectVector(std::vector<NSRef<NSObject>>&& objects);

  [[nodiscard]] std::size_t size() const noexcept { return _block ? _block.get()->count : 0; }
  /// Lends the elements; valid until this vector changes.
  [[nodiscard]] std::span<const NSRef<NSObject>> view() const noexcept {
    if (!_block) return {};
    return {_block.get()->begin(), _block.get()->count};
  }
  const NSRef<NSObject>& operator[](std::size_t index) const noexcept {
    return _block.get()->begin()[index];
  }

  /// Makes room for that many elements altogether: until there are as many, appending cannot fail.
  void reserve(std::size_t count);
  /// Takes a block of its own: until a copy is made, what needs no more room cannot fail.
  void makeOwn();
  void append(NSRef<NSObject> object) {
    Block* const block = _block.get();
    if (block != nullptr && block->first + block->count < block->capacity &&
        block->isUniquelyReferenced()) {
      std::construct_at(block->begin() + block->count++, std::move(object));
    } else {
      insert(size(), std::move(object));
    }
  }
  /// Inserts at an index up to the size. Fails for want of memory alone, and then changes nothing.
  void insert(std::size_t index, NSRef<NSObject> object);
  /// Inserts several, the first at the index.
  void insert(std::size_t index, NSObjectVector&& elements);
  /// Hands the former element back, so that it dies when the caller's collection is in order again.
  [[nodiscard]] NSRef<NSObject> replace(std::size_t index, NSRef<NSObject> object);
  /// Hands the removed element back, as `replace` does.
  [[nodiscard]] NSRef<NSObject> remove(std::size_t index);
  /// Puts the elements into the order of their listed places; each place is listed once.
  void arrange(std::span<const std::size_t> places);
  /// Removes the elements that have a mark, in one pass; there is a mark for each.
  [[nodiscard]] NSObjectVector removeMarked(const std::vector<bool>& marks);

 private:
  // The slots lie behind it in the same memory; the elements stand in them from `first` on.
  struct NS_EXPORT Block : NSObject {
    explicit Block(std::size_t room) noexcept : capacity(room) {}
    Block(const Block&) = delete;
    ~Block() override;
    static void operator delete(void* memory) noexcept { ::operator delete(memory); }

    NSRef<NSObject>* room() noexcept { return reinterpret_cast<NSRef<NSObject>*>(this + 1); }
    NSRef<NSObject>* begin() noexcept { return room() + first; }

    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t capacity;
  };

  [[nodiscard]] static NSRef<Block> makeBlock(std::size_t capacity);
  void moveTo(std::size_t capacity, std::size_t first);
  void grow(std::size_t index, std::size_t added);
  NSRef<NSObject>* openGap(std::size_t index, std::size_t width);
  void shift(std::size_t from, std::size_t count, std::ptrdiff_t by) noexcept;

  NSRef<Block> _block;
};
