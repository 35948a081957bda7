#include "examples/sketchbook/view/MainWindow.h"
#include "examples/sketchbook/view/Painting.h"

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

NSRef<NSData> svgData(const NSRef<NSArray>& shapes, const Progress& progress) {
  const auto picture = svgPicture(shapes, progress);
  return picture ? NSMake<NSData>(picture->utf8()) : nullptr;
}

NSRef<NSData> pngData(const NSRef<NSArray>& shapes, const Progress& progress) {
  QBuffer buffer;
  const QImage picture = pictureOfShapes(shapes, progress);
  if (picture.isNull() || !picture.save(&buffer, "PNG")) return nullptr;
  return NSMake<NSData>(buffer.data().toStdString());
}

// A line of 20 units, or an area within one.
QIcon iconOf(const QPolygonF& picture, const QColor& line, const QBrush& inside = Qt::NoBrush) {
  QPixmap pixmap(40, 40);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(2, 2);
  painter.setPen(QPen(line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(inside);
  QPainterPath path;
  path.addPolygon(picture);
  painter.drawPath(path);
  return {pixmap};
}

}  // namespace

QMenu* MainWindow::makeMenu(const NSRef<NSString>& title, std::initializer_list<Item> items) {
  auto* const menu = menuBar()->addMenu(inLanguage(title));
  for (const auto& [text, keys, action, least, isSwitch] : items) {
    if (!text) {
      menu->addSeparator();
      continue;
    }
    auto* const item = menu->addAction(inLanguage(text));
    item->setShortcut(keys);
    item->setData(qulonglong(least));
    item->setCheckable(isSwitch);
    item->setChecked(isSwitch);
    connect(item, &QAction::triggered, this, [this, action = action] {
      // What is being typed is part of what the command means.
      _canvas->finishEditing();
      action();
    });
    _items[text] = item;
  }
  return menu;
}

void MainWindow::makeMenus() {
  const auto& drawing = _document->drawing();
  makeMenu(
      u"File"_ns,
      {
          {u"New"_ns, QKeySequence::New, [] { showWindow(NSMake<Document>(recoveryFolder())); }},
          {u"Open…"_ns, QKeySequence::Open, [this] { open(); }},
          {},
          {u"Save"_ns, QKeySequence::Save, [this] { save(); }},
          {u"Save As…"_ns, QKeySequence::SaveAs, [this] { saveAs(); }},
          {u"Attach File…"_ns, {}, [this] { attach(); }},
          {},
          {u"Export SVG…"_ns, {}, [this] { exportTo(u"Exporting SVG"_ns, ".svg", &svgData); }},
          {u"Export PNG…"_ns, {}, [this] { exportTo(u"Exporting PNG"_ns, ".png", &pngData); }},
          {},
          {u"Close"_ns, QKeySequence::Close, [this] { close(); }},
          {u"Quit"_ns, Qt::CTRL | Qt::Key_Q, [] { QApplication::closeAllWindows(); }},
      });
  const auto edit = [&](const NSRef<NSString>& name, auto change) -> Item {
    const auto apply = [change](Shape& shape) {
      if (const auto old = shape.text()) shape.setText(change(old));
    };
    return {name, {}, [=] { drawing->changeSelected(name, apply); }, 1};
  };
  auto* const editMenu = makeMenu(
      u"Edit"_ns,
      {
          {u"Undo"_ns, QKeySequence::Undo, [drawing] { drawing->undo(); }},
          {u"Redo"_ns, QKeySequence::Redo, [drawing] { drawing->redo(); }},
          {},
          {u"Cut"_ns, QKeySequence::Cut,
           [this, drawing] { copy(), drawing->removeSelected(u"Cut"_ns); }, 1},
          {u"Copy"_ns, QKeySequence::Copy, [this] { copy(); }, 1},
          {u"Paste"_ns, QKeySequence::Paste, [this] { paste(); }},
          {u"Duplicate"_ns, Qt::CTRL | Qt::Key_D, [drawing] { drawing->duplicate(); }, 1},
          {u"Delete"_ns, Qt::Key_Delete, [drawing] { drawing->removeSelected(u"Delete"_ns); }, 1},
          {u"Select All"_ns, QKeySequence::SelectAll, [drawing] { drawing->selectAll(); }},
          {},
          edit(u"Title Case"_ns, &titlecaseString),
          edit(u"Quote"_ns, &quoted),
          {},
          {u"Find…"_ns, QKeySequence::Find, [this] { _findPanel->show(), _find->takeFocus(); }},
          {u"Find Next"_ns, QKeySequence::FindNext, [this] { _find->findNext(); }},
      });
  _canvas->addActions(editMenu->actions());
  _canvas->setContextMenuPolicy(Qt::ActionsContextMenu);
  const auto align = [&](const NSRef<NSString>& name, Alignment alignment) -> Item {
    return {name, {}, [=] { drawing->align(alignment); }, 2};
  };
  makeMenu(u"Arrange"_ns,
           {
               align(u"Align Left"_ns, Alignment::left),
               align(u"Align Centres"_ns, Alignment::center),
               align(u"Align Right"_ns, Alignment::right),
               align(u"Align Top"_ns, Alignment::top),
               align(u"Align Middles"_ns, Alignment::middle),
               align(u"Align Bottom"_ns, Alignment::bottom),
               {},
               {u"Distribute Horizontally"_ns, {}, [drawing] { drawing->distribute(false); }, 3},
               {u"Distribute Vertically"_ns, {}, [drawing] { drawing->distribute(true); }, 3},
               {},
               {u"Bring to Front"_ns, Qt::CTRL | Qt::Key_BracketRight,
                [drawing] { drawing->bringToFront(); }, 1},
           });
  auto* const view = makeMenu(
      u"View"_ns,
      {
          {u"Zoom In"_ns, QKeySequence::ZoomIn, [this] { _canvas->zoomBy(1.25); }},
          {u"Zoom Out"_ns, QKeySequence::ZoomOut, [this] { _canvas->zoomBy(0.8); }},
          {u"Zoom to Fit"_ns, Qt::CTRL | Qt::Key_0, [this] { _canvas->zoomToFit(); }},
          {u"Actual Size"_ns, Qt::CTRL | Qt::Key_1, [this] { _canvas->showOrigin(); }},
          {},
          {u"Snap to Grid"_ns,
           {},
           [this] { _canvas->snapping.grid = 10 - _canvas->snapping.grid; },
           0,
           true},
          {u"Snap to Shapes"_ns, {}, [this] { _canvas->snapping.usesGuides ^= true; }, 0, true},
          {},
      });
  for (auto* const panel : {_inspectorPanel, _shapesPanel, _findPanel}) {
    view->addAction(panel->toggleViewAction());
  }
}

void MainWindow::makeToolBars() {
  const QColor line = palette().color(QPalette::ButtonText);
  const QColor edge = palette().color(QPalette::Mid);
  const auto makeBar = [this](const NSRef<NSString>& title, Qt::ToolButtonStyle style) {
    auto* const bar = addToolBar(inLanguage(title));
    bar->setMovable(false);
    bar->setToolButtonStyle(style);
    return new QActionGroup(bar);
  };
  const auto add = [this](QActionGroup* group, const QIcon& icon, const NSRef<NSString>& text,
                          std::function<void()> action) {
    auto* const item = group->addAction(icon, inLanguage(text));
    item->setCheckable(true);
    connect(item, &QAction::triggered, this, std::move(action));
    static_cast<QToolBar*>(group->parent())->addAction(item);
    return item;
  };

  auto* const tools = makeBar(u"Tools"_ns, Qt::ToolButtonTextBesideIcon);
  const auto addTool = [&](Tool tool, const NSRef<NSString>& text, Qt::Key key,
                           const QPolygonF& icon) {
    auto* const item =
        add(tools, iconOf(icon, line), text, [this, tool] { _canvas->setTool(tool); });
    item->setShortcut(key);
    item->setToolTip(QStringLiteral("%1 (%2)").arg(item->text(), item->shortcut().toString()));
    _tools.append(item);
  };
  addTool(Tool::select, u"Select"_ns, Qt::Key_V,
          {{5, 2}, {5, 16}, {9, 12.5}, {11.5, 18}, {11, 12}, {15, 11.5}, {5, 2}});
  addTool(Tool::rectangle, u"Rectangle"_ns, Qt::Key_R,
          {{3, 5}, {17, 5}, {17, 15}, {3, 15}, {3, 5}});
  addTool(Tool::path, u"Path"_ns, Qt::Key_P,
          {{2, 15}, {4, 9}, {6, 6}, {8, 7}, {10, 11}, {12, 14}, {14, 14}, {16, 11}, {18, 5}});
  addTool(Tool::label, u"Label"_ns, Qt::Key_T, {{4, 4}, {16, 4}, {10, 4}, {10, 17}});

  auto* const colours = makeBar(u"Colours"_ns, Qt::ToolButtonIconOnly);
  const auto addColour = [&](NSInteger colour, const NSRef<NSString>& text) {
    const QIcon icon = iconOf(QRectF(2, 2, 16, 16), edge, colourOf(colour));
    const auto change = [=](Shape& shape) { shape.colour = colour; };
    auto* const item = add(colours, icon, text, [this, colour, change] {
      _canvas->colour = colour;
      _document->drawing()->changeSelected(u"Paint"_ns, change);
    });
    item->setChecked(colour == _canvas->colour);
  };
  addColour(0x1F2937, u"Ink"_ns);
  addColour(0x2B6CB0, u"Blue"_ns);
  addColour(0x2F855A, u"Green"_ns);
  addColour(0xC05621, u"Orange"_ns);
  addColour(0xB83280, u"Purple"_ns);
  addColour(0xE11D48, u"Red"_ns);
}

}  // namespace sketchbook
