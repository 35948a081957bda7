// Here the small functions become the library's own.
#define ZK_INLINE
#include "ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <span>

#include <ZKFoundation/Categories/ZKBernstein.h>
#include <ZKFoundation/detail/Points.h>

// The checks of the root search are made in every build.
#undef NDEBUG
#include <cassert>

// Results are the same on every machine only if doubles are rounded after each operation.
static_assert(FLT_EVAL_METHOD == 0);

namespace {

float directionOf(double dx, double dy) {
  return std::atan2(static_cast<float>(dy), static_cast<float>(dx));
}

float lengthOf(double dx, double dy) {
  return std::hypot(static_cast<float>(dx), static_cast<float>(dy));
}

}  // namespace

const NSPoint ZKNotFoundPoint = {-10000000.2, -999999.6};

double ZKSnapAngleToStandardAngles(double angle) {
  for (int step = 0; step < 8; ++step) {
    if (angle <= 22.5 + 45.0 * step) return 45.0 * step;
  }
  return 0;
}

CGFloat ZKSlope(NSPoint a, NSPoint b) { return directionOf(b.x - a.x, b.y - a.y); }

CGFloat ZKRelPoint(NSPoint p, NSPoint a, NSPoint b) {
  const double length = ZKLineLength(a, b);
  return length == 0 ? 0 : ZKLineLength(a, p) / length;
}

CGFloat ZKLineLength(NSPoint a, NSPoint b) { return lengthOf(b.x - a.x, b.y - a.y); }

NSPoint ZKPointIntersection(NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
  const double m1 = ZKSlope(a, b);
  const double m2 = ZKSlope(c, d);
  const double k1 = a.y - a.x * m1;
  const double k2 = c.y - c.x * m2;
  const double x = (k2 - k1) / (m1 - m2);
  return {x, k1 + x * m1};
}

CGFloat ZKAngleBetween(NSPoint a, NSPoint b, NSPoint c) { return ZKSlope(a, b) - ZKSlope(b, c); }

NSPoint ZKNearestPointOnLine(NSPoint p, NSPoint a, NSPoint b) {
  const double length = ZKLineLength(a, b);
  if (length <= 0) return a;
  const double u = ZKDotProduct(ZKDiffPoint(p, a), ZKDiffPoint(b, a)) / (length * length);
  if (u <= 0) return a;
  if (u >= 1) return b;
  return ZKInterpolate(a, b, u);
}

NSPoint ZKBezierOfAnyDegree(const NSPoint* points, int degree, double t, NSPoint* left,
                            NSPoint* right) {
  return ZKDivideByDegree(points, degree, t, left, right);
}

double ZKBezierSlope(const NSPoint* points, double t) {
  t = t < 0 ? 0 : std::min(t, 1.0);
  const auto derivative = [&](CGFloat NSPoint::*axis) {
    const double c = 3 * (points[1].*axis - points[0].*axis);
    const double b = 3 * (points[2].*axis - points[1].*axis) - c;
    const double a = points[3].*axis - points[0].*axis - c - b;
    return c + (t * (b + b) + t * (t * (3 * a)));
  };
  return std::atan2(derivative(&NSPoint::y), derivative(&NSPoint::x));
}

namespace {

// Ends the process as a failed assert does, in every build.
void require(bool holds, const char* expression, const char* file = __builtin_FILE(),
             unsigned line = __builtin_LINE()) {
  if (!holds) __assert_fail(expression, file, line, "ZKFindRoots");
}

// The bounding box of the polygon along its chord, where it meets the axis: whether the two
// crossings are as near to each other as the method wants.
bool isFlat(const ZKPolygon& w) {
  const double a = w[0].y() - w[5].y();
  const double b = w[5].x() - w[0].x();
  const double c = w[0].x() * w[5].y() - w[5].x() * w[0].y();
  const double ab2 = a * a + b * b;
  // One point that is far from the chord decides, without a division, unless numbers are so small
  // that they round: the crossings are farther apart than what rounding takes away from them.
  const double far = a * w[2].x() + b * w[2].y() + c;
  if (ab2 > 0x1p-900 && far * far > 0x1p-49 * ab2 * (std::abs(a) + std::abs(c))) return false;
  double above = 0;
  double below = 0;
  for (std::size_t k = 1; k < 5; ++k) {
    const double v = a * w[k].x() + b * w[k].y() + c;
    // Distances that overflow to NaN count as none.
    const double squared = v * v / ab2;
    if (v > 0 && squared > above) above = squared;
    if (v < 0 && -squared < below) below = -squared;
  }
  // Of an infinite width this makes NaN, which is not flat.
  const double inverse = 1 / (0 * b - a);
  return 0.5 * std::abs((c + above) * inverse - (c + below) * inverse) < 0x1p-65;
}

double chordCrossing(const ZKPolygon& w) {
  const double width = w[5].x() - w[0].x();
  const double height = w[5].y() - w[0].y();
  return (width * w[0].y() - height * w[0].x()) / (width * 0 - height);
}

// The recursive subdivision. A call that finds roots in one half only goes on with that itself, so
// that however deep a search goes, few calls are in each other.
class RootSearch {
 public:
  explicit RootSearch(int depth) : _depth(std::min(depth, deepest)) {}

  // Adds the roots of the polygon, and gives their number.
  int search(ZKPolygon w, int level = 0, int nesting = 0) {
    // The check that its parent makes of w, once a parent has had roots in this half only.
    const char* check = nullptr;
    for (;; ++level) {
      const int crossings = ZKCrossings(w);
      if (crossings == 0) return 0;
      if (crossings == 1 && addRoot(w, level)) return 1;
      ++_polygonCount;
      if (isEndless(level) || nesting == deepestNesting) return 0;
      ZKPolygon right;
      ZKSplit(w, w, right);
      const bool hasLeft = ZKCrossings(w) != 0;
      const bool hasRight = ZKCrossings(right) != 0;
      if (hasLeft && hasRight) {
        const int leftCount = search(w, level + 1, nesting + 1);
        const int rightCount = search(right, level + 1, nesting + 1);
        require(leftCount < 6, leftCheck);
        require(rightCount < 6, rightCheck);
        require(check == nullptr || leftCount + rightCount < 6, check);
        return leftCount + rightCount;
      }
      check = hasLeft ? leftCheck : rightCheck;
      if (hasRight) w = right;
    }
  }

  [[nodiscard]] std::span<const double> roots() const {
    return std::span(_roots).first(_rootCount);
  }

 private:
  static constexpr int deepest = 64;
  // Heights as far apart as doubles can be take 2,100 halvings, and five roots as many each; what
  // goes on after that would never end. Rounding may make up roots, and so more calls in each
  // other than the five roots of a polynomial make.
  static constexpr int deepestLevel = 2200;
  static constexpr int mostPolygons = 5 * deepestLevel;
  static constexpr int deepestNesting = 16;
  static constexpr const char* leftCheck = "left_count < 6";
  static constexpr const char* rightCheck = "right_count < 6";

  [[nodiscard]] bool isEndless(int level) const {
    return level >= deepestLevel || _polygonCount > mostPolygons;
  }

  // Follows the one crossing of w down, and adds it; false when w has to be divided.
  bool addRoot(ZKPolygon& w, int& level) {
    int levels = ZKHalvesExactly(w) ? ZKExactHalvings : 0;
    bool isFound = false;
    for (; _depth + level < deepest; ++level) {
      isFound = isFlat(w);
      if (isFound || levels-- == 0) break;
      w = ZKHalfWithCrossing(w);
    }
    if (!isFound && _depth + level < deepest && !isEndless(level)) return false;
    if (_rootCount < _roots.size())
      _roots[_rootCount++] = isFound ? chordCrossing(w) : (w[0].x() + w[5].x()) * 0.5;
    return true;
  }

  // At level 0. Deeper makes no difference, and must not overflow.
  int _depth;
  int _polygonCount = 0;
  // More than ten roots always fail a check.
  std::array<double, 10> _roots;
  std::size_t _rootCount = 0;
};

}  // namespace

int ZKFindRoots(const NSPoint* points, double* t, int depth) {
  ZKPolygon polygon;
  std::copy_n(points, polygon.size(), polygon.begin());
  RootSearch search(depth);
  const int count = std::min(search.search(polygon), 5);
  std::copy_n(search.roots().begin(), count, t);
  return count;
}

NSPoint ZKNearestPointOnCurve(const NSPoint* points, double* t, NSPoint p) {
  const ZKCubic c = ZKCubicFrom(p, points);
  const std::array<ZKVector, 3> d = {(points[1] - ZKVector(points[0])) * 3,
                                     (points[2] - ZKVector(points[1])) * 3,
                                     (points[3] - ZKVector(points[2])) * 3};
  const ZKPolygon quintic = ZKDistanceQuintic(c, d);
  RootSearch search(0);
  if (ZKCrossings(quintic) != 0) search.search(quintic);

  double best = 0;
  NSPoint nearest = ZKBezier(points, 3, 0, nullptr, nullptr);
  double distance = dot(c[0], c[0]);
  for (const double root : search.roots()) {
    const NSPoint point = ZKBezier(points, 3, root, nullptr, nullptr);
    const double other = ZKDiffPointSquaredLength(p, point);
    if (other < distance) {
      best = root;
      nearest = point;
      distance = other;
    }
  }
  if (dot(c[3], c[3]) < distance) {
    best = 1;
    nearest = ZKBezier(points, 3, 1, nullptr, nullptr);
  }
  if (t != nullptr) *t = best;
  return nearest;
}
