#pragma once

#include "examples/sketchbook/model/Shape.h"

#include <utility>
#include <vector>

namespace sketchbook {

/// Posted when shapes, selection or what goes with them have changed, once for all changes of a
/// pass.
const NSRef<NSString>& DrawingDidChange();

/// A line along which shapes are aligned, or a direction in which they are distributed.
enum class Alignment { left, center, right, top, middle, bottom };

/// Shapes, from the back to the front, and which of them are selected. Every change goes through
/// `perform`, which keeps what was there before: a state is an array, and arrays share the shapes
/// in which they do not differ.
class Drawing : public NSObject {
 public:
  Drawing() = default;

  NSRef<NSArray> shapes() const { return _state.shapes; }
  NSRef<NSIndexSet> selection() const { return _state.selection; }
  NSRef<NSArray> selectedShapes() const;
  /// Gives an array of its own of those that are not selected.
  NSRef<NSMutableArray> otherShapes() const;
  /// Gives the index of the shape in front at the point, or `NSNotFound`.
  NSUInteger indexOfShapeAt(NSPoint point, double tolerance) const;
  /// Gives the frame around all selected shapes.
  NSRect selectedFrame() const;

  /// Selecting is no change of the drawing and is not undone.
  void select(const NSRef<NSIndexSet>& indexes);
  void selectAll() { select(NSMake<NSIndexSet>(NSRange{0, _state.shapes->count()})); }
  /// Opens another drawing's shapes, without a past.
  void setShapes(const NSRef<NSArray>& shapes);

  /// Changes copies of the selected shapes. The text names the change in the menu.
  void changeSelected(const NSRef<NSString>& action, const std::function<void(Shape&)>& change);
  /// Takes the last change back for good.
  void revoke();
  /// Does the last change in another way, as each step of a drag does. The shapes are selected.
  void amend(const NSRef<NSArray>& shapes);
  /// Makes other shapes and selection those of the drawing.
  void perform(const NSRef<NSString>& action, const NSRef<NSArray>& shapes,
               const NSRef<NSIndexSet>& selection);

  /// Adds shapes in front, under names that are free, and selects them.
  void add(const NSRef<NSString>& action, const NSRef<NSArray>& shapes);
  /// Renames the selected shapes; a name that is taken gets a number.
  void rename(const NSRef<NSString>& name);
  void removeSelected(const NSRef<NSString>& action);
  void bringToFront();
  void align(Alignment alignment);
  /// Makes equal the gaps between three selected shapes or more; the outer ones stay.
  void distribute(bool vertically);
  void duplicate();
  /// Gives the selected shapes as bytes; nil when there are none.
  NSRef<NSData> copiedData() const;
  /// Adds the shapes of the bytes, aside of those that they come from. False, and the reason, for
  /// bytes that hold none.
  bool paste(const NSRef<NSData>& data, NSRef<NSError>* error);

  /// Tells of a change that what goes with the drawing has.
  void noteChange();

  void undo() { step(_past, _future); }
  void redo() { step(_future, _past); }
  /// Names what `undo` and `redo` would do; nil when there is nothing.
  NSRef<NSString> undoAction() const { return _past.empty() ? nullptr : _past.back().action; }
  NSRef<NSString> redoAction() const { return _future.empty() ? nullptr : _future.back().action; }

 private:
  struct State {
    NSRef<NSArray> shapes = NSMake<NSArray>();
    NSRef<NSIndexSet> selection = NSMake<NSIndexSet>();
    // What leads from this state to the next one, or back.
    NSRef<NSString> action;
  };

  void step(std::vector<State>& from, std::vector<State>& to);

  State _state;
  std::vector<State> _past;
  std::vector<State> _future;
};

}  // namespace sketchbook
