#include "examples/sketchbook/view/Canvas.h"
#include "examples/sketchbook/view/Painting.h"

#include <map>
#include <numbers>

namespace sketchbook {

namespace {

// In pixels, whatever the scale.
constexpr double reach = 6;
constexpr double leastDrag = 3;
constexpr double leastLineStep = 8;

constexpr double newLineHeight = 24;

Qt::CursorShape cursorOf(NSUInteger handle) {
  const NSPoint side = sideOf(handle);
  if (handle == ZKHandleCenter) return Qt::SizeAllCursor;
  if (side.x == 0) return Qt::SizeVerCursor;
  if (side.y == 0) return Qt::SizeHorCursor;
  return side.x == side.y ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

}  // namespace

std::vector<std::pair<NSUInteger, QPointF>> Canvas::handles() const {
  std::vector<std::pair<NSUInteger, QPointF>> result;
  if (_tool != Tool::select || _drawing->selection()->count() == 0) return result;
  const NSRect frame = _drawing->selectedFrame();
  const double room = 5 * reach / _zoom;
  // Those in corners come first, and those between them only where there is room.
  for (NSUInteger handle = ZKHandleCenter; handle-- > 0;) {
    const NSPoint side = sideOf(handle);
    if (side.x == 0 && frame.size.width < room) continue;
    if (side.y == 0 && frame.size.height < room) continue;
    result.emplace_back(handle, toWidget(ZKGetPointOfRect(handle, frame)));
  }
  return result;
}

std::optional<NSUInteger> Canvas::handleAt(QPointF point) const {
  for (const auto& [handle, at] : handles()) {
    const QPointF away = at - point;
    if (std::abs(away.x()) <= reach && std::abs(away.y()) <= reach) return handle;
  }
  return std::nullopt;
}

NSUInteger Canvas::shapeAt(QPointF point) const {
  return _drawing->indexOfShapeAt(fromWidget(point), reach / _zoom);
}

bool Canvas::hasMoved(QPointF to) const {
  return (to - _now.pressed).manhattanLength() >= leastDrag;
}

void Canvas::showCursor(QPointF at) {
  const auto handle = _now.drag ? _now.drag->handle() : handleAt(at);
  setCursor(_now.isPanning          ? Qt::ClosedHandCursor
            : _tool != Tool::select ? Qt::CrossCursor
            : handle                ? cursorOf(*handle)
                                    : Qt::ArrowCursor);
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  finishEditing();
  _now.pressed = _now.last = event->position();
  const NSPoint point = fromWidget(_now.pressed);
  if (event->button() == Qt::MiddleButton) {
    _now.isPanning = true;
  } else if (event->button() == Qt::RightButton) {
    // The menu is about what is under the pointer.
    pressToSelect(*event);
    stop();
  } else if (_tool == Tool::select) {
    pressToSelect(*event);
  } else if (_tool == Tool::label) {
    const auto label = NSMake<Label>(localized(u"Label"_ns), point, newLineHeight, u""_ns);
    label->colour = colour;
    edit(NSNotFound, label);
  } else {
    const double grid = _tool == Tool::rectangle ? snapping.grid : 0;
    _now.line = {ZKSnapPointToGrid(point, {grid, grid}).point};
  }
  showCursor(_now.pressed);
}

// With Shift a click adds a shape to the selection, with Ctrl it also takes one out.
void Canvas::pressToSelect(const QMouseEvent& event) {
  const bool toggles = (event.modifiers() & Qt::ControlModifier) != 0;
  const bool extends = toggles || (event.modifiers() & Qt::ShiftModifier) != 0;
  const auto handle = handleAt(_now.pressed);
  const NSUInteger index = handle ? NSNotFound : shapeAt(_now.pressed);
  const auto selection = _drawing->selection()->mutableCopy();
  const bool wasSelected = index != NSNotFound && selection->containsIndex(index);
  if (!handle && !extends && !wasSelected) selection->removeAllIndexes();
  if (index != NSNotFound) selection->addIndex(index);
  if (toggles && wasSelected) selection->removeIndex(index);
  if (selection != _drawing->selection()) _drawing->select(selection);
  if (!handle && index == NSNotFound) {
    _now.band = ZKMakeRectFromPoint(fromWidget(_now.pressed));
  } else {
    Snapping near = snapping;
    near.tolerance = reach / _zoom;
    _now.drag.emplace(_drawing, handle.value_or(ZKHandleCenter), fromWidget(_now.pressed), near);
  }
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const NSPoint point = fromWidget(at);
  const ZKDragOptions keys = {.keepsProportions = (event->modifiers() & Qt::ShiftModifier) != 0,
                              .fixesCenter = (event->modifiers() & Qt::AltModifier) != 0};
  if (_now.isPanning) {
    setView(_zoom, _offset + at - _now.last);
  } else if (_now.drag && hasMoved(at)) {
    _now.drag->moveTo(point, keys);
  } else if (!_now.line.empty() && hasMoved(at)) {
    sketch(point, keys);
  } else if (_now.band) {
    _now.band = ZKMakeRectFromTwoPoints(fromWidget(_now.pressed), point);
    update();
  }
  _now.last = at;
  showCursor(at);
}

void Canvas::sketch(NSPoint point, ZKDragOptions keys) {
  if (_tool == Tool::rectangle) {
    const NSPoint corner = ZKSnapPointToGrid(point, {snapping.grid, snapping.grid}).point;
    const NSRect start = ZKMakeRectFromPoint(_now.line[0]);
    const NSRect rect = ZKDragHandle(start, ZKHandleMaxXMaxY, corner, keys).rect;
    _now.sketch =
        NSIsEmptyRect(rect) ? nullptr : NSMake<Rectangle>(localized(u"Rectangle"_ns), rect);
  } else {
    auto points = _now.line;
    if (keys.keepsProportions) {
      points.resize(1);
      point = points[0] + ZKSnapVectorToAngle(point - points[0], std::numbers::pi / 4).point;
    }
    points.push_back(point);
    _now.sketch = NSMake<Path>(localized(u"Path"_ns), points);
    const QPointF step = toWidget(point) - toWidget(_now.line.back());
    if (!keys.keepsProportions && step.manhattanLength() >= leastLineStep) _now.line = points;
  }
  if (_now.sketch) _now.sketch->colour = colour;
  update();
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
  if (_now.sketch) {
    _drawing->add(u"Draw"_ns, NSMake<NSArray>({_now.sketch}));
    _tool = Tool::select;
  } else if (_now.band) {
    const auto selection = _drawing->selection()->mutableCopy();
    const auto shapes = _drawing->shapes();
    for (NSUInteger index = 0; index < shapes->count(); ++index) {
      // Straight lines count, which have no area.
      const NSRect frame = NSInsetRect(shapes[index].as<Shape>()->frame, -0.5, -0.5);
      if (NSIntersectsRect(*_now.band, frame)) selection->addIndex(index);
    }
    _drawing->select(selection);
  } else if (_now.drag && !hasMoved(event->position()) && event->modifiers() == Qt::NoModifier &&
             !handleAt(event->position())) {
    // A click on one of many that is no drag means this one.
    _drawing->select(NSMake<NSIndexSet>(shapeAt(event->position())));
  }
  stop();
  showCursor(event->position());
}

void Canvas::stop() {
  _now = {};
  update();
  onChange();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
  const NSUInteger index = shapeAt(event->position());
  if (index == NSNotFound) return;
  if (const auto label = _drawing->shapes()[index].as<Label>()) edit(index, label);
}

void Canvas::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) != 0) {
    zoomBy(std::pow(1.0015, event->angleDelta().y()), event->position());
  } else {
    setView(_zoom, _offset + QPointF(event->angleDelta()) / 2);
  }
}

void Canvas::keyPressEvent(QKeyEvent* event) {
  static const std::map<int, NSPoint> directions = {{Qt::Key_Left, {-1, 0}},
                                                    {Qt::Key_Right, {1, 0}},
                                                    {Qt::Key_Up, {0, -1}},
                                                    {Qt::Key_Down, {0, 1}}};
  const auto direction = directions.find(event->key());
  if (direction != directions.end()) {
    const NSPoint step = direction->second * std::max(snapping.grid, 1.0);
    _drawing->changeSelected(u"Move"_ns, [=](Shape& shape) { shape.frame += step; });
  } else if (event->key() == Qt::Key_Backspace) {
    _drawing->removeSelected(u"Delete"_ns);
  } else if (event->key() == Qt::Key_Escape) {
    if (_now.drag) _now.drag->cancel();
    stop();
    setTool(Tool::select);
  } else {
    QWidget::keyPressEvent(event);
  }
}

// Lays an editor over the label that looks as it does.
void Canvas::edit(NSUInteger index, const NSRef<Label>& label) {
  finishEditing();
  _edited = index;
  _label = label;
  _editor = new QTextEdit(this);
  _editor->setAccessibleName(inLanguage(u"Label"_ns));
  _editor->setAcceptRichText(false);
  _editor->setLineWrapMode(QTextEdit::NoWrap);
  _editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  _editor->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  _editor->setStyleSheet(QStringLiteral("border: 1px solid #3B82F6; background: white; color: %1")
                             .arg(colourOf(label->colour).name()));
  QFont font = labelFont();
  font.setPixelSize(std::max(1, static_cast<int>(label->fontSize() * _zoom)));
  _editor->setFont(font);
  _editor->document()->setDocumentMargin(0);
  QTextBlockFormat format;
  format.setLineHeight(label->lineHeight() * _zoom, QTextBlockFormat::FixedHeight);
  _editor->textCursor().setBlockFormat(format);
  const auto fit = [editor = _editor] {
    editor->resize((editor->document()->size() + QSizeF(40, 2)).toSize());
  };
  connect(_editor, &QTextEdit::textChanged, _editor, fit);
  _editor->insertPlainText(toQt(label->text()));
  fit();
  const QTextLine line = _editor->document()->firstBlock().layout()->lineAt(0);
  const QPointF above(1, 1 + line.y() + line.ascent() - label->fontSize() * _zoom);
  _editor->move((toWidget(label->frame.origin) - above).toPoint());
  _editor->selectAll();
  _editor->installEventFilter(this);
  _editor->show();
  _editor->setFocus();
  update();
}

bool Canvas::eventFilter(QObject* watched, QEvent* event) {
  const bool isEscape =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
  const bool isLeft = event->type() == QEvent::FocusOut &&
                      static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason;
  if (watched == _editor && (isEscape || isLeft)) finishEditing();
  return isEscape || QWidget::eventFilter(watched, event);
}

void Canvas::finishEditing() {
  // What loses the focus below comes here again.
  auto* const editor = std::exchange(_editor, nullptr);
  if (editor == nullptr) return;
  const auto text = fromQt(editor->toPlainText());
  // Who has clicked elsewhere goes on there.
  if (editor->hasFocus()) setFocus();
  editor->deleteLater();
  if (_edited == NSNotFound && text->length() > 0) {
    _label->setText(text);
    _drawing->add(u"Draw"_ns, NSMake<NSArray>({_label}));
  } else if (_edited != NSNotFound && text != _label->text()) {
    _drawing->select(NSMake<NSIndexSet>(_edited));
    _drawing->changeSelected(u"Edit Text"_ns, [&](Shape& shape) { shape.setText(text); });
  }
  setTool(Tool::select);
}

}  // namespace sketchbook
