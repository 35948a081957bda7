#pragma once

#include "examples/sketchbook/model/Drag.h"
#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

enum class Tool { select, rectangle, path, label };

/// Shows a drawing and lets people draw in it. What they do becomes changes of the drawing; the
/// canvas itself keeps only what is being done at the moment.
class Canvas : public QWidget {
 public:
  explicit Canvas(const NSRef<Drawing>& drawing);

  /// Is told when the tool or the scale has changed.
  std::function<void()> onChange = [] {};
  Snapping snapping{.grid = 10, .usesGuides = true};
  /// New shapes get it.
  NSInteger colour = 0x2B6CB0;

  Tool tool() const { return _tool; }
  void setTool(Tool tool);
  double zoom() const { return _zoom; }
  /// Enlarges about a point of the widget.
  void zoomBy(double factor, QPointF about);
  void zoomBy(double factor) { zoomBy(factor, rect().center()); }
  /// Shows the origin of the sheet in its actual size.
  void showOrigin() { setView(1, {}); }
  /// Shows all of the drawing, or the origin when there is nothing.
  void zoomToFit();
  /// Brings what is selected into view, where it is not.
  void showSelection();

  /// Tells where a point of the sheet is shown.
  QPointF toWidget(NSPoint point) const;
  void finishEditing();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override { showCursor(event->position()); }
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  NSPoint fromWidget(QPointF point) const;
  NSRect shownArea() const;
  void setView(double zoom, QPointF offset);
  void paintSelection(QPainter& painter) const;

  std::vector<std::pair<NSUInteger, QPointF>> handles() const;
  std::optional<NSUInteger> handleAt(QPointF point) const;
  NSUInteger shapeAt(QPointF point) const;
  bool hasMoved(QPointF to) const;
  void showCursor(QPointF at);
  void pressToSelect(const QMouseEvent& event);
  void sketch(NSPoint point, ZKDragOptions keys);
  void stop();
  void edit(NSUInteger index, const NSRef<Label>& label);

  NSRef<Drawing> _drawing;
  Tool _tool = Tool::select;
  double _zoom = 1;
  QPointF _offset;

  // While a button is down: what is dragged, or drawn through the points, or the area to select.
  struct Gesture {
    QPointF pressed;
    QPointF last;
    bool isPanning = false;
    std::optional<Drag> drag;
    std::optional<NSRect> band;
    std::vector<NSPoint> line;
    NSRef<Shape> sketch;
  };
  Gesture _now;

  // The label that is being edited, at the index or a new one.
  QTextEdit* _editor = nullptr;
  NSUInteger _edited = NSNotFound;
  NSRef<Label> _label;
  const NSObservation _observation{DrawingDidChange(), _drawing, [this] { update(); }};
};

}  // namespace sketchbook
