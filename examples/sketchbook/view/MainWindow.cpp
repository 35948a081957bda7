#include "examples/sketchbook/view/MainWindow.h"

#include "examples/sketchbook/view/Bridge.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QMessageBox>
#include <QStatusBar>

using namespace ZKFoundationExtensions;

namespace sketchbook {

MainWindow::MainWindow(const NSRef<Document>& document)
    : _document(document),
      _canvas(new Canvas(document->drawing())),
      _find(new FindPanel(document->drawing(), _queue)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setCentralWidget(_canvas);
  addPanel(u"Inspector"_ns, new Inspector(document));
  _findDock = addPanel(u"Find"_ns, _find);
  _findDock->hide();
  _find->onTask = [this](const NSRef<Task>& task) { _tasks->follow(task); };
  statusBar()->addPermanentWidget(_tasks);
  makeFileMenu();
  makeEditMenu();
  makeArrangeMenu();
  makeViewMenu();
  makeTools();
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {center,
                  center->addObserverForName_object_queue_usingBlock(
                      DrawingDidChange(), document->drawing(), nullptr, [this] { showState(); })};
  showState();
  resize(1100, 760);
}

MainWindow::~MainWindow() {
  if (_export) _export->cancel();
}

QDockWidget* MainWindow::addPanel(const NSRef<NSString>& title, QWidget* panel) {
  auto* const dock = new QDockWidget(inLanguage(title));
  dock->setWidget(panel);
  addDockWidget(Qt::RightDockWidgetArea, dock);
  return dock;
}

void MainWindow::showState() {
  const auto& drawing = *_document->drawing();
  setWindowTitle(toQt(_document->title()) + QStringLiteral("[*] — Sketchbook"));
  setWindowModified(_document->isEdited());
  const auto name = [](QAction* item, const NSRef<NSString>& format,
                       const NSRef<NSString>& action) {
    item->setEnabled(static_cast<bool>(action));
    const auto what = action ? localized(action) : u""_ns;
    item->setText(toQt(NSString::stringWithFormat(localized(format), what)));
  };
  name(_undo, u"Undo %@"_ns, drawing.undoAction());
  name(_redo, u"Redo %@"_ns, drawing.redoAction());
}

void MainWindow::trigger(const NSRef<NSString>& item) {
  const auto found = _items.find(item->view());
  if (found != _items.end()) found->second->trigger();
}

void MainWindow::showError(QWidget* parent, const NSRef<NSError>& error) {
  // For who has no screen.
  NSLog(error->localizedDescription());
  // Nobody waits for it: the window goes on.
  auto* const box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Sketchbook"),
                                    toQt(error->localizedDescription()), QMessageBox::Ok, parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

NSRef<NSURL> MainWindow::recoveryFolder() {
  const auto folder = findOrCreateDirectory_inDomain_appendPathComponent_error(
      NSFileManager::defaultManager(), NSApplicationSupportDirectory, NSUserDomainMask,
      u"Sketchbook"_ns, nullptr);
  return (folder ? folder : temporaryFolder())
      ->URLByAppendingPathComponent_isDirectory(u"Unsaved"_ns, true);
}

MainWindow* MainWindow::showWindow(const NSRef<Document>& document) {
  auto* const window = new MainWindow(document);
  window->show();
  window->canvas().zoomToFit();
  return window;
}

MainWindow* MainWindow::openWindow(const NSRef<NSURL>& url, QWidget* parent) {
  NSRef<NSError> error;
  const auto document = Document::open(url, recoveryFolder(), &error);
  if (document) return showWindow(document);
  showError(parent, error);
  return nullptr;
}

void MainWindow::offerRecovery() {
  const auto copies = Recovery::abandoned(recoveryFolder());
  for (const auto& copy : copies->each<NSURL>()) {
    NSRef<NSError> error;
    const auto document = Document::recover(copy, recoveryFolder(), &error);
    if (!document) {
      showError(nullptr, error);
      continue;
    }
    const auto question = NSString::stringWithFormat(
        localized(u"There are unsaved changes of %@. Open them?"_ns), quoted(document->title()));
    if (QMessageBox::question(nullptr, QStringLiteral("Sketchbook"), toQt(question)) ==
        QMessageBox::Yes) {
      showWindow(document);
    } else {
      document->close();
    }
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  _canvas->finishEditing();
  if (_document->isEdited()) {
    const auto question = NSString::stringWithFormat(localized(u"Save the changes of %@?"_ns),
                                                     quoted(_document->title()));
    const auto answer = QMessageBox::question(
        this, QStringLiteral("Sketchbook"), toQt(question),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    const bool mayClose = answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
    if (!mayClose) return event->ignore();
  }
  _document->close();
  event->accept();
}

}  // namespace sketchbook
