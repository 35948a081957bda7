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

/// Moves or resizes the selected shapes while the mouse is down. All steps are one change.
class Drag {
 public:
  /// Begins at the pointer, on a handle (`ZKRectHandle`) of the frame around the selection.
  Drag(const NSRef<Drawing>& drawing, NSUInteger handle, NSPoint pointer, const Snapping& snapping);

  /// Goes on at the pointer. A move with `isConstrained` keeps to angles of 45 degrees, a resizing
  /// keeps the proportions; with `fixesCenter` it resizes about the centre. Ends when the drawing
  /// is changed by something else, such as an undo.
  void moveTo(NSPoint pointer, bool isConstrained, bool fixesCenter);
  /// Leaves all as it was before.
  void cancel();

  /// Gives the handle that is under the pointer now.
  NSUInteger handle() const { return _now.handle; }
  /// Gives the guides to which the last step has jumped, by their x and y.
  std::vector<CGFloat> verticalGuides() const;
  std::vector<CGFloat> horizontalGuides() const;

 private:
  NSPoint snapped(NSRect rect);
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
