#include "examples/gallery/Pictures.h"

#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include <ZKFoundation/ZKFoundation.h>

namespace {

NSPoint onCircle(NSPoint center, double radius, double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  return ZKSumPoint(center, {radius * std::cos(angle), radius * std::sin(angle)});
}

Drawing snappedAngles() {
  Drawing drawing({300, 300});
  const NSPoint center = {150, 150};
  for (int degrees = 0; degrees < 360; degrees += 5) {
    const double snapped = ZKSnapAngleToStandardAngles(degrees);
    const bool isOdd = std::fmod(snapped, 90) != 0;
    const std::string_view color = isOdd ? otherColor : resultColor;
    drawing.line(onCircle(center, 80, degrees), onCircle(center, 110, snapped), {.stroke = color});
    drawing.dot(onCircle(center, 80, degrees), color, 2);
  }
  for (int degrees = 0; degrees < 360; degrees += 45) {
    drawing.line(center, onCircle(center, 60, degrees), {.stroke = faintColor});
    drawing.text(onCircle(center, 130, degrees), std::to_string(degrees) + "°");
  }
  return drawing;
}

Drawing circle() {
  Drawing drawing({300, 260});
  const std::array<NSPoint, 3> points = {{{80, 60}, {230, 90}, {120, 220}}};
  const NSPoint center = ZKCenterOfCircleFromThreePoints(points[0], points[1], points[2]);
  drawing.circle(center, ZKLineLength(center, points[0]), {.stroke = resultColor, .width = 1.5});
  for (const NSPoint point : points) {
    drawing.line(center, point, {.stroke = faintColor});
    drawing.dot(point, otherColor, 4);
  }
  drawing.dot(center, resultColor, 4);
  return drawing;
}

Drawing intersections() {
  Drawing drawing({420, 260});
  const NSPoint c = {30, 60};
  const NSPoint d = {390, 190};
  drawing.line(c, d, {.stroke = givenColor, .dash = "5 3"});
  const std::array<std::array<NSPoint, 2>, 6> segments = {{{{{60, 20}, {90, 140}}},
                                                           {{{150, 200}, {140, 130}}},
                                                           {{{170, 40}, {220, 200}}},
                                                           {{{230, 40}, {260, 110}}},
                                                           {{{260, 180}, {370, 219.72}}},
                                                           {{{320, 60}, {380, 240}}}}};
  for (const auto& [a, b] : segments) {
    const NSPoint found = ZKPointIntersection2(a, b, c, d);
    const bool isFound = !(found == ZKNotFoundPoint);
    drawing.line(a, b, {.stroke = isFound ? resultColor : otherColor, .width = 1.5});
    if (isFound) drawing.dot(found, resultColor, 4);
  }
  return drawing;
}

Drawing nearestOnLine() {
  Drawing drawing({300, 220});
  const NSPoint a = {80, 70};
  const NSPoint b = {220, 150};
  for (const NSPoint p : Drawing::grid({{20, 20}, {260, 182}}, 26)) {
    drawing.line(p, ZKNearestPointOnLine(p, a, b), {.stroke = resultColor, .width = 0.5});
    drawing.dot(p, resultColor, 1.5);
  }
  drawing.line(a, b, {.stroke = otherColor, .width = 2});
  return drawing;
}

}  // namespace

std::vector<Picture> picturesOfLines() {
  return {
      {"angles",
       "Directions at every five degrees (dots) and the standard angle that each snaps to.",
       snappedAngles().svg()},
      {"circle", "The circle through three points.", circle().svg()},
      {"intersections",
       "Segments that cross a line (blue, with the point) and those that do not (orange).",
       intersections().svg()},
      {"segment", "The nearest points of a segment from a grid of points.", nearestOnLine().svg()},
  };
}
