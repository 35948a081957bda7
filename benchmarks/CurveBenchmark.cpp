#include "benchmarks/Support.h"

#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT_GUI
#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>
#endif
#ifdef ZK_HAS_2GEOM
#include <2geom/bezier-curve.h>
#endif

namespace {

using Cubic = std::array<NSPoint, 4>;

constexpr std::size_t curveCount = 1000;

std::vector<Cubic> randomCurves() {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> number(0, 1000);
  std::vector<Cubic> curves(curveCount);
  for (Cubic& curve : curves) {
    for (NSPoint& point : curve) point = {number(engine), number(engine)};
  }
  return curves;
}

// A row that adds up what is measured of each curve, and the next, near an expected sum.
template <class Curves, class Measure>
void addSumRow(const std::string& name, const std::shared_ptr<const Curves>& curves,
               Measure measure, double expected, double tolerance, double error = -1) {
  const auto work = [=] {
    double sum = 0;
    for (std::size_t k = 0; k < curveCount; ++k) {
      sum += measure((*curves)[k], (*curves)[(k + 1) % curveCount]);
    }
    return sum;
  };
  addRow(name, work, [=](double sum) { return std::abs(sum - expected) <= tolerance; },
         {.calls = curveCount, .error = error});
}

// A row that measures lengths, with the largest error beside it.
template <class Curves, class Measure>
void addLengthRow(const std::string& name, const std::shared_ptr<const Curves>& curves,
                  const std::vector<double>& lengths, Measure measure) {
  double sum = 0;
  double error = 0;
  for (std::size_t k = 0; k < curveCount; ++k) {
    sum += lengths[k];
    error = std::max(error, std::abs(measure((*curves)[k]) - lengths[k]));
  }
  addSumRow(
      name, curves, [=](const auto& v, const auto&) { return measure(v); }, sum, 0.01 * sum, error);
}

template <class Measure>
double sumOf(const std::vector<Cubic>& curves, Measure measure) {
  double sum = 0;
  for (std::size_t k = 0; k < curveCount; ++k) {
    sum += measure(curves[k], curves[(k + 1) % curveCount]);
  }
  return sum;
}

// As applications write it: halves until the control points are near enough to the chord.
void addByHalving(const Cubic& v, double tolerance, int depth, std::vector<NSPoint>& points) {
  const NSPoint chord = ZKDiffPoint(v[3], v[0]);
  const auto height = [&](NSPoint p) {
    const NSPoint d = ZKDiffPoint(p, v[0]);
    return std::abs(chord.x * d.y - chord.y * d.x);
  };
  const double limit = tolerance / 0.75 * std::sqrt(ZKSquaredLength(chord));
  if (depth == 16 || (height(v[1]) <= limit && height(v[2]) <= limit && limit > 0)) {
    points.push_back(v[3]);
    return;
  }
  Cubic left, right;
  ZKBezier(v.data(), 3, 0.5, left.data(), right.data());
  addByHalving(left, tolerance, depth + 1, points);
  addByHalving(right, tolerance, depth + 1, points);
}

std::vector<NSPoint> flattenedByHalving(const Cubic& v, double tolerance) {
  std::vector<NSPoint> points = {v[0]};
  addByHalving(v, tolerance, 0, points);
  return points;
}

// By Wang's formula: even steps, as many as the curve's sharpest bend needs.
std::vector<NSPoint> flattenedEvenly(const Cubic& v, double tolerance) {
  const auto bend = [](NSPoint a, NSPoint b, NSPoint c) {
    return std::hypot(a.x - 2 * b.x + c.x, a.y - 2 * b.y + c.y);
  };
  const double most = std::max(bend(v[0], v[1], v[2]), bend(v[1], v[2], v[3]));
  const auto count = static_cast<int>(std::ceil(std::sqrt(0.75 * most / tolerance)));
  std::vector<NSPoint> points = {v[0]};
  points.reserve(static_cast<std::size_t>(count) + 1);
  for (int k = 1; k <= count; ++k) {
    points.push_back(ZKBezier(v.data(), 3, k / double(count), nullptr, nullptr));
  }
  return points;
}

void addFlattening(const std::shared_ptr<const std::vector<Cubic>>& curves, const std::string& kind,
                   double tolerance) {
  const std::string row = "FlattenCurve/" + kind + '/';
  const auto lengthOf = [](const std::vector<NSPoint>& points) {
    double sum = 0;
    for (std::size_t k = 1; k < points.size(); ++k) {
      sum += std::hypot(points[k].x - points[k - 1].x, points[k].y - points[k - 1].y);
    }
    return sum;
  };
  const double length =
      sumOf(*curves, [](const Cubic& v, const Cubic&) { return ZKCurveLength(v.data(), 0); });
  const auto add = [&](const std::string& who, auto flatten) {
    const double found =
        sumOf(*curves, [&](const Cubic& v, const Cubic&) { return lengthOf(flatten(v)); });
    const double count = sumOf(*curves, [&](const Cubic& v, const Cubic&) {
      return static_cast<double>(flatten(v).size());
    });
    // The points are counted where they are made; their length has been compared once.
    const double expected = std::abs(found - length) < 0.01 * length ? count : -1;
    addSumRow(
        row + who + '_' + std::to_string(std::lround(count / curveCount)) + "_points", curves,
        [=](const Cubic& v, const Cubic&) { return static_cast<double>(flatten(v).size()); },
        expected, 0);
  };
  add("ZK", [=](const Cubic& v) { return ZKFlattenCurve(v.data(), tolerance); });
  add("halving", [=](const Cubic& v) { return flattenedByHalving(v, tolerance); });
  add("even", [=](const Cubic& v) { return flattenedEvenly(v, tolerance); });
}

#ifdef ZK_HAS_QT_GUI
void addQt(const std::vector<Cubic>& curves, const std::vector<double>& lengths) {
  auto paths = std::make_shared<std::vector<QPainterPath>>();
  for (const Cubic& v : curves) {
    QPainterPath path({v[0].x, v[0].y});
    path.cubicTo({v[1].x, v[1].y}, {v[2].x, v[2].y}, {v[3].x, v[3].y});
    paths->push_back(path);
  }
  const std::shared_ptr<const std::vector<QPainterPath>> all = paths;
  addLengthRow("CurveLength/0.01/Qt", all, lengths,
               [](const QPainterPath& path) { return path.length(); });
  // Its threshold is 0.5 of what it draws to.
  const QTransform scale = QTransform::fromScale(50, 50);
  const auto measure = [=](const QPainterPath& path, const QPainterPath&) {
    return static_cast<double>(path.toSubpathPolygons(scale).first().size());
  };
  double count = 0;
  for (const QPainterPath& path : *all) count += measure(path, path);
  addSumRow("FlattenCurve/0.01/Qt_" + std::to_string(std::lround(count / curveCount)) + "_points",
            all, measure, count, 0);
}
#endif

#ifdef ZK_HAS_2GEOM
struct Sums {
  double area, onSegments, onCurves;
  std::vector<double> lengths;
};

void add2geom(const std::vector<Cubic>& curves, const Sums& sums) {
  auto made = std::make_shared<std::vector<Geom::CubicBezier>>();
  const auto point = [](NSPoint p) { return Geom::Point(p.x, p.y); };
  for (const Cubic& v : curves) {
    made->emplace_back(point(v[0]), point(v[1]), point(v[2]), point(v[3]));
  }
  using Curve = Geom::CubicBezier;
  const std::shared_ptr<const std::vector<Curve>> all = made;
  addSumRow(
      "CurveBounds/random/2geom", all,
      [](const Curve& v, const Curve&) { return v.boundsExact().area(); }, sums.area,
      1e-9 * sums.area);
  for (const auto& [name, tolerance] : {std::pair("0.01", 1e-2), {"1e-6", 1e-6}}) {
    addLengthRow("CurveLength/" + std::string(name) + "/2geom", all, sums.lengths,
                 [tolerance = tolerance](const Curve& v) { return v.length(tolerance); });
  }
  // It may lose or double some.
  addSumRow(
      "SegmentCrossings/random/2geom", all,
      [](const Curve& v, const Curve& next) {
        const Geom::LineSegment segment(next[0], next[3]);
        return static_cast<double>(v.intersect(segment).size());
      },
      sums.onSegments, 0.05 * sums.onSegments);
  addSumRow(
      "CurveCrossings/random/2geom", all,
      [](const Curve& v, const Curve& next) {
        return static_cast<double>(v.intersect(next).size());
      },
      sums.onCurves, 0.05 * sums.onCurves);
}
#endif

void addCurves() {
  const auto curves = std::make_shared<const std::vector<Cubic>>(randomCurves());
  const auto add = [&](const std::string& name, auto measure, double tolerance = 0) {
    const double expected = sumOf(*curves, measure);
    addSumRow(name, curves, measure, expected, tolerance);
    return expected;
  };
  std::vector<double> lengths;
  lengths.reserve(curveCount);
  for (const Cubic& v : *curves) lengths.push_back(ZKCurveLength(v.data(), 0));
  [[maybe_unused]] const double area =
      add("CurveBounds/random/ZK", [](const Cubic& v, const Cubic&) {
        const NSRect bounds = ZKCurveBounds(v.data());
        return bounds.size.width * bounds.size.height;
      });
  for (const auto& [name, tolerance] : {std::pair("0.01", 1e-2), {"1e-6", 1e-6}}) {
    addLengthRow(
        "CurveLength/" + std::string(name) + "/ZK", curves, lengths,
        [tolerance = tolerance](const Cubic& v) { return ZKCurveLength(v.data(), tolerance); });
  }
  add("CurveParameterAtLength/0.01/ZK",
      [](const Cubic& v, const Cubic&) { return ZKCurveParameterAtLength(v.data(), 300, 0.01); });
  [[maybe_unused]] const double onSegments =
      add("SegmentCrossings/random/ZK", [](const Cubic& v, const Cubic& next) {
        return static_cast<double>(ZKCrossingsWithSegment(v.data(), next[0], next[3]).size());
      });
  [[maybe_unused]] const double onCurves =
      add("CurveCrossings/random/ZK", [](const Cubic& v, const Cubic& next) {
        return static_cast<double>(ZKCrossingsOfCurves(v.data(), next.data()).size());
      });
  add("CurveCrossings/beside/ZK", [](const Cubic& v, const Cubic&) {
    Cubic beside = v;
    for (NSPoint& p : beside) p.x += 1e-3;
    return static_cast<double>(ZKCrossingsOfCurves(v.data(), beside.data()).size());
  });
  add("CurveCrossings/same/ZK", [](const Cubic& v, const Cubic&) {
    return static_cast<double>(ZKCrossingsOfCurves(v.data(), v.data()).size());
  });
  addFlattening(curves, "0.01", 0.01);
  addFlattening(curves, "0.5", 0.5);
#ifdef ZK_HAS_QT_GUI
  addQt(*curves, lengths);
#endif
#ifdef ZK_HAS_2GEOM
  add2geom(*curves, {area, onSegments, onCurves, lengths});
#endif
}

const bool registered = [] {
  addCurves();
  return true;
}();

}  // namespace
