#include "ZKFoundation/Categories/NSGeometry+ZKCrossings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/NSGeometry+ZKCurves.h>
#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/ZKCubicExtrema.h>

namespace {

using Heights = std::array<double, 4>;

// What counts as 0 for heights of up to about 1.
constexpr double rounding = 0x1p-47;

double sizeOf(NSPoint v) { return std::max(std::abs(v.x), std::abs(v.y)); }

bool isFinite(NSPoint v) { return std::isfinite(v.x) && std::isfinite(v.y); }

double slopeAt(const Heights& h, double t) {
  const double s = 1 - t;
  return 3 * (s * s * (h[1] - h[0]) + 2 * s * t * (h[2] - h[1]) + t * t * (h[3] - h[2]));
}

// Newton's method between places with heights of different signs; it halves where it would leave
// them.
double rootBetween(const Heights& h, double low, double high) {
  const bool startsBelow = ZKCubicAt(h, low) < 0;
  double t = 0.5 * (low + high);
  // Of the hundred a root of three needs most.
  for (int step = 0; step < 100; ++step) {
    const double height = ZKCubicAt(h, t);
    if (height == 0) break;
    ((height < 0) == startsBelow ? low : high) = t;
    double next = t - height / slopeAt(h, t);
    if (!(next > low && next < high)) next = 0.5 * (low + high);
    const double moved = std::abs(next - t);
    t = next;
    if (moved <= 0x1p-53) break;
  }
  return t;
}

// The parameters at which a cubic of heights up to about 1, not all of them 0, is 0.
class Roots {
 public:
  explicit Roots(const Heights& h) {
    // By far the most curves are on one side.
    const auto [least, greatest] = std::ranges::minmax(h);
    if (least > rounding || greatest < -rounding) return;
    std::array<double, 2> extrema;
    const auto count = static_cast<std::size_t>(ZKCubicExtrema(h, extrema));
    addUpTo(h, 0);
    for (std::size_t k = 0; k < count; ++k) addUpTo(h, extrema[k]);
    addUpTo(h, 1);
  }

  [[nodiscard]] const double* begin() const { return _roots.data(); }
  [[nodiscard]] const double* end() const { return _roots.data() + _count; }

 private:
  // To the next place at which the heights turn, or an end.
  void addUpTo(const Heights& h, double t) {
    const double height = ZKCubicAt(h, t);
    const bool isZero = std::abs(height) <= rounding;
    if (isZero && _isAtZero) {
      // All between them is 0: one root, at the curve's end if that is one of them.
      if (t == 1 && _roots[_count - 1] != 0) _roots[_count - 1] = 1;
    } else if (isZero) {
      _roots[_count++] = t;
    } else if (!_isAtZero && t > 0 && (height < 0) != (_height < 0)) {
      _roots[_count++] = rootBetween(h, _t, t);
    }
    _isAtZero = isZero;
    _height = height;
    _t = t;
  }

  std::array<double, 4> _roots;
  std::size_t _count = 0;
  bool _isAtZero = false;
  double _height = 0;
  double _t = 0;
};

// A cubic seen from the start of a line, both at a size of about 1.
template <std::size_t capacity>
class LineCrossings {
 public:
  LineCrossings(const NSPoint* points, NSPoint a, NSPoint b, bool isSegment)
      : _points(points), _isSegment(isSegment) {
    const NSPoint direction = ZKDiffPoint(b, a);
    double size = 0;
    bool isValid = sizeOf(direction) > 0 && isFinite(direction);
    for (std::size_t k = 0; k < 4; ++k) {
      _v[k] = ZKDiffPoint(points[k], a);
      isValid = isValid && isFinite(_v[k]);
      size = std::max(size, sizeOf(_v[k]));
    }
    if (!isValid) return;
    const double scale = ZKUnitScale(size);
    const double lineScale = ZKUnitScale(sizeOf(direction));
    const NSPoint d = {direction.x * lineScale, direction.y * lineScale};
    const double squared = ZKSquaredLength(d);
    _end = scale / lineScale;
    Heights heights;
    for (std::size_t k = 0; k < 4; ++k) {
      const NSPoint v = {_v[k].x * scale, _v[k].y * scale};
      heights[k] = (d.x * v.y - d.y * v.x) / squared;
      _along[k] = ZKDotProduct(d, v) / squared;
    }
    const bool isStraight =
        std::ranges::all_of(heights, [](double h) { return std::abs(h) <= rounding; });
    if (isStraight) {
      addShared(a, b);
    } else {
      for (const double t : Roots(heights)) add(t);
    }
  }

  ZKCrossingList<capacity> crossings;

 private:
  void add(double t) {
    double u = ZKCubicAt(_along, t) / _end;
    if (_isSegment) {
      const double slack = rounding / _end;
      if (!(u >= -slack && u <= 1 + slack)) return;
      u = std::clamp(u, 0.0, 1.0);
    }
    crossings.insert({t, u, ZKBezier(_points, 3, t, nullptr, nullptr)});
  }

  // All of the curve lies on the infinite line.
  void addShared(NSPoint a, NSPoint b) {
    NSRect range = ZKCurveBounds(
        std::array<NSPoint, 4>{{{_along[0], 0}, {_along[1], 0}, {_along[2], 0}, {_along[3], 0}}}
            .data());
    double low = NSMinX(range);
    double high = NSMaxX(range);
    if (_isSegment) {
      low = std::max(low, 0.0);
      high = std::min(high, _end);
    }
    crossings.setOverlap(high - low > rounding);
    add(0);
    // Both ends of the curve are one, if it is a point.
    if (range.size.width > rounding) add(1);
    if (!_isSegment) return;
    for (const NSPoint end : {a, b}) {
      const double along = end == a ? 0 : _end;
      if (along < NSMinX(range) - rounding || along > NSMaxX(range) + rounding) continue;
      const double t = ZKProjectOnCurve(_points, end).t;
      const bool isKnown = std::ranges::any_of(
          crossings, [=](const ZKCrossing& c) { return std::abs(c.t - t) <= rounding; });
      if (!isKnown) add(t);
    }
  }

  const NSPoint* _points;
  bool _isSegment;
  std::array<NSPoint, 4> _v;
  // How far along the line the control points are, and the line's end.
  std::array<double, 4> _along;
  double _end = 0;
};

}  // namespace

ZKCrossingList<3> ZKCrossingsWithLine(const NSPoint* points, NSPoint a, NSPoint b) {
  return LineCrossings<3>(points, a, b, false).crossings;
}

ZKCrossingList<4> ZKCrossingsWithSegment(const NSPoint* points, NSPoint a, NSPoint b) {
  return LineCrossings<4>(points, a, b, true).crossings;
}
