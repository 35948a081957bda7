#include "ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h"
#include "ZKFoundation/Categories/ZKBernstein.h"

#include <algorithm>
#include <array>
#include <cmath>

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
  explicit Distance(const ZKCubic& curve) : _curve(curve) {}

  struct Value {
    double squared;
    // Half the first and second derivatives of it.
    double slope;
    double bend;
  };
  Value at(double t) const {
    const auto& [v0, v1, v2, v3] = _curve;
    const ZKPair v01 = ZKBetween(v0, v1, t);
    const ZKPair v12 = ZKBetween(v1, v2, t);
    const ZKPair v23 = ZKBetween(v2, v3, t);
    const ZKPair v012 = ZKBetween(v01, v12, t);
    const ZKPair v123 = ZKBetween(v12, v23, t);
    const ZKPair point = ZKBetween(v012, v123, t);
    const ZKPair first = (v123 - v012) * 3;
    const ZKPair second = (v23 - v12 - (v12 - v01)) * 6;
    return {dot(point, point), dot(point, first), dot(first, first) + dot(point, second)};
  }

  // Adds the point between low and high where the slope, which may be zero at either end too,
  // changes its sign: Newton's method, which halves the bracket where it would leave it or where
  // its steps do not become shorter fast enough.
  void addRoot(double low, double high, double guess, bool startsBelow, Nearest& nearest) const {
    double t = guess > low && guess < high ? guess : 0.5 * (low + high);
    double former = high - low;
    Value value = at(t);
    while (value.slope != 0) {
      ((value.slope < 0) == startsBelow ? low : high) = t;
      double next = t - value.slope / value.bend;
      const bool isGood = next > low && next < high && std::abs(next - t) <= 0.5 * former;
      if (!isGood) next = 0.5 * (low + high);
      if (!(next > low && next < high)) break;
      former = std::abs(next - t);
      t = next;
      value = at(t);
      if (isGood && former <= 0x1p-40 * t) break;
    }
    nearest.consider(t, value.squared);
  }

 private:
  const ZKCubic& _curve;
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
  if (high - low <= 0x1p-52) return nearest.consider(middle, distance.at(middle).squared);
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
  for (const ZKPair v : curve) size = std::max({size, std::abs(v.x()), std::abs(v.y())});
  if (!std::isfinite(size)) return ZKNearestPointOnCurve(points, t, p);
  // To about 1, so that neither squares nor products leave the range of doubles.
  const int exponent = size > 0 ? std::clamp(std::ilogb(size), -1000, 1000) : 0;
  for (ZKPair& v : curve) v = v * std::ldexp(1.0, -exponent);

  const std::array<ZKPair, 3> derivative = {(curve[1] - curve[0]) * 3, (curve[2] - curve[1]) * 3,
                                            (curve[3] - curve[2]) * 3};
  Nearest nearest = {0, dot(curve[0], curve[0])};
  searchRoots(Distance(curve), ZKDistanceQuintic(curve, derivative), 0, 1, nearest);
  nearest.consider(1, dot(curve[3], curve[3]));
  if (t != nullptr) *t = nearest.t;
  return ZKBezier(points, 3, nearest.t, nullptr, nullptr);
}
