#include "benchmarks/Support.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QList>
#include <QRectF>
#endif
#ifdef ZK_HAS_2GEOM
#include <2geom/bezier-curve.h>
#endif

namespace {

using Cubic = std::array<NSPoint, 4>;

struct Scene {
  std::vector<Cubic> curves;
  std::vector<NSPoint> points;

  [[nodiscard]] std::size_t pairCount() const { return curves.size() * points.size(); }
  // Every curve with every point.
  template <class Visit>
  void forEachPair(Visit visit) const {
    for (std::size_t curve = 0; curve < curves.size(); ++curve) {
      for (const NSPoint point : points) visit(curve, point);
    }
  }
};

Scene randomScene() {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> number(0, 1000);
  Scene scene;
  scene.curves.resize(1000);
  scene.points.resize(100);
  for (Cubic& curve : scene.curves) {
    for (NSPoint& point : curve) point = {number(engine), number(engine)};
  }
  for (NSPoint& point : scene.points) point = {number(engine), number(engine)};
  return scene;
}

// A spiral, as a pen draws it, and points along it.
Scene strokeScene() {
  const auto at = [](double turn) {
    return NSPoint{(100 + 4 * turn) * std::cos(turn), (100 + 4 * turn) * std::sin(turn)};
  };
  Scene scene;
  for (int k = 0; k < 1000; ++k) {
    const double start = k * 0.2;
    const double end = start + 0.2;
    const double handle = 4.0 / 3 * std::tan(0.05);
    const NSPoint a = at(start);
    const NSPoint d = at(end);
    scene.curves.push_back(
        {a, {a.x - a.y * handle, a.y + a.x * handle}, {d.x + d.y * handle, d.y - d.x * handle}, d});
    if (k % 10 == 0) scene.points.emplace_back(a.x + 3, a.y - 2);
  }
  return scene;
}

NSPoint pointAt(const Cubic& v, double t) {
  const double s = 1 - t;
  const double a = s * s * s;
  const double b = 3 * s * s * t;
  const double c = 3 * s * t * t;
  const double d = t * t * t;
  return {a * v[0].x + b * v[1].x + c * v[2].x + d * v[3].x,
          a * v[0].y + b * v[1].y + c * v[2].y + d * v[3].y};
}

double squaredDistance(NSPoint a, NSPoint b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

// As applications write it: the best of some samples, brought nearer by Newton's method.
double nearestByNewton(const Cubic& v, NSPoint p) {
  constexpr int samples = 16;
  double t = 0;
  double least = squaredDistance(v[0], p);
  for (int k = 1; k <= samples; ++k) {
    const double other = squaredDistance(pointAt(v, k / double{samples}), p);
    if (other < least) {
      least = other;
      t = k / double{samples};
    }
  }
  const double low = std::max(t - 1.0 / samples, 0.0);
  const double high = std::min(t + 1.0 / samples, 1.0);
  for (int step = 0; step < 4; ++step) {
    const double s = 1 - t;
    const auto along = [&](CGFloat NSPoint::*axis) {
      const std::array<double, 3> d = {v[1].*axis - v[0].*axis, v[2].*axis - v[1].*axis,
                                       v[3].*axis - v[2].*axis};
      return std::pair(3 * (s * s * d[0] + 2 * s * t * d[1] + t * t * d[2]),
                       6 * (s * (d[1] - d[0]) + t * (d[2] - d[1])));
    };
    const auto [dx, ddx] = along(&NSPoint::x);
    const auto [dy, ddy] = along(&NSPoint::y);
    const NSPoint q = pointAt(v, t);
    const double slope = (q.x - p.x) * dx + (q.y - p.y) * dy;
    const double bend = dx * dx + dy * dy + (q.x - p.x) * ddx + (q.y - p.y) * ddy;
    if (bend == 0) break;
    t = std::clamp(t - slope / bend, low, high);
  }
  return t;
}

// The least distance there is, to the precision of doubles: dense samples, with each dip between
// them narrowed down.
double leastDistance(const Cubic& v, NSPoint p) {
  constexpr int samples = 1000;
  const auto distance = [&](double t) { return squaredDistance(pointAt(v, t), p); };
  double least = std::min(distance(0), distance(1));
  for (int k = 1; k < samples; ++k) {
    double low = (k - 1) / double{samples};
    double high = (k + 1) / double{samples};
    const double middle = distance(k / double{samples});
    if (middle > distance(low) || middle > distance(high)) continue;
    for (int turn = 0; turn < 80; ++turn) {
      const double third = (high - low) / 3;
      if (distance(low + third) < distance(high - third)) {
        high -= third;
      } else {
        low += third;
      }
    }
    least = std::min(least, distance(0.5 * (low + high)));
  }
  return std::sqrt(least);
}

// A row that looks for the nearest point of every pair, with its largest error beside it.
template <class Nearest>
void addNearestRow(const std::string& name, const std::shared_ptr<const Scene>& scene,
                   Nearest nearest) {
  double error = 0;
  std::size_t count = 0;
  scene->forEachPair([&](std::size_t curve, NSPoint point) {
    if (++count % 37 != 0) return;
    const Cubic& v = scene->curves[curve];
    const double found = std::sqrt(squaredDistance(pointAt(v, nearest(curve, point)), point));
    error = std::max(error, found - leastDistance(v, point));
  });
  const auto work = [=] {
    double sum = 0;
    scene->forEachPair([&](std::size_t curve, NSPoint point) { sum += nearest(curve, point); });
    return sum;
  };
  const RowDetails details = {static_cast<benchmark::IterationCount>(scene->pairCount()), error};
  addRow(
      name, work, [](double sum) { return sum > 0; }, details);
}

void addNearest(const std::string& kind, const Scene& made) {
  const auto scene = std::make_shared<const Scene>(made);
  const std::string row = "NearestPoint/" + kind + '/';
  for (const auto& [who, find] :
       {std::pair("ZK", &ZKNearestPointOnCurve), {"ZK_refined", &ZKNearestPointOnCurveRefined}}) {
    addNearestRow(row + who, scene, [=, find = find](std::size_t curve, NSPoint point) {
      double t = 0;
      find(scene->curves[curve].data(), &t, point);
      return t;
    });
  }
  addNearestRow(row + "Newton16", scene, [=](std::size_t curve, NSPoint point) {
    return nearestByNewton(scene->curves[curve], point);
  });
#ifdef ZK_HAS_2GEOM
  std::vector<Geom::CubicBezier> curves;
  for (const Cubic& v : made.curves) {
    const auto point = [](NSPoint p) { return Geom::Point(p.x, p.y); };
    curves.emplace_back(point(v[0]), point(v[1]), point(v[2]), point(v[3]));
  }
  addNearestRow(row + "2geom", scene, [=](std::size_t curve, NSPoint point) {
    return curves[curve].nearestTime({point.x, point.y});
  });
#endif
}

void addDivision() {
  const Cubic v = {{{0, 0}, {100, 300}, {500, 200}, {700, 0}}};
  // Not const, so that no compiler knows it.
  double t = 0.3;
  const auto isRight = [=](NSPoint p) {
    const NSPoint expected = pointAt(v, t);
    return std::abs(p.x - expected.x) < 1e-9 && std::abs(p.y - expected.y) < 1e-9;
  };
  const auto lerp = [t](NSPoint a, NSPoint b) {
    return NSPoint{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
  };
  struct Halves {
    Cubic left, right;
  };
  addRow(
      "Bezier/point/ZK", [=] { return ZKBezier(v.data(), 3, t, nullptr, nullptr); }, isRight);
  addRow(
      "Bezier/point/loop", [=] { return pointAt(v, t); }, isRight);
  const auto isDivided = [=](const Halves& halves) {
    return isRight(halves.left[3]) && isRight(halves.right[0]);
  };
  addRow(
      "Bezier/halves/ZK",
      [=] {
        Halves halves;
        ZKBezier(v.data(), 3, t, halves.left.data(), halves.right.data());
        return halves;
      },
      isDivided);
  addRow(
      "Bezier/halves/loop",
      [=] {
        const NSPoint a = lerp(v[0], v[1]), b = lerp(v[1], v[2]), c = lerp(v[2], v[3]);
        const NSPoint d = lerp(a, b), e = lerp(b, c), f = lerp(d, e);
        return Halves{{v[0], a, d, f}, {f, e, c, v[3]}};
      },
      isDivided);
#ifdef ZK_HAS_2GEOM
  const Geom::CubicBezier curve({0, 0}, {100, 300}, {500, 200}, {700, 0});
  addRow(
      "Bezier/point/2geom", [=] { return curve.pointAt(t); },
      [=](Geom::Point p) {
        return isRight({p.x(), p.y()});
      });
  addRow(
      "Bezier/halves/2geom", [=] { return curve.subdivide(t); },
      [=](const auto& halves) {
        const Geom::Point p = halves.first.finalPoint();
        return isRight({p.x(), p.y()});
      });
#endif
  const double slope = ZKBezierSlope(v.data(), t);
  const auto isSlope = [=](double found) { return std::abs(found - slope) < 1e-12; };
  addRow(
      "BezierSlope/cubic/ZK", [=] { return ZKBezierSlope(v.data(), t); }, isSlope);
  addRow(
      "BezierSlope/cubic/loop",
      [=] {
        const double s = 1 - t;
        const auto along = [&](CGFloat NSPoint::*axis) {
          return s * s * (v[1].*axis - v[0].*axis) + 2 * s * t * (v[2].*axis - v[1].*axis) +
                 t * t * (v[3].*axis - v[2].*axis);
        };
        return std::atan2(along(&NSPoint::y), along(&NSPoint::x));
      },
      isSlope);
}

void addRectangles() {
  addRow(
      "MovePointTo/all_handles/ZK",
      [] {
        NSUInteger sum = 0;
        for (NSUInteger handle = 0; handle < 9; ++handle) {
          NSRect rect = {{10, 10}, {100, 50}};
          sum += ZKMovePointTo(&rect, handle, {30, 200});
        }
        return sum;
      },
      [](NSUInteger sum) { return sum > 0; }, {.calls = 9});
  const NSRect a = {{10, 10}, {100, 50}};
  const NSRect b = {{-5, 30}, {20, 200}};
  const NSRect all = ZKUnionRect(a, b);
  addRow(
      "UnionRect/two/ZK",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        return ZKUnionRect(rect, b);
      },
      [=](NSRect rect) { return rect == all; });
  addRow(
      "UnionRect/two/loop",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        const double x = std::min(rect.origin.x, b.origin.x);
        const double y = std::min(rect.origin.y, b.origin.y);
        const double right = std::max(rect.origin.x + rect.size.width, b.origin.x + b.size.width);
        const double top = std::max(rect.origin.y + rect.size.height, b.origin.y + b.size.height);
        return NSMakeRect(x, y, right - x, top - y);
      },
      [=](NSRect rect) { return rect == all; });
  addRow(
      "SimilarRects/two/ZK",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        return ZKAreSimilarRects(rect, a, 0.5);
      },
      [](bool isSimilar) { return isSimilar; });
  addRow(
      "SimilarRects/two/loop",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        return std::abs(rect.origin.x - a.origin.x) <= 0.5 &&
               std::abs(rect.origin.y - a.origin.y) <= 0.5 &&
               std::abs(rect.size.width - a.size.width) <= 0.5 &&
               std::abs(rect.size.height - a.size.height) <= 0.5;
      },
      [](bool isSimilar) { return isSimilar; });
  addRow(
      "CenterInRect/two/ZK",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        return ZKIntersectsRect(true, rect, a);
      },
      [](bool isInside) { return isInside; });
  addRow(
      "CenterInRect/two/loop",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        const double x = rect.origin.x + rect.size.width / 2;
        const double y = rect.origin.y + rect.size.height / 2;
        return x >= a.origin.x && x < a.origin.x + a.size.width && y >= a.origin.y &&
               y < a.origin.y + a.size.height;
      },
      [](bool isInside) { return isInside; });
  addRow(
      "ScaleRect/fit/ZK",
      [=] {
        NSRect rect = a;
        benchmark::DoNotOptimize(rect);
        return ZKScaleRectToFitInRect(ZKScaleProportionallyUpOrDown, ZKAlignCenter, rect, b);
      },
      [](NSRect rect) { return rect == NSMakeRect(-5, 125, 20, 10); });

  std::vector<NSRect> rects;
  std::vector<NSRef<NSObject>> values;
  for (int k = 0; k < 10'000; ++k) {
    rects.push_back(NSMakeRect(k * 3.0, k % 7 * 10.0, 5, 5));
    values.emplace_back(NSMake<NSValue>(rects.back()));
  }
  // In the last one alone.
  const NSPoint p = {rects.back().origin.x + 4, rects.back().origin.y + 4};
  const auto isFound = [](bool found) { return found; };
  addRow(
      "PointInRects/10000/ZK",
      [=, array = NSMake<NSArray>(values)] { return ZKPointInRects(array, p); }, isFound);
  addRow(
      "PointInRects/10000/vector",
      [=] {
        return std::ranges::any_of(rects,
                                   [=](const NSRect& rect) { return NSPointInRect(p, rect); });
      },
      isFound);
#ifdef ZK_HAS_QT
  const auto box = [](NSRect r) {
    return QRectF(r.origin.x, r.origin.y, r.size.width, r.size.height);
  };
  const QRectF qa = box(a);
  const QRectF qb = box(b);
  addRow(
      "UnionRect/two/Qt",
      [=] {
        QRectF rect = qa;
        benchmark::DoNotOptimize(rect);
        return rect.united(qb);
      },
      [=](const QRectF& rect) { return rect == box(all); });
  addRow(
      "ScaleRect/fit/Qt",
      [=] {
        QRectF rect = qa;
        benchmark::DoNotOptimize(rect);
        QRectF result({0, 0}, rect.size().scaled(qb.size(), Qt::KeepAspectRatio));
        result.moveCenter(qb.center());
        return result;
      },
      [](const QRectF& rect) { return rect == QRectF(-5, 125, 20, 10); });
  QList<QRectF> list;
  for (const NSRect& rect : rects) list.append(box(rect));
  addRow(
      "PointInRects/10000/Qt",
      [=] {
        return std::ranges::any_of(list,
                                   [=](const QRectF& rect) { return rect.contains(p.x, p.y); });
      },
      isFound);
#endif
}

const bool registered = [] {
  addNearest("random", randomScene());
  addNearest("stroke", strokeScene());
  addDivision();
  addRectangles();
  return true;
}();

}  // namespace
