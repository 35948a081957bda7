#include "examples/hosts/qt.h"
#include "examples/sketchbook/model/Sample.h"
#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/view/Bridge.h"
#include "examples/sketchbook/view/MainWindow.h"
#include "examples/sketchbook/view/Painting.h"
#include "tests/Files.h"

#include <QApplication>
#include <QTest>

#include <poll.h>

using namespace sketchbook;
using namespace ZKFoundationExtensions;

namespace {

std::unique_ptr<QtHost> host;

// A window that is used as people use it, by mouse and keys.
class SketchbookWindow : public testing::Test {
 protected:
  SketchbookWindow() {
    window->show();
    QApplication::setActiveWindow(window);
  }
  ~SketchbookWindow() override {
    document->close();
    delete window;
  }

  void mouse(QEvent::Type type, NSPoint sheet, Qt::KeyboardModifiers keys = {}) {
    const QPointF at = canvas.toWidget(sheet);
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, canvas.mapToGlobal(at), button, Qt::LeftButton, keys);
    QApplication::sendEvent(&canvas, &event);
  }
  void drag(std::initializer_list<NSPoint> points, Qt::KeyboardModifiers keys = {}) {
    mouse(QEvent::MouseButtonPress, *points.begin(), keys);
    for (const NSPoint point : points) mouse(QEvent::MouseMove, point, keys);
    mouse(QEvent::MouseButtonRelease, *(points.end() - 1), keys);
  }
  void write(NSPoint at, const char* text) {
    canvas.setTool(Tool::label);
    mouse(QEvent::MouseButtonPress, at);
    auto* const editor = canvas.findChild<QTextEdit*>();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Escape);
    delete editor;
  }
  void type(const char* field, const char* text) {
    auto* const line = window->findChild<QLineEdit*>(field);
    line->selectAll();
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
  }
  // Takes an item of a menu, which shows then what else can be done.
  void trigger(const NSRef<NSString>& item) {
    window->trigger(item);
    EXPECT_TRUE(settle());
  }
  // Lets a pass of the run loop come, with all that is due in it.
  static bool settle() {
    bool isOver = false;
    NSRunLoop::mainRunLoop()->performBlock([&] { isOver = true; });
    return QTest::qWaitFor([&] { return isOver; });
  }
  std::vector<NSRect> frames() const {
    std::vector<NSRect> result;
    for (const auto& shape : drawing->shapes()->each<Shape>()) result.push_back(shape->frame);
    return result;
  }

  TestFolder folder;
  const NSRef<NSURL> copies = fileURL(folder / "copies");
  const NSRef<Document> document = NSMake<Document>(copies);
  const NSRef<Drawing> drawing = document->drawing();
  MainWindow* const window = new MainWindow(document);
  Canvas& canvas = window->canvas();
};

}  // namespace

TEST_F(SketchbookWindow, drawsDragsFindsSavesAndOpens) {
  canvas.setTool(Tool::rectangle);
  drag({{101, 99}, {150, 130}, {198, 162}});
  EXPECT_EQ(frames().back(), NSRect({100, 100}, {100, 60})) << "snapped to the grid";
  canvas.setTool(Tool::path);
  drag({{300, 100}, {330, 180}, {400, 200}});
  const auto line = drawing->shapes()[1].as<Path>()->points();
  drag({{400, 200}, {350, 150}, {200, 0}}, Qt::NoModifier);
  EXPECT_TRUE(ZKAreSimilarPoints(drawing->shapes()[1].as<Path>()->points()[0], {300, 100}, 1))
      << "turned over both edges";
  EXPECT_TRUE(NSIntersectsRect(frames()[1], {{199, -1}, {102, 102}})) << frames()[1];
  drag({{150, 130}, {230, 132}}, Qt::ShiftModifier);
  canvas.setTool(Tool::select);
  write({100, 300}, "a ring");
  write({100, 400}, "Ring");

  const auto drawn = drawing->shapes();
  int changes = 0;
  for (; drawing->undoAction(); ++changes) trigger(u"Undo"_ns);
  EXPECT_EQ(drawing->shapes()->count(), 0U);
  for (; changes > 0; --changes) trigger(u"Redo"_ns);
  EXPECT_PRED2(areSame, drawing->shapes(), drawn);

  trigger(u"Find…"_ns);
  type("needle", "ring");
  EXPECT_EQ(drawing->selectedShapes()->firstObject(), drawn[2]);
  QTest::keyClicks(window->findChild<QLineEdit*>("replacement"), "bell");
  for (auto* const button : window->findChildren<QPushButton*>()) {
    if (button->text() == "Replace All") QTest::mouseClick(button, Qt::LeftButton);
  }
  EXPECT_EQ(shown(drawing->shapes()->valueForKey(u"text"_ns)), "(<null>, <null>, a bell, bell)");

  NSRef<NSError> error;
  const auto place = fileURL(folder / "Plan.sketch");
  ASSERT_TRUE(document->saveAs(place, &error)) << error;
  EXPECT_EQ(Document::open(place, copies, &error)->drawing()->shapes(), drawing->shapes());
}

TEST_F(SketchbookWindow, tellsWhyAnAddressIsRefused) {
  drawing->add(u"Add"_ns, NSMake<NSArray>({NSMake<Rectangle>(u"A"_ns, NSRect({0, 0}, {9, 9}))}));
  const auto shape = [&] { return drawing->shapes()[0].as<Shape>(); };
  ASSERT_TRUE(settle());
  type("address", "ssh://example.org/");
  EXPECT_FALSE(window->findChild<QLabel*>("refusal")->text().isEmpty());
  EXPECT_FALSE(shape()->link);
  type("address", "example.org/a");
  EXPECT_TRUE(window->findChild<QLabel*>("refusal")->text().isEmpty());
  EXPECT_EQ(shown(shape()->link), "http://example.org/a");
  window->findChild<QListView*>("shapes")->setCurrentIndex({});
  EXPECT_EQ(drawing->selection()->count(), 0U);
  window->findChild<QListView*>("shapes")->selectAll();
  ASSERT_TRUE(settle());
  type("name", "House");
  EXPECT_EQ(shown(shape()->name), "House");
}

TEST_F(SketchbookWindow, looksAsItsShapesSay) {
  const QImage picture = pictureOfShapes(sampleShapes());
  const NSPoint origin = pictureArea(sampleShapes()).origin;
  const auto colourAt = [&](NSPoint sheet) {
    return picture.pixelColor((toQt(sheet - origin) * 2).toPoint());
  };
  EXPECT_EQ(colourAt({100, 100}), QColor(Qt::white));
  EXPECT_EQ(colourAt({200, 300}), colourOf(0xC05621));
  EXPECT_TRUE(pictureOfShapes(sampleShapes(), [](double) { return false; }).isNull());

  for (const auto& text : {u"iiii"_ns, u"WWWW"_ns}) {
    const auto label = NSMake<Label>(u"Label"_ns, NSZeroPoint, 100, text);
    const QImage drawn = pictureOfShapes(NSMake<NSArray>({label}));
    const QImage dark = drawn.createHeuristicMask(false);
    EXPECT_NEAR(QRegion(QBitmap::fromImage(dark)).boundingRect().width(),
                2 * label->frame.size.width, 30)
        << text;
  }
}

TEST(QtHost, sleepsWhereNothingIsToBeDone) {
  bool isDone = false;
  const auto object = NSMake<WidgetLife>();
  const auto soon = [&] {
    performBlock_afterDelay(
        object, [&] { isDone = true; }, 0.01);
  };
  performBlockInBackground(object,
                           [&] { performBlockOnMainThread_waitUntilDone(object, soon, false); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return isDone && !host->isWaitingForTime(); }));
  QApplication::processEvents();
  pollfd wakeUp{NSRunLoop::mainRunLoop()->wakeUpDescriptor(), POLLIN, 0};
  EXPECT_EQ(poll(&wakeUp, 1, 0), 0);
  EXPECT_FALSE(host->isWaitingForTime());
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LANGUAGE", "en");
  const QApplication application(argc, argv);
  host = std::make_unique<QtHost>();
  measureLabels();
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  host = nullptr;
  return result;
}
