#include "examples/hosts/qt.h"
#include "examples/sketchbook/model/Sample.h"
#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/MainWindow.h"

#include <QApplication>
#include <iostream>

using namespace sketchbook;

namespace {

// Opens the document, or the sample when none is named.
MainWindow* open(const QString& place) {
  if (!place.isEmpty()) {
    return MainWindow::openWindow(NSURL::fileURLWithPath(fromQt(place)), nullptr);
  }
  const auto document = NSMake<Document>(MainWindow::recoveryFolder(), sampleShapes());
  document->drawing()->select(NSMake<NSIndexSet>(document->drawing()->shapes()->count() - 1));
  return MainWindow::showWindow(document);
}

// Writes what the window shows, for who has no screen.
int writePicture(MainWindow& window, const QString& file) {
  // The size of the document comes a little later.
  QTimer::singleShot(500, [] { QApplication::exit(); });
  QApplication::exec();
  if (!window.grab().save(file)) return 1;
  std::cout << file.toStdString() << '\n';
  return 0;
}

}  // namespace

// usage: sketchbook [--picture FILE] [DOCUMENT]
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QtHost host;
  QStringList words = QApplication::arguments().mid(1);
  QString picture;
  if (words.size() >= 2 && words[0] == QStringLiteral("--picture")) {
    picture = words[1];
    words = words.mid(2);
  } else {
    MainWindow::offerRecovery();
  }
  MainWindow* const window = open(words.value(0));
  if (!picture.isEmpty()) return window == nullptr ? 1 : writePicture(*window, picture);
  return QApplication::exec();
}
