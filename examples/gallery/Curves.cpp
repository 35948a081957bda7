#include "examples/gallery/Pictures.h"

#include <array>
#include <cmath>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

namespace {

using Cubic = std::array<NSPoint, 4>;

Cubic moved(const Cubic& curve, NSPoint by) {
  Cubic result;
  for (std::size_t k = 0; k < curve.size(); ++k) result[k] = ZKSumPoint(curve[k], by);
  return result;
}

constexpr Cubic arch = {{{30, 40}, {60, 190}, {200, 210}, {230, 70}}};
constexpr Cubic loop = {{{50, 50}, {300, 200}, {-40, 200}, {210, 50}}};
constexpr Cubic cusp = {{{50, 50}, {210, 200}, {50, 200}, {210, 50}}};

Drawing subdivision() {
  Drawing drawing({270, 240});
  Cubic left;
  Cubic right;
  const NSPoint middle = ZKBezier(arch.data(), 3, 0.4, left.data(), right.data());
  drawing.polygon(arch, {.stroke = givenColor, .dash = "3 2"});
  drawing.polygon(left, {.stroke = resultColor});
  drawing.polygon(right, {.stroke = otherColor});
  drawing.cubic(left, {.stroke = resultColor, .width = 3});
  drawing.cubic(right, {.stroke = otherColor, .width = 3});
  for (const NSPoint point : left) drawing.dot(point, resultColor);
  for (const NSPoint point : right) drawing.dot(point, otherColor);
  drawing.dot(middle, "black", 4);
  return drawing;
}

Drawing tangents() {
  Drawing drawing({540, 240});
  for (const Cubic& curve : {arch, moved(loop, {270, 0})}) {
    drawing.cubic(curve, {.stroke = givenColor, .width = 2});
    for (int k = 0; k <= 12; ++k) {
      const double t = k / 12.0;
      const NSPoint point = ZKBezier(curve.data(), 3, t, nullptr, nullptr);
      const double direction = ZKBezierSlope(curve.data(), t);
      drawing.arrow(point, ZKSumPoint(point, {28 * std::cos(direction), 28 * std::sin(direction)}),
                    {.stroke = resultColor});
    }
  }
  return drawing;
}

Drawing nearestPoints() {
  Drawing drawing({780, 240});
  double x = 0;
  for (const Cubic& curve : {arch, loop, cusp}) {
    const Cubic here = moved(curve, {x, 0});
    for (const NSPoint p : Drawing::grid({{x + 10, 10}, {244, 224}}, 16)) {
      drawing.line(p, ZKNearestPointOnCurve(here.data(), nullptr, p),
                   {.stroke = resultColor, .width = 0.5});
      drawing.dot(p, resultColor, 1);
    }
    drawing.cubic(here, {.stroke = otherColor, .width = 2});
    x += 260;
  }
  return drawing;
}

// Bounds and few chords; crossings with a line; crossings with another curve.
Drawing crossings() {
  Drawing drawing({780, 240});
  drawing.rect(ZKCurveBounds(arch.data()), {.stroke = givenColor, .dash = "3 2"});
  drawing.cubic(arch, {.stroke = faintColor, .width = 4});
  const std::vector<NSPoint> chords = ZKFlattenCurve(arch.data(), 2);
  drawing.polygon(chords, {.stroke = resultColor});
  for (const NSPoint point : chords) drawing.dot(point, resultColor);

  const Cubic byLine = moved(loop, {260, 0});
  const NSPoint a = {290, 90};
  const NSPoint b = {500, 190};
  drawing.cubic(byLine, {.stroke = givenColor, .width = 2});
  drawing.line(a, b, {.stroke = otherColor, .width = 2});
  for (const ZKCrossing& crossing : ZKCrossingsWithSegment(byLine.data(), a, b)) {
    drawing.dot(crossing.point, resultColor, 4);
  }

  const Cubic first = {{{550, 40}, {617, 520}, {683, -280}, {750, 200}}};
  const Cubic second = {{{550, 40}, {1150, 93}, {150, 147}, {750, 200}}};
  drawing.cubic(first, {.stroke = givenColor, .width = 2});
  drawing.cubic(second, {.stroke = otherColor, .width = 2});
  for (const ZKCrossing& crossing : ZKCrossingsOfCurves(first.data(), second.data())) {
    drawing.dot(crossing.point, resultColor, 4);
  }
  return drawing;
}

// The same drawing at several scales, seen from so far that it looks the same each time.
Drawing scales() {
  constexpr double side = 260;
  Drawing drawing({2 * side, 2 * side + 45});
  drawing.text({side, 2 * side + 30}, "blue: ZKNearestPointOnCurveRefined, exact at every scale",
               resultColor);
  drawing.text(
      {side, 2 * side + 12},
      "orange: ZKNearestPointOnCurve, which stops too early in small and in large drawings",
      otherColor);
  struct Scale {
    double factor;
    NSPoint corner;
    std::string_view name;
  };
  for (const Scale& scale :
       {Scale{1e-9, {0, side}, "a billionth of it"}, Scale{1, {side, side}, "as drawn"},
        Scale{1e4, {0, 0}, "10,000 times as large"},
        Scale{1e6, {side, 0}, "1,000,000 times as large"}}) {
    Cubic scaled;
    for (std::size_t k = 0; k < arch.size(); ++k) scaled[k] = arch[k] * scale.factor;
    const auto nearest = [&](auto find, NSPoint p) {
      return scale.corner + find(scaled.data(), nullptr, p * scale.factor) / scale.factor;
    };
    drawing.cubic(moved(arch, scale.corner), {.stroke = givenColor, .width = 2});
    for (const NSPoint p : Drawing::grid({{60, 225}, {160, 0}}, 20)) {
      const NSPoint here = scale.corner + p;
      drawing.line(here, nearest(&ZKNearestPointOnCurve, p), {.stroke = otherColor, .width = 1.5});
      drawing.line(here, nearest(&ZKNearestPointOnCurveRefined, p), {.stroke = resultColor});
      drawing.dot(here, "black", 1.5);
    }
    drawing.text(scale.corner + NSPoint(130, 15), scale.name);
  }
  return drawing;
}

}  // namespace

std::vector<Picture> picturesOfCurves() {
  return {
      {"subdivision", "A cubic divided at t = 0.4, with the control points of its parts.",
       subdivision().svg()},
      {"tangents", "Tangent directions at thirteen parameters.", tangents().svg()},
      {"nearest", "The nearest points of an arch, a loop and a cusp from a grid of points.",
       nearestPoints().svg()},
      {"crossings",
       "The bounds of a cubic and the chords that are nowhere farther than 2 from it, and where "
       "cubics cross a line and each other.",
       crossings().svg()},
      {"scales", "The nearest points of one curve at four scales, by both functions.",
       scales().svg()},
  };
}
