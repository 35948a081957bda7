#pragma once

#include <memory>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <Foundation/NSExport.h>

/// Makes the call. What it throws ends the program: see `NSCallOrTerminate`.
extern "C" NS_EXPORT void NSCallWithoutUnwinding(void (*call)(void*), void* context) noexcept;

/// Makes the call. What it throws ends the program where it was thrown, before anything is unwound,
/// so that debuggers and cores show that place; the handler of the standard library prints its name
/// and reason, and the program's own finds it as the current exception.
template <class F>
void NSCallOrTerminate(F&& call) noexcept {
  using Call = std::remove_reference_t<F>;
  NSCallWithoutUnwinding([](void* context) { (*static_cast<Call*>(context))(); }, &call);
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
      ::new (&_room) Box<Callable>{std::make_unique<Callable>(std::forward<F>(callable))};
      _operations = &operationsOf<Box<Callable>, Callable>;
    }
  }
  NSOnceClosure(NSOnceClosure&& other) noexcept { take(other); }
  ~NSOnceClosure() { clear(); }

  /// Makes the call and destroys the callable. What it throws ends the program.
  void perform() noexcept {
    NSCallWithoutUnwinding(std::exchange(_operations, nullptr)->perform, &_room);
  }
  /// Gives the callable's class.
  [[nodiscard]] const std::type_info& type() const noexcept { return *_operations->type; }

 private:
  struct Operations {
    void (*perform)(void* room);
    void (*move)(void* from, void* to) noexcept;
    void (*destroy)(void* room) noexcept;
    const std::type_info* type;
  };
  template <class Callable>
  struct Box {
    std::unique_ptr<Callable> callable;
    void operator()() { (*callable)(); }
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
  template <class Callable, class Shown = Callable>
  static constexpr Operations operationsOf = {
      [](void* room) {
        at<Callable>(room)();
        at<Callable>(room).~Callable();
      },
      [](void* from, void* to) noexcept {
        ::new (to) Callable(std::move(at<Callable>(from)));
        at<Callable>(from).~Callable();
      },
      [](void* room) noexcept { at<Callable>(room).~Callable(); }, &typeid(Shown)};

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
