#include "examples/sketchbook/model/Drag.h"

#include <numbers>

namespace sketchbook {

NSPoint sideOf(NSUInteger handle) { return ZKGetPointOfRect(handle, {{-1, -1}, {2, 2}}); }

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
  for (const auto& shape : drawing->otherShapes()->each<Shape>()) {
    const NSRect frame = shape->frame;
    _vertical.insert(_vertical.end(), {NSMinX(frame), NSMidX(frame), NSMaxX(frame)});
    _horizontal.insert(_horizontal.end(), {NSMinY(frame), NSMidY(frame), NSMaxY(frame)});
  }
  // The middle of an edge moves in one direction alone.
  if (handle != ZKHandleCenter && sideOf(handle).x == 0) _vertical.clear();
  if (handle != ZKHandleCenter && sideOf(handle).y == 0) _horizontal.clear();
}

NSPoint Drag::snap(NSRect rect) {
  rect.origin = ZKSnapPointToGrid(rect.origin, {_snapping.grid, _snapping.grid}).point;
  _snapped = ZKSnapRectToGuides(rect, _vertical, _horizontal, _snapping.tolerance);
  return _snapped.point;
}

void Drag::moveTo(NSPoint pointer, ZKDragOptions options) {
  const NSPoint vector = pointer - _pointer;
  if (_handle != ZKHandleCenter) {
    const NSPoint target = ZKGetPointOfRect(_handle, _frame) + vector;
    _now = ZKDragHandle(_frame, _handle, snap(ZKMakeRectFromPoint(target)), options);
  } else if (options.keepsProportions) {
    // Off the angle it would be of no use to lie on a guide.
    _snapped = ZKSnapVectorToAngle(vector, std::numbers::pi / 4);
    _now.rect = _frame + _snapped.point;
  } else {
    _now.rect.origin = snap(_frame + vector);
  }
  apply();
}

void Drag::apply() {
  if (_drawing->selection()->count() == 0 || !_drawing->shapes().is(_current)) return;
  // A handle on another side than before has turned what is inside. A line without width or height
  // becomes the diagonal that ends at the handle.
  const NSPoint before = sideOf(_handle), after = sideOf(_now.handle);
  const bool flipsX = after.x * (_frame.size.width > 0 ? before.x : before.y) < 0;
  const bool flipsY = after.y * (_frame.size.height > 0 ? before.y : before.x) < 0;
  NSRect to = _now.rect;
  if (flipsX) to = {{NSMaxX(to), to.origin.y}, {-to.size.width, to.size.height}};
  if (flipsY) to = {{to.origin.x, NSMaxY(to)}, {to.size.width, -to.size.height}};
  const auto shapes = changedShapes(_shapes, _drawing->selection(), [&](Shape& shape) {
    shape.frame = ZKMapRect(shape.frame, _frame, to);
    shape.flip(flipsX, flipsY);
  });
  const bool hasMoved = !_current.is(_shapes);
  _current = shapes;
  if (hasMoved) return _drawing->amend(shapes);
  _drawing->perform(_handle == ZKHandleCenter ? u"Move"_ns : u"Resize"_ns, shapes,
                    _drawing->selection());
}

void Drag::cancel() {
  if (_current.is(_shapes) || !_drawing->shapes().is(_current)) return;
  _current = _shapes;
  _drawing->revoke();
}

}  // namespace sketchbook
