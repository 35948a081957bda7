#include "ZKFoundation/Categories/NSGeometry+ZKNearestPoint.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/ZKBernstein.h>
#include <ZKFoundation/Categories/ZKUnitScale.h>

namespace {

// The nearest of the points that have been looked at, the first of equals.
struct Nearest {
  double t;
  double distance;

  void consider(double other, double otherDistance) {
    if (otherDistance < distance) *this = {other, otherDistance};
  }
};

// A cubic seen from the point, and what its distance depends on at a parameter.
class Distance {
 public:
  Distance(const ZKCubic& curve, const std::array<ZKVector, 3>& derivative) : _curve(curve) {
    double fastest = 0;
    for (const ZKVector v : derivative) fastest = std::max(fastest, dot(v, v));
    _standstill = 0x1p-20 * fastest;
  }

  // Adds the point between low and high where the slope, which may be zero at either end too,
  // changes its sign, unless others are certainly nearer.
  void addRoot(double low, double high, double guess, bool startsBelow, Nearest& nearest) const {
    const double t = guess > low && guess < high ? guess : 0.5 * (low + high);
    const Value value = at(t);
    // No root is nearer than this: before a minimum the squared distance is convex, so that it lies
    // above its tangents; before a maximum it is concave, and the root is farther than all others.
    double bound = value.squared;
    if (startsBelow) bound -= 2 * std::abs(value.slope) * (value.slope < 0 ? high - t : t - low);
    if (bound > std::min(nearest.distance, dot(_curve[3], _curve[3])) + hiddenGain) return;
    addStationary(findRoot(low, high, t, value, startsBelow), nearest);
  }

  // Adds a point where the distance may be least, and those that it hides.
  void addStationary(double t, Nearest& nearest) const {
    const Value value = at(t);
    nearest.consider(t, value.squared);
    if (value.speed <= _standstill) addAround(t, value, nearest);
  }

  [[nodiscard]] bool standsStill(ZKVector derivative) const {
    return dot(derivative, derivative) <= _standstill;
  }

 private:
  struct Value {
    double squared;
    // Half the first and second derivatives of it.
    double slope;
    double bend;
    // The square of the curve's derivative.
    double speed;
  };
  [[nodiscard]] Value at(double t) const {
    const auto [point, first, second] = ZKMotionAt(_curve, t);
    const double speed = dot(first, first);
    return {dot(point, point), dot(point, first), speed + dot(point, second), speed};
  }

  // Newton's method, which halves the bracket where it would leave it or where its steps do not
  // become shorter fast enough.
  [[nodiscard]] double findRoot(double low, double high, double t, Value value,
                                bool startsBelow) const {
    double former = high - low;
    for (;; value = at(t)) {
      if (value.slope == 0) return t;
      ((value.slope < 0) == startsBelow ? low : high) = t;
      double next = t - value.slope / value.bend;
      const bool isGood = next > low && next < high && std::abs(next - t) <= 0.5 * former;
      if (!isGood) next = 0.5 * (low + high);
      if (!(next > low && next < high) || high - low <= 0x1p-60) return t;
      former = std::abs(next - t);
      t = next;
      if (isGood && former <= 0x1p-40 * t) return t;
    }
  }

  // Where the curve all but stands still, as at a cusp in front of the point, roots of the slope
  // are so near to each other that they drown in the rounding of its polynomial, but not in that of
  // the curve itself. Looks for them at growing distances: nearer ones differ by less than
  // rounding, farther ones show in the polynomial.
  void addAround(double center, const Value& centerValue, Nearest& nearest) const {
    for (const double direction : {-1.0, 1.0}) {
      double former = center;
      double formerSlope = direction * centerValue.slope;
      double step = 0x1p-28;
      // To 2^-9: in front of a place where both derivatives are zero, roots drown up to 2^-10 away.
      for (int k = 0; k < 95; ++k, step *= 1.15) {
        const double t = std::clamp(center + direction * step, 0.0, 1.0);
        if (t == former) continue;
        const double slope = direction * at(t).slope;
        if (formerSlope < 0 && slope >= 0) {
          const double low = std::min(t, former);
          const double high = std::max(t, former);
          const double middle = 0.5 * (low + high);
          const double root = findRoot(low, high, middle, at(middle), true);
          nearest.consider(root, at(root).squared);
        }
        former = t;
        formerSlope = slope;
      }
    }
  }

  // More than a point that `addAround` finds can be nearer than the one that hides it.
  static constexpr double hiddenGain = 0x1p-12;
  const ZKCubic& _curve;
  // The square of a speed that counts as none.
  double _standstill;
};

bool isMonotone(const ZKPolygon& w) {
  const bool rises = w[0].y() < w[5].y();
  for (std::size_t k = 1; k < w.size(); ++k) {
    if ((w[k - 1].y() < w[k].y()) != rises) return false;
  }
  return true;
}

// Looks for the roots of the slope between low and high, whose control polygon is w. Only a slope
// that is monotone has no second root, at an end that rounding has moved over the axis.
void searchRoots(const Distance& distance, const ZKPolygon& w, double low, double high,
                 Nearest& nearest) {
  const int crossings = ZKCrossings(w);
  if (crossings == 0) return;
  if (crossings == 1 && isMonotone(w)) {
    const double guess = low + (high - low) * w[0].y() / (w[0].y() - w[5].y());
    return distance.addRoot(low, high, guess, w[0].y() < 0, nearest);
  }
  const double middle = 0.5 * (low + high);
  if (high - low <= 0x1p-52) return distance.addStationary(middle, nearest);
  ZKPolygon left;
  ZKPolygon right;
  ZKSplit(w, left, right);
  searchRoots(distance, left, low, middle, nearest);
  searchRoots(distance, right, middle, high, nearest);
}

}  // namespace

NSPoint ZKNearestPointOnCurveRefined(const NSPoint* points, double* t, NSPoint p) {
  ZKCubic curve = ZKCubicFrom(p, points);
  double size = 0;
  for (const ZKVector v : curve) {
    // Of NaN there is no greatest.
    if (!std::isfinite(v.x()) || !std::isfinite(v.y())) return ZKNearestPointOnCurve(points, t, p);
    size = std::max({size, std::abs(v.x()), std::abs(v.y())});
  }
  const double scale = ZKUnitScale(size);
  for (ZKVector& v : curve) v = v * scale;

  const std::array<ZKVector, 3> derivative = {(curve[1] - curve[0]) * 3, (curve[2] - curve[1]) * 3,
                                              (curve[3] - curve[2]) * 3};
  const Distance distance(curve, derivative);
  Nearest nearest = {0, dot(curve[0], curve[0])};
  if (distance.standsStill(derivative[0])) distance.addStationary(0, nearest);
  searchRoots(distance, ZKDistanceQuintic(curve, derivative), 0, 1, nearest);
  nearest.consider(1, dot(curve[3], curve[3]));
  if (distance.standsStill(derivative[2])) distance.addStationary(1, nearest);
  if (t != nullptr) *t = nearest.t;
  return ZKBezier(points, 3, nearest.t, nullptr, nullptr);
}
