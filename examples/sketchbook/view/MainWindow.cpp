#include "examples/sketchbook/view/MainWindow.h"

#include "examples/sketchbook/view/Inspector.h"
#include "examples/sketchbook/view/Painting.h"
#include "examples/sketchbook/view/ShapeList.h"

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

const QString shapesType = QStringLiteral("application/x-sketchbook");
const QString documentSuffix = QStringLiteral(".sketch");
const QString programName = QStringLiteral("Sketchbook");

QByteArray bytesOf(std::string_view bytes) {
  return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

// Gives nil for an empty path, which is the answer of who has cancelled.
NSRef<NSURL> urlOf(const QString& path) {
  return path.isEmpty() ? nullptr : NSURL::fileURLWithPath(fromQt(path));
}

void showError(QWidget* parent, const NSRef<NSError>& error) {
  // For who has no screen.
  NSLog(error->localizedDescription());
  // Nobody waits for it: the window goes on.
  auto* const box = new QMessageBox(QMessageBox::Warning, programName,
                                    toQt(error->localizedDescription()), QMessageBox::Ok, parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

QMessageBox::StandardButton ask(QWidget* parent, const NSRef<NSString>& question,
                                const NSRef<NSString>& name, QMessageBox::StandardButtons answers) {
  return QMessageBox::question(parent, programName,
                               toQt(NSString::stringWithFormat(localized(question), quoted(name))),
                               answers);
}

// Asks where something goes. A document is a folder, but is chosen as a file is and not entered.
class SaveDialog : public QFileDialog {
 public:
  using QFileDialog::QFileDialog;

 protected:
  void accept() override {
    const QFileInfo place(selectedFiles().value(0));
    const bool isDocument = place.isDir() && place.fileName().endsWith(documentSuffix);
    if (!isDocument) return QFileDialog::accept();
    const auto answer =
        ask(this, u"Replace %@?"_ns, fromQt(place.fileName()), QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) done(Accepted);
  }
};

}  // namespace

MainWindow::MainWindow(const NSRef<Document>& document)
    : _document(document),
      _canvas(new Canvas(document->drawing())),
      _find(new FindPanel(document->drawing(), _canvas, _tasks)),
      _inspectorPanel(addPanel(u"Inspector"_ns, new Inspector(document))),
      _shapesPanel(addPanel(u"Shapes"_ns, new ShapeList(document->drawing()))),
      _findPanel(addPanel(u"Find"_ns, _find)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setCentralWidget(_canvas);
  _findPanel->hide();
  statusBar()->addPermanentWidget(_tasks);
  statusBar()->addPermanentWidget(_zoom);
  makeMenus();
  makeToolBars();
  _canvas->onChange = [this] { showState(); };
  _canvas->setFocus();
  showState();
  resize(1100, 760);
}

QDockWidget* MainWindow::addPanel(const NSRef<NSString>& title, QWidget* panel) {
  auto* const dock = new QDockWidget(inLanguage(title));
  dock->setWidget(panel);
  addDockWidget(Qt::RightDockWidgetArea, dock);
  return dock;
}

void MainWindow::showState() {
  const auto& drawing = *_document->drawing();
  setWindowTitle(QStringLiteral("%1[*] — %2").arg(toQt(_document->title()), programName));
  setWindowModified(_document->isEdited());
  const NSUInteger selected = drawing.selection()->count();
  for (const auto& [text, item] : _items) item->setEnabled(selected >= item->data().toULongLong());
  const auto showStep = [this](const NSRef<NSString>& text, const NSRef<NSString>& action) {
    auto* const item = _items.at(text);
    item->setEnabled(static_cast<bool>(action));
    item->setText(
        action ? toQt(NSString::stringWithFormat(localized(text + u" %@"_ns), localized(action)))
               : inLanguage(text));
  };
  showStep(u"Undo"_ns, drawing.undoAction());
  showStep(u"Redo"_ns, drawing.redoAction());
  _tools[static_cast<int>(_canvas->tool())]->setChecked(true);
  _zoom->setText(QStringLiteral("%1 %").arg(_canvas->zoom() * 100, 0, 'f', 0));
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

bool MainWindow::offerRecovery() {
  bool isAnyOpen = false;
  const auto copies = Recovery::abandoned(recoveryFolder());
  for (const auto& copy : copies->each<NSURL>()) {
    NSRef<NSError> error;
    const auto document = Document::recover(copy, recoveryFolder(), &error);
    if (!document) {
      showError(nullptr, error);
    } else if (ask(nullptr, u"There are unsaved changes of %@. Open them?"_ns, document->title(),
                   QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes) {
      isAnyOpen = showWindow(document) != nullptr;
    } else {
      document->close();
    }
  }
  return isAnyOpen;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  _canvas->finishEditing();
  if (_document->isEdited()) {
    const auto answer = ask(this, u"Save the changes of %@?"_ns, _document->title(),
                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    const bool mayClose = answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
    if (!mayClose) return event->ignore();
  }
  _document->close();
  event->accept();
}

bool MainWindow::report(bool isDone, const NSRef<NSError>& error) {
  if (!isDone) showError(this, error);
  showState();
  return isDone;
}

NSRef<NSURL> MainWindow::askForPlace(const NSRef<NSString>& title, const QString& extension) {
  SaveDialog dialog(this, inLanguage(title));
  const auto url = _document->url();
  if (url) dialog.setDirectory(toQt(url->path()->stringByDeletingLastPathComponent()));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(extension);
  dialog.selectFile(toQt(_document->title()) + extension);
  return urlOf(dialog.exec() == QDialog::Accepted ? dialog.selectedFiles()[0] : QString());
}

void MainWindow::open() {
  const auto url = urlOf(QFileDialog::getExistingDirectory(this, inLanguage(u"Open"_ns)));
  const bool isUnused = !_document->url() && !_document->isEdited();
  if (url && openWindow(url, this) && isUnused) close();
}

bool MainWindow::save(bool overwrites) {
  if (!_document->url()) return saveAs();
  NSRef<NSError> error;
  const bool isDone = _document->save(&error, overwrites);
  const bool isConflict = !isDone && error->domain() == DocumentErrorDomain() &&
                          error->code() == DocumentChangedElsewhere;
  if (!isConflict) return report(isDone, error);
  QMessageBox box(QMessageBox::Warning, programName, toQt(error->localizedDescription()),
                  QMessageBox::Cancel, this);
  const auto* const elsewhere = box.addButton(inLanguage(u"Save As…"_ns), QMessageBox::AcceptRole);
  const auto* const here = box.addButton(inLanguage(u"Overwrite"_ns), QMessageBox::DestructiveRole);
  box.exec();
  return box.clickedButton() == elsewhere ? saveAs() : box.clickedButton() == here && save(true);
}

bool MainWindow::saveAs() {
  NSRef<NSError> error;
  const auto url = askForPlace(u"Save As…"_ns, documentSuffix);
  return url && report(_document->saveAs(url, &error), error);
}

void MainWindow::attach() {
  NSRef<NSError> error;
  const auto file = urlOf(QFileDialog::getOpenFileName(this, inLanguage(u"Attach File…"_ns)));
  if (file) report(static_cast<bool>(_document->attach(file, &error)), error);
}

void MainWindow::copy() {
  const auto copied = _document->drawing()->copiedData();
  if (!copied) return;
  // Other programs take the picture.
  auto* const mime = new QMimeData;
  mime->setData(shapesType, bytesOf(copied->view()));
  const auto picture = svgPicture(_document->drawing()->selectedShapes());
  mime->setData(QStringLiteral("image/svg+xml"), bytesOf(picture->utf8()));
  QApplication::clipboard()->setMimeData(mime);
}

void MainWindow::paste() {
  const QMimeData* const mime = QApplication::clipboard()->mimeData();
  if (mime == nullptr || !mime->hasFormat(shapesType)) return;
  const auto bytes = NSMake<NSData>(mime->data(shapesType).toStdString());
  NSRef<NSError> error;
  report(_document->drawing()->paste(bytes, &error), error);
}

void MainWindow::exportTo(const NSRef<NSString>& title, const QString& extension, Export draw) {
  const auto url = askForPlace(title, extension);
  if (!url) return;
  // The queue gets what the drawing is now; people draw on meanwhile.
  const auto work = [draw, url, shapes = _document->drawing()->shapes()](
                        const Progress& progress) -> NSRef<NSObject> {
    NSRef<NSError> error;
    const auto picture = draw(shapes, progress);
    const bool isWanted = picture && progress(1);
    const bool isWritten = isWanted && picture->writeToURL_options_error(url, 0, &error);
    return isWritten ? NSRef<NSObject>(url) : error;
  };
  _tasks->start(title, work, [this](const NSRef<NSObject>& result) {
    if (const auto error = result.as<NSError>()) return showError(this, error);
    statusBar()->showMessage(inLanguage(u"Exported."_ns), 5000);
  });
}

}  // namespace sketchbook
