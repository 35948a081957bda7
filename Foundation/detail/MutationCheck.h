#pragma once

#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// Counts the changes of a collection, by which a walk tells that it has changed; a copy has none.
class NSMutationCount {
 public:
  NSMutationCount() noexcept = default;
  NSMutationCount(const NSMutationCount& /*other*/) noexcept {}
  NSMutationCount& operator=(const NSMutationCount&) = delete;
  ~NSMutationCount() = default;

  NSMutationCount& operator++() noexcept {
    ++_value;
    return *this;
  }
  [[nodiscard]] NSUInteger value() const noexcept { return _value; }

 private:
  NSUInteger _value = 0;
};

/// Holds a collection, and notices when it has changed since.
class NS_EXPORT NSMutationCheck {
 public:
  NSMutationCheck() noexcept = default;
  NSMutationCheck(NSRef<NSObject> collection, const NSMutationCount& mutations) noexcept
      : _collection(std::move(collection)), _mutations(&mutations), _expected(mutations.value()) {}

  /// Raises `NSGenericException` when the collection has changed: "NSMutableArray was mutated while
  /// being enumerated".
  void operator()() const {
    if (_mutations->value() != _expected) [[unlikely]] {
      raise();
    }
  }

 private:
  [[noreturn]] void raise() const;

  NSRef<NSObject> _collection;
  const NSMutationCount* _mutations = nullptr;
  NSUInteger _expected = 0;
};
