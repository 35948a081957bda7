#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

/// A block as a parameter of a call that does not outlive it: any callable, or none. It refers to
/// the caller's callable and costs no allocation.
///
/// A null pointer and an empty `std::function` are nil blocks; calling one is undefined, so an
/// operation tests its block first.
template <class Signature>
class NSBlockRef;

template <class T>
inline constexpr bool NSIsStandardFunction = false;
template <class Signature>
inline constexpr bool NSIsStandardFunction<std::function<Signature>> = true;

template <class Result, class... Arguments>
class NSBlockRef<Result(Arguments...)> {
 public:
  constexpr NSBlockRef(std::nullptr_t) noexcept {}

  template <class F>
  requires(
      !std::same_as<std::remove_cvref_t<F>, NSBlockRef> &&
      std::is_invocable_r_v<Result, F&, Arguments...>) constexpr NSBlockRef(F&& callable) noexcept {
    using Callable = std::remove_reference_t<F>;
    if constexpr (std::is_pointer_v<Callable> || NSIsStandardFunction<std::remove_cv_t<Callable>>) {
      if (!callable) return;
    }
    if constexpr (std::is_function_v<std::remove_pointer_t<Callable>>) {
      // A pointer to a function is kept itself; the caller's variable may be a temporary.
      _callable = reinterpret_cast<const void*>(+callable);
      _call = [](const void* pointer, Arguments... arguments) -> Result {
        using Function = std::remove_pointer_t<Callable>*;
        return reinterpret_cast<Function>(const_cast<void*>(pointer))(
            std::forward<Arguments>(arguments)...);
      };
    } else {
      _callable = std::addressof(callable);
      _call = [](const void* pointer, Arguments... arguments) -> Result {
        return (*static_cast<Callable*>(const_cast<void*>(pointer)))(
            std::forward<Arguments>(arguments)...);
      };
    }
  }

  explicit operator bool() const noexcept { return _call != nullptr; }
  Result operator()(Arguments... arguments) const {
    return _call(_callable, std::forward<Arguments>(arguments)...);
  }

 private:
  const void* _callable = nullptr;
  Result (*_call)(const void*, Arguments...) = nullptr;
};
