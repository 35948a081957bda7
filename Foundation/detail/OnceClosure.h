#pragma once

#include <exception>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// Makes the call. What it throws ends the program, with its name and reason on standard error:
/// with `noexcept` alone these may be missing.
template <class F>
void NSCallOrTerminate(F&& call) noexcept {
  try {
    call();
  } catch (...) {
    std::terminate();
  }
}

/// A move-only function that is called once: owns any callable without arguments, which need not be
/// copyable. A small one costs no allocation.
class NSOnceClosure {
 public:
  template <class F>
  requires(!std::is_same_v<std::decay_t<F>, NSOnceClosure>) explicit NSOnceClosure(F&& callable) {
    using Callable = std::decay_t<F>;
    if constexpr (fits<Callable>) {
      ::new (&_room) Callable(std::forward<F>(callable));
      _operations = &operationsOf<Callable>;
    } else {
      NSOnceClosure boxed(
          [box = std::make_unique<Callable>(std::forward<F>(callable))] { (*box)(); });
      take(boxed);
    }
  }
  NSOnceClosure(NSOnceClosure&& other) noexcept { take(other); }
  ~NSOnceClosure() { clear(); }

  /// Makes the call and destroys the callable. What it throws ends the program.
  void perform() noexcept {
    NSCallOrTerminate([this] { std::exchange(_operations, nullptr)->perform(&_room); });
  }

 private:
  struct Operations {
    void (*perform)(void* room);
    void (*move)(void* from, void* to) noexcept;
    void (*destroy)(void* room) noexcept;
  };
  // Three pointers, and one more for the operations: queues are long.
  using Room = std::aligned_storage_t<3 * sizeof(void*), alignof(void*)>;

  template <class Callable>
  static constexpr bool fits =
      sizeof(Callable) <= sizeof(Room) &&
      alignof(Callable) <= alignof(Room) && std::is_nothrow_move_constructible_v<Callable>;
  template <class Callable>
  [[nodiscard]] static Callable& at(void* room) noexcept {
    return *std::launder(static_cast<Callable*>(room));
  }
  template <class Callable>
  static constexpr Operations operationsOf = {
      [](void* room) {
        at<Callable>(room)();
        at<Callable>(room).~Callable();
      },
      [](void* from, void* to) noexcept {
        ::new (to) Callable(std::move(at<Callable>(from)));
        at<Callable>(from).~Callable();
      },
      [](void* room) noexcept { at<Callable>(room).~Callable(); }};

  void take(NSOnceClosure& other) noexcept {
    _operations = std::exchange(other._operations, nullptr);
    if (_operations != nullptr) _operations->move(&other._room, &_room);
  }
  void clear() noexcept {
    if (const auto* const operations = std::exchange(_operations, nullptr)) {
      operations->destroy(&_room);
    }
  }

  const Operations* _operations = nullptr;
  Room _room;
};
