#include "ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <span>

#include <ZKFoundation/Categories/ZKBernstein.h>

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

NSPoint ZKBisectLine(NSPoint a, NSPoint b) { return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5}; }

NSPoint ZKInterpolate(NSPoint a, NSPoint b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

CGFloat ZKSquaredLength(NSPoint v) { return ZKDotProduct(v, v); }

NSPoint ZKDiffPoint(NSPoint a, NSPoint b) { return {a.x - b.x, a.y - b.y}; }

CGFloat ZKDiffPointSquaredLength(NSPoint a, NSPoint b) {
  return ZKSquaredLength(ZKDiffPoint(a, b));
}

NSPoint ZKSumPoint(NSPoint a, NSPoint b) { return {a.x + b.x, a.y + b.y}; }

CGFloat ZKDotProduct(NSPoint a, NSPoint b) { return a.x * b.x + a.y * b.y; }

NSPoint ZKPointIntersection(NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
  const double m1 = ZKSlope(a, b);
  const double m2 = ZKSlope(c, d);
  const double k1 = a.y - a.x * m1;
  const double k2 = c.y - c.x * m2;
  const double x = (k2 - k1) / (m1 - m2);
  return {x, k1 + x * m1};
}

NSPoint ZKPointIntersection2(NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
  const NSPoint first = ZKDiffPoint(b, a);
  const NSPoint second = ZKDiffPoint(d, c);
  const double den = first.x * second.y - first.y * second.x;
  if (den == 0.0) return ZKNotFoundPoint;
  const double t = ((a.y - c.y) * second.x - (a.x - c.x) * second.y) / den;
  return t >= 0.0 && t <= 1.0 ? ZKInterpolate(a, b, t) : ZKNotFoundPoint;
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

bool ZKAreSimilarPoints(NSPoint a, NSPoint b, double tolerance) {
  return !(std::abs(a.x - b.x) > tolerance) && !(std::abs(a.y - b.y) > tolerance);
}

bool ZKAreSimilarSizes(NSSize a, NSSize b, double tolerance) {
  return ZKAreSimilarPoints({a.width, a.height}, {b.width, b.height}, tolerance);
}

NSPoint ZKCenterOfCircleFromThreePoints(NSPoint a, NSPoint b, NSPoint c) {
  const double s = ZKSquaredLength(a);
  const double B = ZKSquaredLength(b) - s;
  const double C = ZKSquaredLength(c) - s;
  const NSPoint ab = ZKDiffPoint(b, a);
  const NSPoint ac = ZKDiffPoint(c, a);
  const double D = 2 * (ab.x * ac.y - ab.y * ac.x);
  return {(ac.y * B - ab.y * C) / D, (ab.x * C - ac.x * B) / D};
}

namespace {

// For each degree compiled by itself, so that its loops are unrolled.
template <std::size_t degree>
NSPoint bezier(const NSPoint* points, double t, NSPoint* left, NSPoint* right) {
  std::array<ZKPair, degree + 1> row;
  std::copy_n(points, row.size(), row.begin());
  for (std::size_t step = 0; step < degree; ++step) {
    if (left != nullptr) left[step] = row[0].point();
    if (right != nullptr) right[degree - step] = row[degree - step].point();
    for (std::size_t k = 0; k < degree - step; ++k) row[k] = ZKBetween(row[k], row[k + 1], t);
  }
  const NSPoint point = row[0].point();
  if (left != nullptr) left[degree] = point;
  if (right != nullptr) right[0] = point;
  return point;
}

NSPoint cubicAt(const NSPoint* points, double t) { return bezier<3>(points, t, nullptr, nullptr); }

}  // namespace

NSPoint ZKBezier(const NSPoint* points, int degree, double t, NSPoint* left, NSPoint* right) {
  switch (degree) {
    case 0:
      return bezier<0>(points, t, left, right);
    case 1:
      return bezier<1>(points, t, left, right);
    case 2:
      return bezier<2>(points, t, left, right);
    case 3:
      return bezier<3>(points, t, left, right);
    case 4:
      return bezier<4>(points, t, left, right);
    case 5:
      return bezier<5>(points, t, left, right);
    default:
      return {0, 0};
  }
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

void requireFewRoots(int left_count, int right_count) {
  require(left_count < 6, "left_count < 6");
  require(right_count < 6, "right_count < 6");
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
  // Squares keep the order, so that the farthest points are found before they are divided.
  double highest = 0;
  double lowest = 0;
  for (std::size_t k = 1; k < 5; ++k) {
    const double v = a * w[k].x() + b * w[k].y() + c;
    highest = v > highest ? v : highest;
    lowest = v < lowest ? v : lowest;
  }
  // Distances that overflow to NaN count as none.
  const double aboveOrNaN = highest * highest / ab2;
  const double belowOrNaN = lowest * lowest / ab2;
  const double above = aboveOrNaN > 0 ? aboveOrNaN : 0;
  const double below = belowOrNaN > 0 ? -belowOrNaN : 0;
  const double inverse = 1 / -a;
  const double error = 0.5 * std::abs((c + above) * inverse - (c + below) * inverse);
  // A width without bounds leaves no error that could be compared.
  return error < 0x1p-65 && std::isfinite(b);
}

double chordCrossing(const ZKPolygon& w) {
  const double width = w[5].x() - w[0].x();
  const double height = w[5].y() - w[0].y();
  return (width * w[0].y() - height * w[0].x()) / (width * 0 - height);
}

constexpr int deepest = 64;

// Follows the one crossing of a polygon down, at most so many levels; whether to where it is flat.
bool follow(ZKPolygon& w, int& depth, int levels) {
  for (; depth < deepest; ++depth) {
    if (isFlat(w)) return true;
    if (levels-- == 0) return false;
    w = ZKHalfWithCrossing(w);
  }
  return false;
}

// The recursion of the search, unrolled: only halves whose other half has crossings too wait for
// their turn, of which there are few however deep it goes.
class RootSearch {
 public:
  // More than ten roots always fail a check.
  static constexpr std::size_t mostRoots = 10;
  using Roots = std::array<double, mostRoots>;

  // Stores the roots and gives their number.
  int run(const ZKPolygon& polygon, int depth, Roots& roots) {
    _polygon = polygon;
    // Deeper makes no difference, and must not overflow.
    _node.depth = std::min(depth, deepest);
    _node.crossings = ZKCrossings(polygon);
    for (;;) {
      if (_node.crossings > 1 ? enterHalves() : !findRoot(roots) && enterHalves()) continue;
      if (!finish()) return _node.roots;
    }
  }

 private:
  // What its parent calls a polygon.
  enum class Side : std::uint8_t { whole, left, right };
  struct Node {
    int depth;
    int level;
    int crossings;
    int roots;
    Side side;
    // Whether its parent has crossings on no other side.
    bool isOnly;
  };
  struct Waiting {
    ZKPolygon polygon;
    Node parent;
    Node right;
    bool isEntered;
  };

  // Heights as far apart as doubles can be take 2,100 halvings, and five roots as many each.
  static constexpr int deepestLevel = 2200;
  static constexpr int mostPolygons = 5 * deepestLevel;

  bool isEndless() const { return _node.level >= deepestLevel || _polygonCount > mostPolygons; }

  // Of a polygon with one crossing; false when it has to be divided further.
  bool findRoot(Roots& roots) {
    if (_node.crossings == 0) return true;
    const int start = _node.depth;
    const int levels = ZKHalvesExactly(_polygon) ? ZKExactHalvings : 0;
    const bool isFound = follow(_polygon, _node.depth, levels);
    _node.level += _node.depth - start;
    if (!isFound && _node.depth < deepest && !isEndless()) return false;
    const double root =
        isFound ? chordCrossing(_polygon) : (_polygon[0].x() + _polygon[5].x()) * 0.5;
    if (_rootCount < roots.size()) roots[_rootCount++] = root;
    _node.roots = 1;
    return true;
  }

  // Goes on to the half that has crossings, or to the left one first; false when there is none.
  bool enterHalves() {
    ++_polygonCount;
    if (isEndless() || _waitingCount == _waiting.size()) return false;
    Waiting& waiting = _waiting[_waitingCount];
    ZKSplit(_polygon, _polygon, waiting.polygon);
    const int left = ZKCrossings(_polygon);
    const int right = ZKCrossings(waiting.polygon);
    if (left == 0 && right == 0) return false;
    const bool hasBoth = left != 0 && right != 0;
    const Node child = {_node.depth + 1, _node.level + 1, right, 0, Side::right, !hasBoth};
    if (hasBoth) {
      waiting.parent = _node;
      waiting.right = child;
      waiting.isEntered = false;
      ++_waitingCount;
    }
    _node = child;
    if (left == 0) {
      _polygon = waiting.polygon;
    } else {
      _node.crossings = left;
      _node.side = Side::left;
    }
    return true;
  }

  // Hands the number of roots up to the next half that waits for its turn; false when none does.
  bool finish() {
    while (_waitingCount > 0) {
      Waiting& waiting = _waiting[_waitingCount - 1];
      if (!waiting.isEntered) {
        waiting.isEntered = true;
        waiting.parent.roots = _node.roots;
        _polygon = waiting.polygon;
        _node = waiting.right;
        return true;
      }
      requireFewRoots(waiting.parent.roots, _node.roots);
      waiting.parent.roots += _node.roots;
      _node = waiting.parent;
      if (_node.isOnly) {
        requireFewRoots(_node.side == Side::left ? _node.roots : 0,
                        _node.side == Side::right ? _node.roots : 0);
      }
      --_waitingCount;
    }
    return false;
  }

  ZKPolygon _polygon;
  Node _node{};
  std::array<Waiting, 16> _waiting;
  std::size_t _waitingCount = 0;
  std::size_t _rootCount = 0;
  int _polygonCount = 0;
};

}  // namespace

int ZKFindRoots(const NSPoint* points, double* t, int depth) {
  ZKPolygon polygon;
  std::copy_n(points, polygon.size(), polygon.begin());
  RootSearch::Roots roots;
  RootSearch search;
  const int count = std::min(search.run(polygon, depth, roots), 5);
  std::copy_n(roots.begin(), count, t);
  return count;
}

NSPoint ZKNearestPointOnCurve(const NSPoint* points, double* t, NSPoint p) {
  const ZKCubic c = ZKCubicFrom(p, points);
  const std::array<ZKPair, 3> d = {(points[1] - ZKPair(points[0])) * 3,
                                   (points[2] - ZKPair(points[1])) * 3,
                                   (points[3] - ZKPair(points[2])) * 3};
  RootSearch::Roots roots;
  RootSearch search;
  const int count = search.run(ZKDistanceQuintic(c, d), 0, roots);

  double best = 0;
  NSPoint nearest = cubicAt(points, 0);
  double distance = dot(c[0], c[0]);
  for (const double root : std::span(roots).first(static_cast<std::size_t>(count))) {
    const NSPoint point = cubicAt(points, root);
    const double other = ZKDiffPointSquaredLength(p, point);
    if (other < distance) {
      best = root;
      nearest = point;
      distance = other;
    }
  }
  if (dot(c[3], c[3]) < distance) {
    best = 1;
    nearest = cubicAt(points, 1);
  }
  if (t != nullptr) *t = best;
  return nearest;
}
