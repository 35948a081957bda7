#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/Canvas.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace sketchbook {

namespace {

// In pixels, whatever the scale.
constexpr double reach = 6;
constexpr double leastDrag = 3;
constexpr double leastLineStep = 8;
constexpr double newLineHeight = 24;

}  // namespace

std::optional<NSUInteger> Canvas::handleAt(QPointF point) const {
  if (_drawing->selection()->count() == 0) return std::nullopt;
  const NSRect frame = _drawing->selectedFrame();
  for (NSUInteger handle = ZKHandleCenter; handle-- > 0;) {
    const QPointF away = toWidget(ZKGetPointOfRect(handle, frame)) - point;
    if (std::abs(away.x()) <= reach && std::abs(away.y()) <= reach) return handle;
  }
  return std::nullopt;
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  finishEditing();
  _pressed = _last = event->position();
  _isPanning = event->button() == Qt::MiddleButton;
  if (event->button() != Qt::LeftButton) return;
  const NSPoint point = fromWidget(_pressed);
  switch (_tool) {
    case Tool::select: {
      const auto extending = Qt::ShiftModifier | Qt::ControlModifier;
      return pressToSelect(point, _pressed, (event->modifiers() & extending) != 0);
    }
    case Tool::path:
      _isDrawing = true;
      _line = {point};
      return;
    case Tool::rectangle:
      _isDrawing = true;
      _band = ZKMakeRectFromPoint(ZKSnapPointToGrid(point, {_snapping.grid, _snapping.grid}).point);
      return;
    case Tool::label:
      _edited = NSNotFound;
      return openEditor(point, {});
  }
}

void Canvas::pressToSelect(NSPoint point, QPointF at, bool extends) {
  Snapping snapping = _snapping;
  snapping.tolerance = reach / _zoom;
  if (const auto handle = handleAt(at)) {
    _drag.emplace(_drawing, *handle, point, snapping);
    return;
  }
  const NSUInteger index = _drawing->indexOfShapeAt(point, reach / _zoom);
  if (index == NSNotFound) {
    if (!extends) _drawing->select(NSMake<NSIndexSet>());
    _band = ZKMakeRectFromPoint(point);
    return;
  }
  const auto selection = _drawing->selection()->mutableCopy();
  const bool wasSelected = selection->containsIndex(index);
  if (!extends && !wasSelected) selection->removeAllIndexes();
  if (extends && wasSelected) {
    selection->removeIndex(index);
  } else {
    selection->addIndex(index);
  }
  _drawing->select(selection);
  _drag.emplace(_drawing, ZKHandleCenter, point, snapping);
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const NSPoint point = fromWidget(at);
  const bool isConstrained = (event->modifiers() & Qt::ShiftModifier) != 0;
  const bool fixesCenter = (event->modifiers() & Qt::AltModifier) != 0;
  const bool hasMoved = (at - _pressed).manhattanLength() >= leastDrag;
  if (_isPanning) {
    _offset += at - _last;
  } else if (_drag && hasMoved) {
    _drag->moveTo(point, isConstrained, fixesCenter);
  } else if (_isDrawing && _tool == Tool::path) {
    if ((at - toWidget(_line.back())).manhattanLength() >= leastLineStep) _line.push_back(point);
  } else if (_isDrawing) {
    const NSSize grid(_snapping.grid, _snapping.grid);
    const NSPoint start = ZKSnapPointToGrid(fromWidget(_pressed), grid).point;
    _band = ZKDragHandle(ZKMakeRectFromPoint(start), ZKHandleMaxXMaxY,
                         ZKSnapPointToGrid(point, grid).point,
                         {.keepsProportions = isConstrained, .fixesCenter = fixesCenter})
                .rect;
  } else if (_band) {
    _band = ZKMakeRectFromTwoPoints(fromWidget(_pressed), point);
  }
  _last = at;
  update();
}

void Canvas::mouseReleaseEvent(QMouseEvent* /*event*/) {
  if (_isDrawing) {
    finishShape();
  } else if (_band) {
    const auto selection = _drawing->selection()->mutableCopy();
    const auto shapes = _drawing->shapes();
    for (NSUInteger index = 0; index < shapes->count(); ++index) {
      // Straight lines count, which have no area.
      const NSRect frame = NSInsetRect(shapes[index].as<Shape>()->frame, -0.5, -0.5);
      if (NSIntersectsRect(*_band, frame)) selection->addIndex(index);
    }
    _drawing->select(selection);
  }
  _isPanning = _isDrawing = false;
  _band.reset();
  _drag.reset();
  _line.clear();
  update();
}

void Canvas::finishShape() {
  NSRef<Shape> shape;
  if (_tool == Tool::path && _line.size() >= 2) {
    shape = NSMake<Path>(localized(u"Path"_ns), _line);
  } else if (_tool == Tool::rectangle && !NSIsEmptyRect(*_band)) {
    shape = NSMake<Rectangle>(localized(u"Rectangle"_ns), *_band);
  }
  if (!shape) return;
  shape->colour = colour;
  _drawing->add(u"Draw"_ns, NSMake<NSArray>({shape}));
  setTool(Tool::select);
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
  const NSUInteger index = _drawing->indexOfShapeAt(fromWidget(event->position()), reach / _zoom);
  if (index != NSNotFound) editLabel(index);
}

void Canvas::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) != 0) {
    zoomBy(std::pow(1.0015, event->angleDelta().y()), event->position());
  } else {
    _offset += QPointF(event->angleDelta()) / 2;
    update();
  }
}

void Canvas::keyPressEvent(QKeyEvent* event) {
  const double step = _snapping.grid > 0 ? _snapping.grid : 1;
  const auto nudge = [&](NSPoint vector) {
    _drawing->changeSelected(u"Move"_ns, [=](Shape& shape) { shape.frame += vector; });
  };
  switch (event->key()) {
    case Qt::Key_Left:
      return nudge({-step, 0});
    case Qt::Key_Right:
      return nudge({step, 0});
    case Qt::Key_Up:
      return nudge({0, -step});
    case Qt::Key_Down:
      return nudge({0, step});
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      return _drawing->removeSelected(u"Delete"_ns);
    case Qt::Key_Escape:
      if (_drag) _drag->cancel();
      _drag.reset();
      _band.reset();
      _isDrawing = false;
      _line.clear();
      return setTool(Tool::select);
    default:
      return QWidget::keyPressEvent(event);
  }
}

void Canvas::editLabel(NSUInteger index) {
  finishEditing();
  const auto shape = _drawing->shapes()[index].as<Shape>();
  if (!shape->text()) return;
  _edited = index;
  openEditor(shape->frame.origin, toQt(shape->text()));
}

void Canvas::openEditor(NSPoint origin, const QString& text) {
  _editedAt = origin;
  _editor = new QPlainTextEdit(text, this);
  QFont font = _editor->font();
  font.setPixelSize(static_cast<int>(newLineHeight * 0.75));
  _editor->setFont(font);
  _editor->setGeometry(QRect(toWidget(origin).toPoint(), QSize(240, 80)));
  _editor->installEventFilter(this);
  _editor->selectAll();
  _editor->show();
  _editor->setFocus();
  update();
}

bool Canvas::eventFilter(QObject* watched, QEvent* event) {
  const bool isEscape =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
  if (watched == _editor && (isEscape || event->type() == QEvent::FocusOut)) {
    finishEditing();
    return isEscape;
  }
  return QWidget::eventFilter(watched, event);
}

void Canvas::finishEditing() {
  if (_editor == nullptr) return;
  const auto text = fromQt(_editor->toPlainText());
  // Who has clicked elsewhere goes on there.
  if (_editor->hasFocus()) setFocus();
  std::exchange(_editor, nullptr)->deleteLater();
  if (_edited != NSNotFound && _edited < _drawing->shapes()->count()) {
    if (_drawing->shapes()[_edited].as<Shape>()->text() != text) {
      _drawing->select(NSMake<NSIndexSet>(_edited));
      _drawing->changeSelected(u"Edit Text"_ns, [&](Shape& shape) { shape.setText(text); });
    }
  } else if (text->length() > 0) {
    const auto label = NSMake<Label>(localized(u"Label"_ns), _editedAt, newLineHeight, text);
    label->colour = colour;
    _drawing->add(u"Draw"_ns, NSMake<NSArray>({label}));
  }
  setTool(Tool::select);
  update();
}

}  // namespace sketchbook
