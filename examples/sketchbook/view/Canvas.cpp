#include "examples/sketchbook/view/Canvas.h"

#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/Painting.h"

#include <QPainter>
#include <cmath>

namespace sketchbook {

Canvas::Canvas(const NSRef<Drawing>& drawing) : _drawing(drawing) {
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(320, 240);
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {center, center->addObserverForName_object_queue_usingBlock(
                              DrawingDidChange(), drawing, nullptr, [this] { update(); })};
}

void Canvas::setTool(Tool tool) {
  finishEditing();
  _tool = tool;
  setCursor(tool == Tool::select ? Qt::ArrowCursor : Qt::CrossCursor);
  if (onToolChange) onToolChange(tool);
}

NSPoint Canvas::fromWidget(QPointF point) const { return fromQt((point - _offset) / _zoom); }
QPointF Canvas::toWidget(NSPoint point) const { return toQt(point) * _zoom + _offset; }

void Canvas::zoomBy(double factor, QPointF about) {
  const NSPoint fixed = fromWidget(about);
  _zoom = std::clamp(_zoom * factor, 0.05, 40.0);
  _offset += about - toWidget(fixed);
  update();
}

void Canvas::zoomToFit() {
  finishEditing();
  _zoom = 1;
  _offset = {};
  if (_drawing->shapes()->count() > 0) {
    const NSRect area = pictureArea(_drawing->shapes());
    const NSRect shown = ZKScaleRectToFitInRect(
        ZKScaleProportionallyDown, ZKAlignCenter, area,
        {{0, 0}, {static_cast<CGFloat>(width()), static_cast<CGFloat>(height())}});
    _zoom = shown.size.width / area.size.width;
    _offset = toQt(shown.origin - area.origin * _zoom);
  }
  update();
}

void Canvas::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  painter.translate(_offset);
  painter.scale(_zoom, _zoom);
  paintGrid(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto shapes = _drawing->shapes();
  for (NSUInteger index = 0; index < shapes->count(); ++index) {
    const bool isCovered = _editor != nullptr && index == _edited;
    if (!isCovered) paintShape(painter, *shapes[index].as<Shape>());
  }
  paintSelection(painter);
}

void Canvas::paintGrid(QPainter& painter) const {
  const double step = _snapping.grid;
  if (step * _zoom < 4) return;
  painter.setPen(QPen(QColor(0xEE, 0xF1, 0xF5), 0));
  const NSPoint first = fromWidget({0, 0}) / step;
  const NSPoint last = fromWidget({double(width()), double(height())}) / step;
  for (int column = static_cast<int>(std::ceil(first.x)); column < last.x; ++column) {
    const double x = column * step;
    painter.drawLine(QPointF(x, first.y * step), QPointF(x, last.y * step));
  }
  for (int row = static_cast<int>(std::ceil(first.y)); row < last.y; ++row) {
    const double y = row * step;
    painter.drawLine(QPointF(first.x * step, y), QPointF(last.x * step, y));
  }
}

void Canvas::paintSelection(QPainter& painter) const {
  const QPen thin(QColor(0x3B, 0x82, 0xF6), 0);
  painter.setPen(thin);
  painter.setBrush(Qt::NoBrush);
  if (_band) painter.drawRect(toQt(*_band));
  for (std::size_t k = 1; k < _line.size(); ++k) {
    painter.drawLine(toQt(_line[k - 1]), toQt(_line[k]));
  }
  if (_drag) {
    painter.setPen(QPen(QColor(0xE1, 0x1D, 0x48), 0));
    constexpr double far = 1e6;
    for (const double x : _drag->verticalGuides()) painter.drawLine(QPointF(x, -far), {x, far});
    for (const double y : _drag->horizontalGuides()) painter.drawLine(QPointF(-far, y), {far, y});
    painter.setPen(thin);
  }
  if (_drawing->selection()->count() == 0) return;
  const NSRect frame = _drawing->selectedFrame();
  painter.drawRect(toQt(frame));
  painter.setBrush(Qt::white);
  const double half = 4 / _zoom;
  for (NSUInteger handle = 0; handle < ZKHandleCenter; ++handle) {
    const NSPoint at = ZKGetPointOfRect(handle, frame);
    painter.drawRect(toQt(NSRect(at - NSPoint(half, half), {2 * half, 2 * half})));
  }
}

}  // namespace sketchbook
