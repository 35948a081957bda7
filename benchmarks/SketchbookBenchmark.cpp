#include "benchmarks/Support.h"
#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/model/Drag.h"
#include "examples/sketchbook/model/Shapes.h"

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

// What the drawing application does with many shapes.

namespace {

using namespace sketchbook;

constexpr std::size_t shapeCount = 10'000;
constexpr double sheet = 4000;
constexpr double reach = 4;

double anyNumber(double most) {
  static std::mt19937 engine(1);
  return std::uniform_real_distribution<double>(0, most)(engine);
}

// A third each of rectangles, lines of ten curves drawn by hand, and labels.
NSRef<Drawing> randomDrawing() {
  const auto shapes = NSMake<NSMutableArray>();
  for (std::size_t k = 0; k < shapeCount; ++k) {
    const NSPoint place(anyNumber(sheet), anyNumber(sheet));
    const auto name = NSString::stringWithFormat(u"Shape %lu"_ns, k);
    std::vector<NSPoint> line(11);
    for (NSPoint& p : line) p = place + NSPoint(anyNumber(150), anyNumber(150));
    shapes->addObject(k % 3 == 0   ? NSRef<Shape>(NSMake<Rectangle>(name, ZKRectAroundPoints(line)))
                      : k % 3 == 1 ? NSRef<Shape>(NSMake<Path>(name, line))
                                   : NSRef<Shape>(NSMake<Label>(name, place, 24, name)));
  }
  auto drawing = NSMake<Drawing>();
  drawing->setShapes(shapes);
  return drawing;
}

// A document that is saved, as long as this lives.
class SavedDocument {
 public:
  explicit SavedDocument(const NSRef<NSArray>& shapes)
      : _document(NSMake<Document>(_place, shapes)) {
    _document->saveAs(_place, nullptr);
  }
  SavedDocument(const SavedDocument&) = delete;
  ~SavedDocument() { std::filesystem::remove_all(_place->fileSystemPath()); }

  NSUInteger byteCount() const { return _document->byteCount(); }
  bool save() const { return _document->save(nullptr); }
  NSUInteger open() const {
    return Document::open(_place, _place, nullptr)->drawing()->shapes()->count();
  }

 private:
  const NSRef<NSURL> _place =
      ZKFoundationExtensions::temporaryFolder()->URLByAppendingPathComponent_isDirectory(
          ZKFoundationExtensions::UUIDString(), true);
  const NSRef<Document> _document;
};

void addSketchbook() {
  const auto drawing = randomDrawing();
  const auto isDone = [](bool done) { return done; };
  addRow(
      "Sketchbook/Miss10000/ZK",
      [=] {
        return drawing->indexOfShapeAt({-100, anyNumber(sheet)}, reach) == NSNotFound;
      },
      isDone);
  addRow(
      "Sketchbook/HitTest10000/ZK",
      [=] {
        return drawing->indexOfShapeAt({anyNumber(sheet), anyNumber(sheet)}, reach) != 0;
      },
      isDone);
  for (const auto& [name, count] : {std::pair("DragOneOf10000", 1), {"DragAll10000", 10'000}}) {
    const auto own = NSMake<Drawing>();
    own->setShapes(drawing->shapes());
    own->select(NSMake<NSIndexSet>(NSRange{0, static_cast<NSUInteger>(count)}));
    const auto drag = std::make_shared<Drag>(own, ZKHandleMaxXMaxY, NSZeroPoint,
                                             Snapping{.grid = 20, .usesGuides = true});
    addRow(
        "Sketchbook/" + std::string(name) + "/ZK",
        [=, steps = std::make_shared<int>(0)] {
          const auto before = own->shapes();
          const double distance = 3 * ++*steps;
          drag->moveTo({distance, distance});
          return !own->shapes().is(before);
        },
        isDone);
  }
  const auto saved = std::make_shared<const SavedDocument>(drawing->shapes());
  addRow("Sketchbook/Save10000/ZK", [=] { return saved->save(); }, isDone,
         {.bytes = static_cast<double>(saved->byteCount())});
  addRow(
      "Sketchbook/Open10000/ZK", [=] { return saved->open() == shapeCount; }, isDone);
}

const bool registered = [] {
  addSketchbook();
  return true;
}();

}  // namespace
