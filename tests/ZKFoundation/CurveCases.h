#pragma once

#include "tests/Support.h"
#include "tests/ZKFoundation/BezierModel.h"

#include <array>
#include <cmath>

#include <ZKFoundation/ZKFoundation.h>

using Cubic = std::array<NSPoint, 4>;

/// Makes a cubic of a size of 20, among them dots, straight ones, folds, cusps, loops and those
/// with handles of no length.
inline Cubic anyCubic() {
  const auto coordinate = [] { return static_cast<double>(*rc::gen::inRange(-10, 11)); };
  Cubic v;
  for (NSPoint& p : v) p = {coordinate(), coordinate()};
  switch (*rc::gen::inRange(0, 9)) {
    case 0:
      for (NSPoint& p : v) p.y = 0.5 * p.x;
      break;
    case 1:
      v = {v[0], {v[3].x, v[2].y}, {v[0].x, v[2].y}, {v[3].x, v[0].y}};
      break;
    case 2:
      v[*rc::gen::inRange<std::size_t>(0, 4)] = v[*rc::gen::inRange<std::size_t>(0, 4)];
      break;
    case 3:
      v = {v[0], v[0], v[3], v[3]};
      break;
    default:
      break;
  }
  return v;
}

inline Cubic scaled(Cubic v, double factor) {
  ZKTransformPoints(v.data(), v.size(), ZKMakeScaling(factor, factor), v.data());
  return v;
}

inline NSPoint at(const Cubic& v, double t) {
  return BezierModel::bezier(v.data(), 3, t, nullptr, nullptr);
}

inline double distance(NSPoint a, NSPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }
