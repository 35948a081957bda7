#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/MainWindow.h"
#include "examples/sketchbook/view/Painting.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>

namespace sketchbook {

namespace {

const QString shapesType = QStringLiteral("application/x-sketchbook");

QByteArray bytesOf(std::string_view bytes) {
  return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

}  // namespace

bool MainWindow::report(bool isDone, const NSRef<NSError>& error) {
  if (!isDone) showError(this, error);
  showState();
  return isDone;
}

bool MainWindow::save() {
  if (!_document->url()) return saveAs();
  NSRef<NSError> error;
  const bool isDone = _document->save(&error);
  const bool isConflict = !isDone && error->domain() == DocumentErrorDomain() &&
                          error->code() == DocumentChangedElsewhere;
  return isConflict ? askToOverwrite(error) : report(isDone, error);
}

bool MainWindow::askToOverwrite(const NSRef<NSError>& error) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Sketchbook"),
                  toQt(error->localizedDescription()), QMessageBox::Cancel, this);
  const auto* const overwrite =
      box.addButton(inLanguage(u"Overwrite"_ns), QMessageBox::DestructiveRole);
  const auto* const elsewhere = box.addButton(inLanguage(u"Save As…"_ns), QMessageBox::AcceptRole);
  box.exec();
  if (box.clickedButton() == elsewhere) return saveAs();
  if (box.clickedButton() != overwrite) return false;
  NSRef<NSError> failure;
  const bool isDone = _document->save(&failure, true);
  return report(isDone, failure);
}

bool MainWindow::saveAs() {
  QString place = QFileDialog::getSaveFileName(this, {}, toQt(_document->title()) + ".sketch");
  if (place.isEmpty()) return false;
  if (!place.endsWith(".sketch")) place += ".sketch";
  NSRef<NSError> error;
  const bool isDone = _document->saveAs(NSURL::fileURLWithPath(fromQt(place)), &error);
  return report(isDone, error);
}

void MainWindow::attach() {
  const QString file = QFileDialog::getOpenFileName(this);
  if (file.isEmpty()) return;
  NSRef<NSError> error;
  const auto name = _document->attach(NSURL::fileURLWithPath(fromQt(file)), &error);
  report(static_cast<bool>(name), error);
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
  const auto bytes = mime->data(shapesType).toStdString();
  NSRef<NSError> error;
  const bool isDone = _document->drawing()->paste(NSMake<NSData>(bytes), &error);
  report(isDone, error);
}

void MainWindow::exportTo(const NSRef<NSString>& title, const QString& extension, Export work) {
  const QString place =
      QFileDialog::getSaveFileName(this, {}, toQt(_document->title()) + extension);
  if (place.isEmpty()) return;
  // The queue gets what the drawing is now; people draw on meanwhile.
  _export = Task::start(
      localized(title), _queue,
      [work = std::move(work), url = NSURL::fileURLWithPath(fromQt(place)),
       shapes = _document->drawing()->shapes()](const Progress& progress) {
        return work(url, shapes, progress);
      },
      [this](const NSRef<NSObject>& result) {
        if (const auto error = result.as<NSError>()) return showError(this, error);
        statusBar()->showMessage(inLanguage(u"Exported."_ns), 5000);
      });
  _tasks->follow(_export);
}

void MainWindow::exportSVG() {
  exportTo(u"Exporting SVG"_ns, QStringLiteral(".svg"),
           [](const NSRef<NSURL>& url, const NSRef<NSArray>& shapes,
              const Progress& progress) -> NSRef<NSObject> {
             const auto picture = svgPicture(shapes, progress);
             NSRef<NSError> error;
             const bool isWritten = picture && picture->writeToURL_atomically_encoding_error(
                                                   url, true, NSUTF8StringEncoding, &error);
             return isWritten ? NSRef<NSObject>(url) : error;
           });
}

void MainWindow::exportPNG() {
  exportTo(u"Exporting PNG"_ns, QStringLiteral(".png"),
           [](const NSRef<NSURL>& url, const NSRef<NSArray>& shapes,
              const Progress& progress) -> NSRef<NSObject> {
             const QImage picture = pictureOfShapes(shapes, progress);
             if (picture.isNull()) return nullptr;
             QByteArray bytes;
             QBuffer buffer(&bytes);
             picture.save(&buffer, "PNG");
             NSRef<NSError> error;
             const auto file = NSMake<NSData>(bytes.toStdString());
             return file->writeToURL_options_error(url, 0, &error) ? NSRef<NSObject>(url) : error;
           });
}

}  // namespace sketchbook
