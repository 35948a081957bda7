#pragma once

#include <span>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Enumeration.h>
#include <Foundation/detail/MutationCheck.h>

/// How a collection treats the pointers that it holds.
using NSPointerFunctionsOptions = NSUInteger;
/// Treats them as plain addresses: neither retains, releases nor clears what they point to.
inline constexpr NSPointerFunctionsOptions NSPointerFunctionsOpaqueMemory = 2;

/// A sequence of plain pointers, which may be null. It owns nothing of what they point to, and two
/// are equal when they are the same address. An index that does not fit raises `NSRangeException`.
/// Belongs to one thread at a time.
class NS_EXPORT NSPointerArray : public NSObject {
 public:
  NSPointerArray() noexcept = default;
  /// Makes an empty array. Options other than `NSPointerFunctionsOpaqueMemory` raise
  /// `NSInvalidArgumentException`.
  [[nodiscard]] static NSRef<NSPointerArray> pointerArrayWithOptions(
      NSPointerFunctionsOptions options);

  /// Counts the pointers, nulls as well.
  [[nodiscard]] NSUInteger count() const noexcept { return _pointers.size(); }
  [[nodiscard]] void* pointerAtIndex(NSUInteger index) const;
  void addPointer(void* pointer);
  void insertPointer_atIndex(void* pointer, NSUInteger index);
  void replacePointerAtIndex_withPointer(NSUInteger index, void* pointer);
  void removePointerAtIndex(NSUInteger index);

  /// Lends the pointers; valid until the array changes.
  [[nodiscard]] std::span<void* const> pointers() const noexcept { return _pointers; }
  /// Begins a range-for. When the array has changed, its next step raises `NSGenericException`.
  [[nodiscard]] auto begin() const noexcept {
    return NSEnumeration(Pointers{_pointers}, {self(), _mutations});
  }
  [[nodiscard]] static std::default_sentinel_t end() noexcept { return {}; }

  /// Whether the other array has the same addresses in the same order.
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "(0x7f00, (null))".
  [[nodiscard]] NSRef<NSString> description() const override;
  /// Gives another array with the same pointers, which may be changed too.
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  // Gives the pointers by value: they may move while one is at hand.
  struct Pointers {
    [[nodiscard]] std::size_t size() const noexcept { return all.size(); }
    void* operator[](std::size_t index) const noexcept { return all[index]; }
    std::span<void* const> all;
  };

  std::vector<void*> _pointers;
  NSMutationCount _mutations;
};
