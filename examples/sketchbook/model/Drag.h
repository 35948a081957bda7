#pragma once

#include "examples/sketchbook/model/Drawing.h"

#include <vector>

namespace sketchbook {

/// What things snap to while they are dragged.
struct Snapping {
  /// The distance of the lines of a grid; 0 without one.
  double grid = 0;
  /// Whether the edges and centres of the other shapes are guides.
  bool usesGuides = false;
  /// How far something jumps to a guide.
  double tolerance = 6;
};

/// Tells where a handle (`ZKRectHandle`) is between the edges: -1, 0 or 1 in each direction.
NSPoint sideOf(NSUInteger handle);

/// Moves or resizes the selected shapes while the mouse is down. All steps are one change.
class Drag {
 public:
  /// Begins at the pointer, on a handle of the frame around the selection.
  Drag(const NSRef<Drawing>& drawing, NSUInteger handle, NSPoint pointer, const Snapping& snapping);

  /// Goes on at the pointer. A move that keeps proportions keeps to angles of 45 degrees. Ends when
  /// the drawing is changed by something else, such as an undo.
  void moveTo(NSPoint pointer, ZKDragOptions options = {});
  /// Leaves all as it was before.
  void cancel();

  /// Gives the handle that is under the pointer now.
  NSUInteger handle() const { return _now.handle; }
  /// Tells where the last step has snapped to, and to which guides.
  const ZKSnappedPoint& snapped() const { return _snapped; }

 private:
  NSPoint snap(NSRect rect);
  void apply();

  NSRef<Drawing> _drawing;
  // Those at the beginning, and what they have become.
  NSRef<NSArray> _shapes;
  NSRef<NSArray> _current;
  NSUInteger _handle;
  NSPoint _pointer;
  Snapping _snapping;
  NSRect _frame;
  ZKDraggedRect _now;
  std::vector<CGFloat> _vertical, _horizontal;
  ZKSnappedPoint _snapped{};
};

}  // namespace sketchbook
