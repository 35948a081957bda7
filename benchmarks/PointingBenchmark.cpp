#include "benchmarks/Support.h"

#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT_GUI
#include <QPainterPath>
#endif
#ifdef ZK_HAS_2GEOM
#include <2geom/bezier-curve.h>
#endif

// What a drawing does while the mouse moves: it finds the curve under the pointer, and resizes what
// is dragged.

namespace {

using Cubic = std::array<NSPoint, 4>;

constexpr std::size_t curveCount = 10'000;
constexpr double sheet = 4000;
constexpr double reach = 4;

double anyNumber(double most) {
  static std::mt19937 engine(1);
  return std::uniform_real_distribution<double>(0, most)(engine);
}

std::vector<Cubic> randomCurves() {
  std::vector<Cubic> curves(curveCount);
  for (Cubic& curve : curves) {
    const NSPoint place(anyNumber(sheet), anyNumber(sheet));
    for (NSPoint& point : curve) point = place + NSPoint(anyNumber(150), anyNumber(150));
  }
  return curves;
}

// Points at which nobody can doubt what is hit: an outline is only near to the true one.
std::vector<NSPoint> clearPoints(const std::vector<Cubic>& curves) {
  std::vector<NSPoint> points;
  while (points.size() < 16) {
    const NSPoint p(anyNumber(sheet), anyNumber(sheet));
    bool isClear = true;
    for (const Cubic& v : curves) {
      isClear &= std::abs(ZKProjectOnCurve(v.data(), p).distance - reach) > 0.5;
    }
    if (isClear) points.push_back(p);
  }
  return points;
}

// A row that finds the last of the curves that are hit, which is in front, for each of the points.
template <class Curve, class Point, class IsHit>
void addHitRow(const std::string& who, std::vector<Curve> curves, std::vector<Point> points,
               IsHit isHit, std::size_t expected) {
  const auto all = std::make_shared<const std::vector<Curve>>(std::move(curves));
  const auto work = [=] {
    std::size_t sum = 0;
    for (const Point& p : points) {
      std::size_t k = curveCount;
      while (k > 0 && !isHit((*all)[k - 1], p)) --k;
      sum += k;
    }
    return sum;
  };
  addRow("Curves/HitTest10000/" + who, work, [=](std::size_t sum) { return sum == expected; },
         {.calls = static_cast<benchmark::IterationCount>(points.size())});
}

bool isHit(const Cubic& v, NSPoint p) {
  const NSRect around = NSInsetRect(ZKRectAroundPoints(v), -reach, -reach);
  return NSPointInRect(p, around) && ZKProjectOnCurve(v.data(), p).distance <= reach;
}

void addHitTests() {
  const auto curves = randomCurves();
  const auto points = clearPoints(curves);
  std::size_t expected = 0;
  for (const NSPoint p : points) {
    std::size_t k = curveCount;
    while (k > 0 && ZKProjectOnCurve(curves[k - 1].data(), p).distance > reach) --k;
    expected += k;
  }
  addHitRow("ZK", curves, points, isHit, expected);
#ifdef ZK_HAS_QT_GUI
  std::vector<QPainterPath> paths;
  paths.reserve(curves.size());
  for (const Cubic& v : curves) {
    QPainterPath path({v[0].x, v[0].y});
    path.cubicTo({v[1].x, v[1].y}, {v[2].x, v[2].y}, {v[3].x, v[3].y});
    paths.push_back(path);
  }
  std::vector<QPointF> places;
  places.reserve(points.size());
  for (const NSPoint p : points) places.emplace_back(p.x, p.y);
  addHitRow(
      "Qt", paths, places,
      [](const QPainterPath& path, QPointF p) {
        const QRectF around = path.controlPointRect().adjusted(-reach, -reach, reach, reach);
        if (!around.contains(p)) return false;
        QPainterPathStroker stroker;
        stroker.setWidth(2 * reach);
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        return stroker.createStroke(path).contains(p);
      },
      expected);
#endif
#ifdef ZK_HAS_2GEOM
  const auto geom = [](NSPoint p) { return Geom::Point(p.x, p.y); };
  std::vector<Geom::CubicBezier> beziers;
  beziers.reserve(curves.size());
  for (const Cubic& v : curves)
    beziers.emplace_back(geom(v[0]), geom(v[1]), geom(v[2]), geom(v[3]));
  std::vector<Geom::Point> spots;
  spots.reserve(points.size());
  for (const NSPoint p : points) spots.push_back(geom(p));
  addHitRow(
      "2geom", beziers, spots,
      [](const Geom::CubicBezier& v, const Geom::Point& p) {
        auto around = v.boundsFast();
        around.expandBy(reach);
        return around.contains(p) && Geom::distance(v.pointAt(v.nearestTime(p)), p) <= reach;
      },
      expected);
#endif
}

// As applications write it: moves the edges of the handle, and turns over what has crossed.
ZKDraggedRect dragByHand(NSRect rect, NSUInteger handle, NSPoint p) {
  constexpr std::array<NSUInteger, 8> acrossX = {0, 3, 2, 1, 5, 4, 7, 6};
  constexpr std::array<NSUInteger, 8> acrossY = {2, 1, 0, 3, 7, 6, 5, 4};
  double left = NSMinX(rect), right = NSMaxX(rect), top = NSMinY(rect), bottom = NSMaxY(rect);
  if (handle == 1 || handle == 4 || handle == 7) left = p.x;
  if (handle == 3 || handle == 5 || handle == 6) right = p.x;
  if (handle == 0 || handle == 4 || handle == 5) top = p.y;
  if (handle == 2 || handle == 6 || handle == 7) bottom = p.y;
  if (left > right) {
    std::swap(left, right);
    handle = acrossX[handle];
  }
  if (top > bottom) {
    std::swap(top, bottom);
    handle = acrossY[handle];
  }
  return {{{left, top}, {right - left, bottom - top}}, handle};
}

void addDragging() {
  std::vector<NSPoint> pointers(1000);
  for (NSPoint& p : pointers) p = {anyNumber(200), anyNumber(200)};
  const auto add = [&](const std::string& who, auto drag) {
    const auto work = [=] {
      double sum = 0;
      NSUInteger handle = 0;
      for (const NSPoint p : pointers) {
        const ZKDraggedRect dragged = drag(NSRect({50, 60}, {70, 80}), handle, p);
        sum += dragged.rect.origin.x + dragged.rect.size.height + double(dragged.handle);
        handle = (handle + 1) % 8;
      }
      return sum;
    };
    const double expected = [&] {
      double sum = 0;
      for (std::size_t k = 0; k < pointers.size(); ++k) {
        const auto [rect, handle] = dragByHand({{50, 60}, {70, 80}}, k % 8, pointers[k]);
        sum += rect.origin.x + rect.size.height + double(handle);
      }
      return sum;
    }();
    addRow("Drag/Step/" + who, work,
           [=](double sum) { return std::abs(sum - expected) < 1e-6 * expected; }, {.calls = 1000});
  };
  add("ZK",
      [](NSRect rect, NSUInteger handle, NSPoint p) { return ZKDragHandle(rect, handle, p); });
  add("byHand", dragByHand);
}

const bool registered = [] {
  addHitTests();
  addDragging();
  return true;
}();

}  // namespace
