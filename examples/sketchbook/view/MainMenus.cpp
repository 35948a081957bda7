#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/MainWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QColorDialog>
#include <QDockWidget>
#include <QFileDialog>
#include <QMenuBar>
#include <QToolBar>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

// A text for each tool, with the key that takes it.
struct ToolItem {
  Tool tool;
  std::u16string_view text;
  Qt::Key key;
};
constexpr std::array<ToolItem, 4> toolItems{{
    {Tool::select, u"Select", Qt::Key_V},
    {Tool::rectangle, u"Rectangle", Qt::Key_R},
    {Tool::path, u"Path", Qt::Key_P},
    {Tool::label, u"Label", Qt::Key_T},
}};

constexpr std::array<NSInteger, 6> colours = {0x1F2937, 0x2B6CB0, 0x2F855A,
                                              0xC05621, 0xB83280, 0xE11D48};

}  // namespace

QAction* MainWindow::add(QMenu* menu, const NSRef<NSString>& text, const QKeySequence& keys,
                         Action action) {
  auto* const item = menu->addAction(inLanguage(text));
  item->setShortcut(keys);
  connect(item, &QAction::triggered, this, [this, action = std::move(action)] {
    // What is being typed is part of what the command means.
    _canvas->finishEditing();
    action();
  });
  _items[std::u16string(text->view())] = item;
  return item;
}

void MainWindow::makeFileMenu() {
  auto* const menu = menuBar()->addMenu(inLanguage(u"File"_ns));
  add(menu, u"New"_ns, QKeySequence::New, [] { showWindow(NSMake<Document>(recoveryFolder())); });
  add(menu, u"Open…"_ns, QKeySequence::Open, [this] {
    const QString place = QFileDialog::getExistingDirectory(this);
    if (!place.isEmpty()) openWindow(NSURL::fileURLWithPath(fromQt(place)), this);
  });
  menu->addSeparator();
  add(menu, u"Save"_ns, QKeySequence::Save, [this] { save(); });
  add(menu, u"Save As…"_ns, QKeySequence::SaveAs, [this] { saveAs(); });
  add(menu, u"Attach File…"_ns, {}, [this] { attach(); });
  menu->addSeparator();
  add(menu, u"Export SVG…"_ns, {}, [this] { exportSVG(); });
  add(menu, u"Export PNG…"_ns, {}, [this] { exportPNG(); });
  menu->addSeparator();
  add(menu, u"Close"_ns, QKeySequence::Close, [this] { close(); });
}

void MainWindow::makeEditMenu() {
  const auto& drawing = _document->drawing();
  auto* const menu = menuBar()->addMenu(inLanguage(u"Edit"_ns));
  _undo = add(menu, u"Undo"_ns, QKeySequence::Undo, [drawing] { drawing->undo(); });
  _redo = add(menu, u"Redo"_ns, QKeySequence::Redo, [drawing] { drawing->redo(); });
  menu->addSeparator();
  add(menu, u"Cut"_ns, QKeySequence::Cut, [this, drawing] {
    copy();
    drawing->removeSelected(u"Cut"_ns);
  });
  add(menu, u"Copy"_ns, QKeySequence::Copy, [this] { copy(); });
  add(menu, u"Paste"_ns, QKeySequence::Paste, [this] { paste(); });
  add(menu, u"Duplicate"_ns, Qt::CTRL | Qt::Key_D, [drawing] { drawing->duplicate(); });
  add(menu, u"Select All"_ns, QKeySequence::SelectAll, [drawing] { drawing->selectAll(); });
  menu->addSeparator();
  const auto addEdit = [&](const NSRef<NSString>& text, auto edit) {
    add(menu, text, {}, [drawing, text, edit] {
      drawing->changeSelected(text, [&](Shape& shape) {
        if (const auto old = shape.text()) shape.setText(edit(old));
      });
    });
  };
  addEdit(u"Title Case"_ns, &titlecaseString);
  addEdit(u"Quote"_ns, &quoted);
  menu->addSeparator();
  add(menu, u"Find…"_ns, QKeySequence::Find, [this] {
    _findDock->show();
    _find->takeFocus();
  });
  add(menu, u"Find Next"_ns, QKeySequence::FindNext, [this] { _find->findNext(); });
}

void MainWindow::makeArrangeMenu() {
  const auto& drawing = _document->drawing();
  auto* const menu = menuBar()->addMenu(inLanguage(u"Arrange"_ns));
  const std::array<std::pair<NSRef<NSString>, Alignment>, 6> alignments{{
      {u"Align Left"_ns, Alignment::left},
      {u"Align Centers"_ns, Alignment::center},
      {u"Align Right"_ns, Alignment::right},
      {u"Align Top"_ns, Alignment::top},
      {u"Align Middles"_ns, Alignment::middle},
      {u"Align Bottom"_ns, Alignment::bottom},
  }};
  for (const auto& [text, alignment] : alignments) {
    add(menu, text, {}, [drawing, alignment = alignment] { drawing->align(alignment); });
  }
  menu->addSeparator();
  add(menu, u"Distribute Horizontally"_ns, {}, [drawing] { drawing->distribute(false); });
  add(menu, u"Distribute Vertically"_ns, {}, [drawing] { drawing->distribute(true); });
  menu->addSeparator();
  add(menu, u"Bring to Front"_ns, Qt::CTRL | Qt::Key_BracketRight,
      [drawing] { drawing->bringToFront(); });
}

void MainWindow::makeViewMenu() {
  auto* const menu = menuBar()->addMenu(inLanguage(u"View"_ns));
  add(menu, u"Zoom In"_ns, QKeySequence::ZoomIn, [this] { _canvas->zoomBy(1.25); });
  add(menu, u"Zoom Out"_ns, QKeySequence::ZoomOut, [this] { _canvas->zoomBy(0.8); });
  add(menu, u"Zoom to Fit"_ns, Qt::CTRL | Qt::Key_0, [this] { _canvas->zoomToFit(); });
  menu->addSeparator();
  const auto addSwitch = [&](const NSRef<NSString>& text,
                             std::function<void(Snapping&, bool)> set) {
    auto* const item = add(menu, text, {}, [] {});
    item->setCheckable(true);
    item->setChecked(true);
    connect(item, &QAction::toggled, this, [this, set = std::move(set)](bool isOn) {
      Snapping snapping = _canvas->snapping();
      set(snapping, isOn);
      _canvas->setSnapping(snapping);
    });
  };
  addSwitch(u"Snap to Grid"_ns,
            [](Snapping& snapping, bool isOn) { snapping.grid = isOn ? 10 : 0; });
  addSwitch(u"Snap to Shapes"_ns,
            [](Snapping& snapping, bool isOn) { snapping.usesGuides = isOn; });
}

void MainWindow::makeTools() {
  auto* const bar = addToolBar(inLanguage(u"Tools"_ns));
  auto* const group = new QActionGroup(this);
  for (const auto& [tool, text, key] : toolItems) {
    auto* const item = bar->addAction(inLanguage(NSMake<NSString>(text)));
    item->setCheckable(true);
    item->setShortcut(key);
    group->addAction(item);
    _tools.append(item);
    connect(item, &QAction::triggered, this, [this, tool = tool] { _canvas->setTool(tool); });
  }
  _canvas->onToolChange = [this](Tool tool) { _tools[static_cast<int>(tool)]->setChecked(true); };
  _canvas->setTool(Tool::select);
  bar->addSeparator();
  for (const NSInteger colour : colours) {
    QPixmap swatch(18, 18);
    swatch.fill(colourOf(colour));
    auto* const item = bar->addAction(QIcon(swatch), QString());
    connect(item, &QAction::triggered, this, [this, colour] {
      _canvas->colour = colour;
      _document->drawing()->changeSelected(u"Paint"_ns,
                                           [=](Shape& shape) { shape.colour = colour; });
    });
  }
}

}  // namespace sketchbook
