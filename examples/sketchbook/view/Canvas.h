#pragma once

#include "examples/sketchbook/model/Drag.h"
#include "examples/sketchbook/model/Drawing.h"

#include <QPlainTextEdit>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

namespace sketchbook {

enum class Tool { select, rectangle, path, label };

/// Shows a drawing and lets people draw in it. What they do becomes changes of the drawing; the
/// canvas itself keeps only what is being done at the moment.
class Canvas : public QWidget {
 public:
  explicit Canvas(const NSRef<Drawing>& drawing);

  void setTool(Tool tool);
  /// Is told when the canvas has gone back to another tool.
  std::function<void(Tool)> onToolChange;

  const Snapping& snapping() const { return _snapping; }
  void setSnapping(const Snapping& snapping) { _snapping = snapping; }
  /// Gives the colour that new shapes get.
  NSInteger colour = 0x2B6CB0;

  /// Enlarges about a point of the widget.
  void zoomBy(double factor, QPointF about);
  void zoomBy(double factor) { zoomBy(factor, rect().center()); }
  /// Shows all of the drawing, or its origin in actual size when there is nothing.
  void zoomToFit();

  /// Tells where a point of the sheet is shown.
  QPointF toWidget(NSPoint point) const;

  /// Edits the text of the label at the index.
  void editLabel(NSUInteger index);
  void finishEditing();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  NSPoint fromWidget(QPointF point) const;
  std::optional<NSUInteger> handleAt(QPointF point) const;
  void pressToSelect(NSPoint point, QPointF at, bool extends);
  void finishShape();
  void openEditor(NSPoint origin, const QString& text);
  void paintGrid(QPainter& painter) const;
  void paintSelection(QPainter& painter) const;

  NSRef<Drawing> _drawing;
  Tool _tool = Tool::select;
  Snapping _snapping{.grid = 10, .usesGuides = true};
  double _zoom = 1;
  QPointF _offset;

  // While a button is down.
  QPointF _pressed;
  QPointF _last;
  bool _isPanning = false;
  bool _isDrawing = false;
  std::optional<NSRect> _band;
  std::optional<Drag> _drag;
  std::vector<NSPoint> _line;

  // The text that is being edited: of the label at the index, or of a new one.
  QPlainTextEdit* _editor = nullptr;
  NSUInteger _edited = NSNotFound;
  NSPoint _editedAt = NSZeroPoint;
  NSObservation _observation;
};

}  // namespace sketchbook
