#pragma once

#include <atomic>
#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <Foundation/NSObject.h>

/// A block as a parameter of a call that does not outlive it: any callable, or none. It refers to
/// the caller's callable without an allocation; that may take the first argument alone.
///
/// A null pointer and an empty `std::function` are nil blocks; calling one is undefined.
template <class Signature>
class NSBlockRef;

template <class T>
inline constexpr bool NSIsStandardFunction = false;
template <class Signature>
inline constexpr bool NSIsStandardFunction<std::function<Signature>> = true;

/// False for every type, so that a wrong use says one sentence.
template <class T>
inline constexpr bool NSIsNever = false;

/// Whether the callable is none: a null pointer or an empty `std::function`.
template <class F>
[[nodiscard]] constexpr bool NSIsNilCallable(const F& callable) noexcept {
  if constexpr (std::is_pointer_v<F> || std::is_member_pointer_v<F> || NSIsStandardFunction<F>) {
    return !callable;
  } else {
    return false;
  }
}

template <class Result, class First, class... Rest>
class NSBlockRef<Result(First, Rest...)> {
 public:
  constexpr NSBlockRef(std::nullptr_t) noexcept {}

  template <class F>
  requires(!std::same_as<std::remove_cvref_t<F>, NSBlockRef> &&
           (std::is_invocable_r_v<Result, F&, First, Rest...> ||
            std::is_invocable_r_v<Result, F&, First>)) constexpr NSBlockRef(F&& callable) noexcept {
    using Callable = std::remove_reference_t<F>;
    if (NSIsNilCallable(callable)) return;
    _callable = reinterpret_cast<const void*>(std::addressof(callable));
    _call = [](const void* pointer, First first, [[maybe_unused]] Rest... rest) -> Result {
      auto& target = *reinterpret_cast<Callable*>(const_cast<void*>(pointer));
      if constexpr (std::is_invocable_v<F&, First, Rest...>) {
        return static_cast<Result>(
            std::invoke(target, std::forward<First>(first), std::forward<Rest>(rest)...));
      } else {
        return static_cast<Result>(std::invoke(target, std::forward<First>(first)));
      }
    };
  }

  explicit operator bool() const noexcept { return _call != nullptr; }
  Result operator()(First first, Rest... rest) const {
    return _call(_callable, std::forward<First>(first), std::forward<Rest>(rest)...);
  }

 private:
  const void* _callable = nullptr;
  Result (*_call)(const void*, First, Rest...) = nullptr;
};

/// A block as an object, for what outlives the call: any callable that takes its target, or
/// nothing. Equal to itself alone. Copies are the block itself.
class NS_EXPORT NSBlock : public NSObject {
 public:
  virtual void invoke(const NSRef<NSObject>& target) = 0;

  /// Calls it as a request does, and notes that.
  void perform(const NSRef<NSObject>& target) {
    _hasBegun.store(true, std::memory_order_relaxed);
    invoke(target);
  }
  /// Whether a request has called it yet. From any thread.
  [[nodiscard]] bool hasBegun() const noexcept { return _hasBegun.load(std::memory_order_relaxed); }

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 protected:
  /// Notes that no request has called it after all, as there was nobody to call it for.
  void forget() noexcept { _hasBegun.store(false, std::memory_order_relaxed); }

 private:
  // Fits beside the object's count.
  std::atomic<bool> _hasBegun = false;
};

/// Calls the callable with the target, as a reference to it or as an `NSRef`, or with nothing.
template <class Target, class F>
void NSInvokeWithTarget(F& callable, const NSRef<Target>& target) {
  if constexpr (std::is_invocable_v<F&, Target&>) {
    std::invoke(callable, *target);
  } else if constexpr (std::is_invocable_v<F&, const NSRef<Target>&>) {
    std::invoke(callable, target);
  } else if constexpr (std::is_invocable_v<F&>) {
    std::invoke(callable);
  } else {
    static_assert(NSIsNever<F>,
                  "the block takes neither what it is called with, as a reference or an NSRef, "
                  "nor nothing");
  }
}

/// The block object of a callable for targets of that class.
template <class Target, class Callable>
class NSCallableBlock final : public NSBlock {
 public:
  template <class F>
  explicit NSCallableBlock(F&& callable) : _callable(std::forward<F>(callable)) {
    // Instantiated for the line that makes the block; of a virtual function g++ names none.
    static_cast<void>(&NSInvokeWithTarget<Target, Callable>);
  }
  void invoke(const NSRef<NSObject>& target) override {
    NSInvokeWithTarget<Target>(_callable, target.template as<Target>());
  }

 private:
  Callable _callable;
};

/// Makes a block object of a callable for targets of that class; gives block objects and nil back.
template <class Target, class F>
[[nodiscard]] NSRef<NSBlock> NSMakeBlock(F&& callable) {
  if constexpr (std::is_convertible_v<F, NSRef<NSBlock>>) {
    return std::forward<F>(callable);
  } else {
    if (NSIsNilCallable(callable)) return nullptr;
    return NSMake<NSCallableBlock<Target, std::decay_t<F>>>(std::forward<F>(callable));
  }
}
