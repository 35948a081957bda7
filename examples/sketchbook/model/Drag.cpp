#include "examples/sketchbook/model/Drag.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace sketchbook {

namespace {

// Where a coordinate of a frame goes when the frame becomes another one.
double mapped(double value, double start, double length, double newStart, double newLength,
              bool isFlipped) {
  const double part = length > 0 ? (value - start) / length : 0.5;
  return newStart + (isFlipped ? 1 - part : part) * newLength;
}

NSRect mapped(NSRect frame, NSRect from, NSRect to, bool flipsX, bool flipsY) {
  const auto corner = [&](NSPoint point) {
    return NSPoint(
        mapped(point.x, NSMinX(from), from.size.width, NSMinX(to), to.size.width, flipsX),
        mapped(point.y, NSMinY(from), from.size.height, NSMinY(to), to.size.height, flipsY));
  };
  return ZKMakeRectFromTwoPoints(corner(frame.origin), corner({NSMaxX(frame), NSMaxY(frame)}));
}

constexpr NSRect unit = {{-1, -1}, {2, 2}};

}  // namespace

Drag::Drag(const NSRef<Drawing>& drawing, NSUInteger handle, NSPoint pointer,
           const Snapping& snapping)
    : _drawing(drawing),
      _shapes(drawing->shapes()),
      _current(_shapes),
      _handle(handle),
      _pointer(pointer),
      _snapping(snapping),
      _frame(drawing->selectedFrame()),
      _now{_frame, handle} {
  if (!snapping.usesGuides) return;
  for (NSUInteger index = 0; index < _shapes->count(); ++index) {
    if (drawing->selection()->containsIndex(index)) continue;
    const NSRect frame = _shapes[index].as<Shape>()->frame;
    _vertical.insert(_vertical.end(), {NSMinX(frame), NSMidX(frame), NSMaxX(frame)});
    _horizontal.insert(_horizontal.end(), {NSMinY(frame), NSMidY(frame), NSMaxY(frame)});
  }
}

NSPoint Drag::snapped(NSPoint point) const {
  const auto onGrid = ZKSnapPointToGrid(point, {_snapping.grid, _snapping.grid}).point;
  return ZKSnapPointToGuides(onGrid, _vertical, _horizontal, _snapping.tolerance).point;
}

NSRect Drag::moved(NSPoint vector) const {
  const NSRect frame = _frame + vector;
  const auto onGrid = ZKSnapPointToGrid(frame.origin, {_snapping.grid, _snapping.grid}).point;
  return {
      ZKSnapRectToGuides({onGrid, frame.size}, _vertical, _horizontal, _snapping.tolerance).point,
      frame.size};
}

void Drag::moveTo(NSPoint pointer, bool isConstrained, bool fixesCenter) {
  const NSPoint vector = pointer - _pointer;
  if (_handle == ZKHandleCenter) {
    // Off the angle it would be of no use to lie on a guide.
    _now.rect = isConstrained ? _frame + ZKSnapVectorToAngle(vector, std::numbers::pi / 4).point
                              : moved(vector);
  } else {
    const NSPoint target = snapped(ZKGetPointOfRect(_handle, _frame) + vector);
    _now = ZKDragHandle(_frame, _handle, target,
                        {.keepsProportions = isConstrained, .fixesCenter = fixesCenter});
  }
  showGuides();
  apply();
}

void Drag::apply() {
  if (_drawing->selection()->count() == 0 || !_drawing->shapes().is(_current)) return;
  const NSPoint before = ZKGetPointOfRect(_handle, unit);
  const NSPoint after = ZKGetPointOfRect(_now.handle, unit);
  const bool flipsX = before.x * after.x < 0;
  const bool flipsY = before.y * after.y < 0;
  const auto shapes = changedShapes(_shapes, _drawing->selection(), [&](Shape& shape) {
    shape.frame = mapped(shape.frame, _frame, _now.rect, flipsX, flipsY);
    shape.flip(flipsX, flipsY);
  });
  const bool hasMoved = !_current.is(_shapes);
  _current = shapes;
  if (hasMoved) return _drawing->amend(shapes);
  _drawing->perform(_handle == ZKHandleCenter ? u"Move"_ns : u"Resize"_ns, shapes,
                    _drawing->selection());
}

void Drag::showGuides() {
  const NSRect rect = _now.rect;
  const auto lying = [](const std::vector<CGFloat>& guides, std::initializer_list<double> places) {
    std::vector<CGFloat> result;
    std::ranges::copy_if(guides, std::back_inserter(result), [&](CGFloat guide) {
      return std::ranges::any_of(places,
                                 [&](double place) { return std::abs(place - guide) < 1e-6; });
    });
    return result;
  };
  _shownVertical = lying(_vertical, {NSMinX(rect), NSMidX(rect), NSMaxX(rect)});
  _shownHorizontal = lying(_horizontal, {NSMinY(rect), NSMidY(rect), NSMaxY(rect)});
}

void Drag::cancel() {
  if (_current.is(_shapes) || !_drawing->shapes().is(_current)) return;
  _current = _shapes;
  _drawing->revoke();
}

}  // namespace sketchbook
