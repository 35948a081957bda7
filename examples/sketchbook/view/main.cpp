#include "examples/hosts/qt.h"
#include "examples/sketchbook/model/Sample.h"
#include "examples/sketchbook/view/MainWindow.h"
#include "examples/sketchbook/view/Painting.h"

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

}  // namespace

// usage: sketchbook [--picture FILE] [DOCUMENT]
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QtHost host;
  // What Qt's own dialogs say.
  QTranslator dialogs;
  if (dialogs.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                   QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(&dialogs);
  }
  measureLabels();
  QApplication::setWindowIcon(QPixmap::fromImage(pictureOfShapes(sampleShapes())));
  QStringList words = QApplication::arguments().mid(1);
  QString picture;
  if (words.size() >= 2 && words[0] == QStringLiteral("--picture")) {
    picture = words[1];
    words = words.mid(2);
  } else if (MainWindow::offerRecovery() && words.isEmpty()) {
    return QApplication::exec();
  }
  MainWindow* const window = open(words.value(0));
  // For who has no screen.
  if (!picture.isEmpty()) return window != nullptr && window->grab().save(picture) ? 0 : 1;
  return QApplication::exec();
}
