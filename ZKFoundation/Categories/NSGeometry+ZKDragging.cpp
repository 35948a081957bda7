#include "ZKFoundation/Categories/NSGeometry+ZKDragging.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>

namespace {

// Where a handle stands between the two edges of a direction.
enum class Place { min, middle, max };

struct Places {
  Place x;
  Place y;
};

constexpr std::array<Places, 9> placesOfHandles = {{
    {Place::middle, Place::min},
    {Place::min, Place::middle},
    {Place::middle, Place::max},
    {Place::max, Place::middle},
    {Place::min, Place::min},
    {Place::max, Place::min},
    {Place::max, Place::max},
    {Place::min, Place::max},
    {Place::middle, Place::middle},
}};

NSUInteger handleAt(Places places) {
  const auto found = std::ranges::find_if(placesOfHandles, [&](const Places& other) {
    return other.x == places.x && other.y == places.y;
  });
  return static_cast<NSUInteger>(found - placesOfHandles.begin());
}

// One direction of a drag.
class Direction {
 public:
  Direction(CGFloat origin, CGFloat size, Place place, CGFloat target, bool fixesCenter)
      : _place(place), _start(std::abs(size)), _origin(std::min(origin, origin + size)) {
    const CGFloat middle = origin + size * 0.5;
    const CGFloat dragged = place == Place::min ? origin : origin + size;
    _isCentered = fixesCenter || place == Place::middle;
    _anchor = _isCentered ? middle : place == Place::min ? origin + size : origin;
    if (place == Place::middle) {
      _length = _start;
      return;
    }
    // What is dragged onto the anchor stays on its side.
    const CGFloat side = target != _anchor ? target - _anchor : dragged - _anchor;
    if (side != 0) _place = side < 0 ? Place::min : Place::max;
    _target = target;
    _length = std::abs(target - _anchor) * (_isCentered ? 2 : 1);
  }

  [[nodiscard]] Place place() const { return _place; }
  [[nodiscard]] bool isDragged() const { return _place != Place::middle; }
  [[nodiscard]] CGFloat start() const { return _start; }
  [[nodiscard]] CGFloat length() const { return _length; }
  void setLength(CGFloat length) {
    if (length == _length) return;
    _length = length;
    _target = _anchor + (_place == Place::min ? -length : length) * (_isCentered ? 0.5 : 1);
  }

  [[nodiscard]] CGFloat min() const {
    if (!isDragged() && _length == _start) return _origin;
    if (_isCentered) return _anchor - _length * 0.5;
    return _place == Place::min ? _target : _anchor;
  }

 private:
  Place _place;
  CGFloat _start;
  CGFloat _origin;
  CGFloat _anchor = 0;
  CGFloat _target = 0;
  CGFloat _length = 0;
  bool _isCentered = false;
};

void keepProportions(Direction& x, Direction& y) {
  if (x.start() == 0 && y.start() == 0) {
    const CGFloat length = std::max(x.length(), y.length());
    x.setLength(length);
    y.setLength(length);
    return;
  }
  const auto isMeasure = [](const Direction& direction) {
    return direction.isDragged() && direction.start() != 0;
  };
  if (!isMeasure(x) && !isMeasure(y)) return;
  // By the ratio of both, which is 1 at most: how much a side grows may be beyond all doubles.
  Direction& longer = x.start() < y.start() ? y : x;
  Direction& shorter = x.start() < y.start() ? x : y;
  const CGFloat ratio = shorter.start() / longer.start();
  const CGFloat length = isMeasure(longer) ? longer.length() : 0;
  if (isMeasure(shorter) && shorter.length() > ratio * length) {
    longer.setLength(shorter.length() / ratio);
  } else {
    longer.setLength(length);
    shorter.setLength(ratio * length);
  }
}

// Where a side of that size begins when an end or its middle lies on the nearest guide, and that.
struct SnappedSide {
  CGFloat origin;
  std::optional<CGFloat> guide;
};

SnappedSide snapToGuides(CGFloat origin, CGFloat size, std::span<const CGFloat> guides,
                         CGFloat tolerance) {
  SnappedSide result = {origin, std::nullopt};
  CGFloat least = INFINITY;
  for (const CGFloat guide : guides) {
    for (const CGFloat part : {0.0, 0.5, 1.0}) {
      const CGFloat candidate = guide - part * size;
      const CGFloat distance = std::abs(candidate - origin);
      if (!(distance <= tolerance && distance < least)) continue;
      least = distance;
      result = {candidate, guide};
    }
  }
  return result;
}

struct Side {
  CGFloat origin;
  CGFloat size;
};

Side mapSide(Side side, Side from, Side to) {
  if (from.size == 0) return to;
  return {to.origin + (side.origin - from.origin) / from.size * to.size,
          side.size / from.size * to.size};
}

CGFloat nearestMultiple(CGFloat coordinate, CGFloat spacing, CGFloat origin) {
  if (!(spacing > 0) || !std::isfinite(spacing)) return coordinate;
  const CGFloat count = (coordinate - origin) / spacing;
  // From here on the grid is finer than the coordinates.
  if (!(std::abs(count) < 0x1p52)) return coordinate;
  const CGFloat whole = std::floor(count);
  return origin + (count - whole < 0.5 ? whole : whole + 1) * spacing;
}

ZKSnappedPoint snapped(NSPoint from, NSPoint to) {
  return {to, std::hypot(to.x - from.x, to.y - from.y)};
}

}  // namespace

NSRect ZKMapRect(NSRect rect, NSRect from, NSRect to) {
  const Side x = mapSide({rect.origin.x, rect.size.width}, {from.origin.x, from.size.width},
                         {to.origin.x, to.size.width});
  const Side y = mapSide({rect.origin.y, rect.size.height}, {from.origin.y, from.size.height},
                         {to.origin.y, to.size.height});
  return ZKNormalizedRect({{x.origin, y.origin}, {x.size, y.size}});
}

ZKDraggedRect ZKDragHandle(NSRect rect, NSUInteger handle, NSPoint p, ZKDragOptions options) {
  if (handle >= placesOfHandles.size()) return {rect, handle};
  if (handle == ZKHandleCenter) return {ZKCenterOnPoint(ZKNormalizedRect(rect), p), handle};
  const Places places = placesOfHandles[handle];
  Direction x(rect.origin.x, rect.size.width, places.x, p.x, options.fixesCenter);
  Direction y(rect.origin.y, rect.size.height, places.y, p.y, options.fixesCenter);
  if (options.keepsProportions) keepProportions(x, y);
  return {{{x.min(), y.min()}, {x.length(), y.length()}}, handleAt({x.place(), y.place()})};
}

ZKSnappedPoint ZKSnapVectorToAngle(NSPoint vector, double angle) {
  if (!(angle > 0) || !std::isfinite(angle)) return {vector, 0};
  const double length = std::hypot(vector.x, vector.y);
  const double count = std::round(std::atan2(vector.y, vector.x) / angle);
  if (!std::isfinite(count) || !std::isfinite(length)) return {vector, 0};
  const double turned = count * angle;
  // What rounding leaves of a right angle is no direction.
  const auto clean = [](double value) { return std::abs(value) < 1e-15 ? 0 : value; };
  return snapped(vector, length * NSPoint(clean(std::cos(turned)), clean(std::sin(turned))));
}

ZKSnappedPoint ZKSnapPointToGrid(NSPoint p, NSSize spacing, NSPoint origin) {
  return snapped(p, {nearestMultiple(p.x, spacing.width, origin.x),
                     nearestMultiple(p.y, spacing.height, origin.y)});
}

ZKSnappedPoint ZKSnapPointToGuides(NSPoint p, std::span<const CGFloat> vertical,
                                   std::span<const CGFloat> horizontal, CGFloat tolerance) {
  return ZKSnapRectToGuides({p, NSZeroSize}, vertical, horizontal, tolerance);
}

ZKSnappedPoint ZKSnapRectToGuides(NSRect rect, std::span<const CGFloat> vertical,
                                  std::span<const CGFloat> horizontal, CGFloat tolerance) {
  const auto& [origin, size] = rect;
  const SnappedSide x = snapToGuides(origin.x, size.width, vertical, tolerance);
  const SnappedSide y = snapToGuides(origin.y, size.height, horizontal, tolerance);
  auto result = snapped(origin, {x.origin, y.origin});
  result.verticalGuide = x.guide;
  result.horizontalGuide = y.guide;
  return result;
}
