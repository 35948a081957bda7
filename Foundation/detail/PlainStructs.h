#pragma once

#include <concepts>
#include <type_traits>

/// Becomes a floating-point number of any kind, or anything at all, where it is asked whether a
/// struct can be made of it.
struct NSAnyNumber {
  template <std::floating_point T>
  constexpr operator T() const;
};
struct NSAnything {
  template <class T>
  constexpr operator T() const;
};

/// A struct of two floating-point members and nothing else, such as the point of a graphics
/// library.
template <class T>
concept NSPairStruct = std::is_aggregate_v<T> && !std::is_array_v<T> && requires(NSAnyNumber n) {
  T{n, n};
}
&&!requires(NSAnyNumber n, NSAnything a) { T{n, n, a}; }
&&!requires(NSAnyNumber n) { T{{n, n}}; };

/// A struct of four floating-point members: x, y, width and height.
template <class T>
concept NSFourStruct = std::is_aggregate_v<T> && !std::is_array_v<T> && requires(NSAnyNumber n) {
  T{n, n, n, n};
}
&&!requires(NSAnyNumber n, NSAnything a) { T{n, n, n, n, a}; }
&&!requires(NSAnyNumber n) { T{{n, n}}; };

/// A struct of two such pairs: origin and size.
template <class T>
concept NSPairsStruct = std::is_aggregate_v<T> && !std::is_array_v<T> && requires(NSAnyNumber n) {
  T{{n, n}, {n, n}};
}
&&!requires(NSAnyNumber n, NSAnything a) { T{{n, n}, {n, n}, a}; }
&&!requires(NSAnyNumber n) { T{{n, n, n}}; };
