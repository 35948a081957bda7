#include "examples/sketchbook/view/Canvas.h"

#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/view/Painting.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sketchbook {

namespace {

const QColor gridColour(0xEE, 0xF1, 0xF5);
const QColor selectionColour(0x3B, 0x82, 0xF6);
const QColor guideColour(0xE1, 0x1D, 0x48);
const QColor hintColour(0x6B, 0x72, 0x80);

// A line over all of the area, at an x or y.
void drawVertical(QPainter& painter, double x, NSRect area) {
  painter.drawLine(QPointF(x, NSMinY(area)), QPointF(x, NSMaxY(area)));
}
void drawHorizontal(QPainter& painter, double y, NSRect area) {
  painter.drawLine(QPointF(NSMinX(area), y), QPointF(NSMaxX(area), y));
}

// The multiples of the step between two coordinates.
std::vector<double> gridLines(double step, double from, double to) {
  const double first = std::ceil(from / step) * step;
  std::vector<double> lines(
      static_cast<std::size_t>(std::max(0.0, std::ceil((to - first) / step))));
  for (std::size_t k = 0; k < lines.size(); ++k) lines[k] = first + static_cast<double>(k) * step;
  return lines;
}

}  // namespace

Canvas::Canvas(const NSRef<Drawing>& drawing) : _drawing(drawing) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setMinimumSize(320, 240);
  setAccessibleName(inLanguage(u"Drawing"_ns));
}

void Canvas::setTool(Tool tool) {
  finishEditing();
  _tool = tool;
  showCursor(mapFromGlobal(QCursor::pos()));
  update();
  onChange();
}

NSPoint Canvas::fromWidget(QPointF point) const { return fromQt((point - _offset) / _zoom); }
QPointF Canvas::toWidget(NSPoint point) const { return toQt(point) * _zoom + _offset; }

NSRect Canvas::shownArea() const {
  return ZKMakeRectFromTwoPoints(fromWidget({}), fromWidget(rect().bottomRight()));
}

void Canvas::setView(double zoom, QPointF offset) {
  finishEditing();
  _zoom = zoom;
  _offset = offset;
  update();
  onChange();
}

void Canvas::zoomBy(double factor, QPointF about) {
  const double zoom = std::clamp(_zoom * factor, 0.05, 40.0);
  setView(zoom, about - toQt(fromWidget(about)) * zoom);
}

void Canvas::zoomToFit() {
  if (_drawing->shapes()->count() == 0) return showOrigin();
  const NSRect area = pictureArea(_drawing->shapes());
  const NSRect shown = ZKScaleRectToFitInRect(ZKScaleProportionallyDown, ZKAlignCenter, area,
                                              {{0, 0}, {double(width()), double(height())}});
  const double zoom = shown.size.width / area.size.width;
  setView(zoom, toQt(shown.origin - area.origin * zoom));
}

void Canvas::showSelection() {
  const NSRect frame = _drawing->selectedFrame();
  if (NSContainsRect(shownArea(), frame)) return;
  const NSPoint middle = {NSMidX(frame), NSMidY(frame)};
  setView(_zoom, QPointF(rect().center()) - toQt(middle) * _zoom);
}

void Canvas::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  painter.translate(_offset);
  painter.scale(_zoom, _zoom);
  const NSRect shown = shownArea();
  if (const double step = snapping.grid; step * _zoom >= 4) {
    painter.setPen(QPen(gridColour, 0));
    for (const double x : gridLines(step, NSMinX(shown), NSMaxX(shown))) {
      drawVertical(painter, x, shown);
    }
    for (const double y : gridLines(step, NSMinY(shown), NSMaxY(shown))) {
      drawHorizontal(painter, y, shown);
    }
  }
  painter.setRenderHint(QPainter::Antialiasing);
  const auto shapes = _drawing->shapes();
  for (NSUInteger index = 0; index < shapes->count(); ++index) {
    const auto& shape = *shapes[index].as<Shape>();
    const bool isCovered = _editor != nullptr && index == _edited;
    const NSRect area = NSInsetRect(shape.frame, -Shape::lineWidth, -Shape::lineWidth);
    if (!isCovered && NSIntersectsRect(area, shown)) paintShape(painter, shape);
  }
  if (_now.sketch) paintShape(painter, *_now.sketch);
  if (_editor == nullptr) paintSelection(painter);
}

// In thin lines at any scale.
void Canvas::paintSelection(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(guideColour, 0));
  if (_now.drag) {
    const auto& [point, distance, x, y] = _now.drag->snapped();
    if (x) drawVertical(painter, *x, shownArea());
    if (y) drawHorizontal(painter, *y, shownArea());
  }
  painter.setPen(QPen(selectionColour, 0));
  if (_now.band) painter.drawRect(toQt(*_now.band));
  const auto places = handles();
  if (!places.empty()) {
    painter.drawRect(toQt(_drawing->selectedFrame()));
    painter.setPen(QPen(selectionColour, 0, Qt::DotLine));
    for (const auto& shape : _drawing->selectedShapes()->each<Shape>()) {
      painter.drawRect(toQt(NSInsetRect(shape->frame, -3 / _zoom, -3 / _zoom)));
    }
  }
  painter.resetTransform();
  painter.setPen(selectionColour);
  painter.setBrush(Qt::white);
  for (const auto& [handle, at] : places)
    painter.drawRect(QRectF(at - QPointF(4, 4), QSizeF(8, 8)));
  if (_drawing->shapes()->count() == 0 && !_now.sketch) {
    painter.setPen(hintColour);
    painter.drawText(rect(), Qt::AlignCenter,
                     inLanguage(u"Take a tool above, or press R, P or T, and draw."_ns));
  }
}

}  // namespace sketchbook
