#include "ZKFoundation/Categories/NSGeometry+ZKCurves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/ZKCubicExtrema.h>
#include <ZKFoundation/Categories/ZKUnitScale.h>
#include <ZKFoundation/detail/Vector.h>

namespace {

struct Interval {
  double low;
  double high;

  void include(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

// Where one coordinate of a cubic goes.
Interval rangeOf(const std::array<double, 4>& v) {
  Interval range = {std::min(v[0], v[3]), std::max(v[0], v[3])};
  if (std::min(v[1], v[2]) >= range.low && std::max(v[1], v[2]) <= range.high) return range;
  std::array<double, 2> extrema;
  const auto count = static_cast<std::size_t>(ZKCubicExtrema(v, extrema));
  for (std::size_t k = 0; k < count; ++k) range.include(ZKCubicAt(v, extrema[k]));
  return range;
}

// Gives at least the largest of |3 s² t d1 + 3 s t² d2|, how far a cubic with inner control points
// at these distances from its chord is from it, and at most some hundredths more where both are
// alike: in d2 / d1 it is convex, 4/9 at 0 and 3/4 at 1.
double highest(double d1, double d2) {
  const double larger = std::max(std::abs(d1), std::abs(d2));
  const double smaller = std::min(std::abs(d1), std::abs(d2));
  return larger * (4.0 / 9) + (d1 * d2 > 0 ? smaller * (11.0 / 36) : 0);
}

// A cubic from (0, 0), of a size of about 1, that is cut into chords.
class ChordCutter {
 public:
  ChordCutter(const std::array<ZKVector, 4>& v, double tolerance)
      : _a(v[3] - v[0] - (v[2] - v[1]) * 3),
        _b((v[2] - v[1] - (v[1] - v[0])) * 3),
        _c((v[1] - v[0]) * 3),
        _tolerance(tolerance) {
    // As many even steps would do.
    const ZKVector last = _a * 3 + _b;
    const double bend = std::sqrt(std::max(dot(_b, _b), dot(last, last)));
    const double evenSteps = 0.5 * std::sqrt(bend / tolerance);
    _lastNode = static_cast<std::size_t>(std::clamp(0.125 * evenSteps, 4.0, mostNodes - 1.0));
    _width = 1 / static_cast<double>(_lastNode);
    double former = densityAt(0);
    _nodes[0] = {0, former};
    for (std::size_t k = 1; k <= _lastNode; ++k) {
      const double density = densityAt(static_cast<double>(k) * _width);
      _nodes[k] = {_nodes[k - 1].sum + 0.5 * (former + density), density};
      former = density;
    }
  }

  // Gives how many chords the curve takes.
  [[nodiscard]] std::size_t count() const {
    // An arc is as high as the curvature times the square of its length by 8. Leaves a twentieth of
    // the tolerance for what is not even between the nodes.
    const double sum = _nodes[_lastNode].sum * _width;
    return static_cast<std::size_t>(
        std::max(std::ceil(sum / std::sqrt(0.95 * 8 * _tolerance)), 1.0));
  }

  // Calls `visit` with the point after each chord but the last.
  template <class Visit>
  void cut(Visit visit) const {
    const std::size_t chords = count();
    const double share = _nodes[_lastNode].sum / static_cast<double>(chords);
    std::array<double, 64> parameters;
    std::size_t node = 0;
    Place from = at(0);
    // In batches, so that no root is waited for.
    for (std::size_t first = 1; first < chords; first += parameters.size()) {
      const auto batch = std::span(parameters).first(std::min(chords - first, parameters.size()));
      for (std::size_t k = 0; k < batch.size(); ++k) {
        batch[k] = parameterAt(static_cast<double>(first + k) * share, node);
      }
      for (const double t : batch) {
        const Place to = at(t);
        if (!isNear(from, to)) halve(from, to, 0, visit);
        visit(to.point);
        from = to;
      }
    }
    const Place end = at(1);
    if (!isNear(from, end)) halve(from, end, 0, visit);
  }

 private:
  struct Place {
    double t;
    ZKVector point;
    ZKVector derivative;
  };
  [[nodiscard]] Place at(double t) const {
    return {t, ((_a * t + _b) * t + _c) * t, (_a * (3 * t) + _b * 2) * t + _c};
  }

  // Gives the parameter at which the density has a sum; `node` is one before it, and is moved.
  // Between nodes the density is taken to be linear, and its sum a quadratic.
  [[nodiscard]] double parameterAt(double sum, std::size_t& node) const {
    while (node + 1 < _lastNode && sum > _nodes[node + 1].sum) ++node;
    const auto& [before, density] = _nodes[node];
    const double rise = _nodes[node + 1].density - density;
    const double rest = sum - before;
    const double root = std::sqrt(std::max(density * density + 2 * rise * rest, 0.0));
    return (static_cast<double>(node) + std::min(2 * rest / (density + root), 1.0)) * _width;
  }

  // Gives the root of the curvature in the unit of the parameter.
  [[nodiscard]] double densityAt(double t) const {
    const ZKVector first = at(t).derivative;
    const ZKVector second = _a * (6 * t) + _b * 2;
    const double squared = dot(first, first);
    return squared > 0 ? std::sqrt(std::abs(cross(first, second)) / std::sqrt(squared)) : 0;
  }

  // Visits the middle between two places and, on either side, as many points as the tolerance
  // takes. A step of 2^-22 takes none: from its chord the curve is not farther than the square of
  // that times some sizes.
  template <class Visit>
  [[gnu::noinline]] void halve(const Place& from, const Place& to, int depth, Visit& visit) const {
    if (depth == 40) return;
    const Place middle = at(0.5 * (from.t + to.t));
    if (!isNear(from, middle)) halve(from, middle, depth + 1, visit);
    visit(middle.point);
    if (!isNear(middle, to)) halve(middle, to, depth + 1, visit);
  }

  // Whether the curve is near enough to the segment between two places.
  [[nodiscard]] bool isNear(const Place& from, const Place& to) const {
    const double third = (to.t - from.t) * (1.0 / 3);
    const ZKVector chord = to.point - from.point;
    const ZKVector first = from.derivative * third;
    const ZKVector second = chord - to.derivative * third;
    const double squared = dot(chord, chord);
    const double along1 = dot(first, chord);
    const double along2 = dot(second, chord);
    if (std::min(along1, along2) >= 0 && std::max(along1, along2) <= squared && squared > 0) {
      const double height = highest(cross(chord, first), cross(chord, second));
      return height * height <= _tolerance * _tolerance * squared;
    }
    return isNearBeyondEnds(chord, first, second);
  }

  // Whether it is when its inner control points may lie beyond the ends. The distance from a
  // segment is convex, so that the curve's is at most the mean of its control points' distances by
  // its own weights.
  [[nodiscard, gnu::noinline]] bool isNearBeyondEnds(ZKVector chord, ZKVector first,
                                                     ZKVector second) const {
    const double squared = dot(chord, chord);
    const auto outside = [&](ZKVector p) {
      const double t = squared > 0 ? std::clamp(dot(p, chord) / squared, 0.0, 1.0) : 0;
      const ZKVector offset = p - chord * t;
      return std::sqrt(dot(offset, offset));
    };
    return highest(outside(first), outside(second)) <= _tolerance;
  }

  static constexpr std::size_t mostNodes = 25;
  // How dense chords are at even parameters, and the sum up to there in the unit of their distance.
  struct Node {
    double sum;
    double density;
  };
  std::array<Node, mostNodes> _nodes;
  std::size_t _lastNode;
  double _width;
  ZKVector _a;
  ZKVector _b;
  ZKVector _c;
  double _tolerance;
};

}  // namespace

NSRect ZKCurveBounds(const NSPoint* points) {
  const Interval x = rangeOf({points[0].x, points[1].x, points[2].x, points[3].x});
  const Interval y = rangeOf({points[0].y, points[1].y, points[2].y, points[3].y});
  return {{x.low, y.low}, {x.high - x.low, y.high - y.low}};
}

ZKCurveProjection ZKProjectOnCurve(const NSPoint* points, NSPoint p) {
  ZKCurveProjection nearest = {};
  nearest.point = ZKNearestPointOnCurveRefined(points, &nearest.t, p);
  nearest.distance = std::hypot(nearest.point.x - p.x, nearest.point.y - p.y);
  return nearest;
}

std::vector<NSPoint> ZKFlattenCurve(const NSPoint* points, double tolerance) {
  std::array<ZKVector, 4> v;
  double size = 0;
  for (std::size_t k = 0; k < v.size(); ++k) {
    v[k] = ZKVector(points[k]) - ZKVector(points[0]);
    if (!std::isfinite(v[k].x()) || !std::isfinite(v[k].y())) return {points[0], points[3]};
    size = std::max({size, std::abs(v[k].x()), std::abs(v[k].y())});
  }
  const double scale = ZKUnitScale(size);
  for (ZKVector& each : v) each = each * scale;
  tolerance = tolerance * scale > 0x1p-40 ? tolerance * scale : 0x1p-40;

  const ChordCutter cutter(v, tolerance);
  std::vector<NSPoint> result;
  result.reserve(cutter.count() + 2);
  result.push_back(points[0]);
  const ZKVector origin = points[0];
  const double unit = 1 / scale;
  cutter.cut([&](ZKVector point) { result.push_back((origin + point * unit).point()); });
  result.push_back(points[3]);
  return result;
}
