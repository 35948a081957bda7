#pragma once

#include <Foundation/NSGeometry.h>

/// Holds two coordinates in one vector register, so that one instruction moves both.
class ZKVector {
 public:
  ZKVector() = default;
  ZKVector(double x, double y) : _lanes{x, y} {}
  ZKVector(NSPoint point) : ZKVector(point.x, point.y) {}

  [[nodiscard]] double x() const { return _lanes[0]; }
  [[nodiscard]] double y() const { return _lanes[1]; }
  [[nodiscard]] NSPoint point() const { return {x(), y()}; }

  friend ZKVector operator+(ZKVector a, ZKVector b) { return ZKVector(a._lanes + b._lanes); }
  friend ZKVector operator-(ZKVector a, ZKVector b) { return ZKVector(a._lanes - b._lanes); }
  friend ZKVector operator*(ZKVector a, double factor) { return ZKVector(a._lanes * factor); }
  /// Gives the smaller of each coordinate.
  [[nodiscard]] friend ZKVector min(ZKVector a, ZKVector b) {
    return ZKVector(a._lanes < b._lanes ? a._lanes : b._lanes);
  }
  /// Gives the larger of each coordinate.
  [[nodiscard]] friend ZKVector max(ZKVector a, ZKVector b) {
    return ZKVector(a._lanes > b._lanes ? a._lanes : b._lanes);
  }
  [[nodiscard]] friend double dot(ZKVector a, ZKVector b) {
    const Lanes products = a._lanes * b._lanes;
    return products[0] + products[1];
  }
  /// Gives the third coordinate of their cross product, above 0 when b is to the left of a.
  [[nodiscard]] friend double cross(ZKVector a, ZKVector b) {
    return a.x() * b.y() - a.y() * b.x();
  }

  using Bits = long long __attribute__((vector_size(16)));
  /// Gives all ones where y is below 0, all zeros elsewhere.
  [[nodiscard]] Bits isBelow() const {
    const Bits below = _lanes < 0;
    return __builtin_shufflevector(below, below, 1, 1);
  }
  /// Gives a for ones, b for zeros, without a branch.
  [[nodiscard]] static ZKVector select(Bits bits, ZKVector a, ZKVector b) {
    return ZKVector(reinterpret_cast<Lanes>((bits & reinterpret_cast<Bits>(a._lanes)) |
                                            (~bits & reinterpret_cast<Bits>(b._lanes))));
  }

 private:
  using Lanes = double __attribute__((vector_size(16)));
  explicit ZKVector(Lanes lanes) : _lanes(lanes) {}

  Lanes _lanes;
};

/// Gives (1 - t) a + t b.
[[nodiscard]] inline ZKVector ZKLerp(ZKVector a, ZKVector b, double t) {
  return a * (1 - t) + b * t;
}
