#include "examples/sketchbook/model/Drag.h"
#include "examples/sketchbook/model/Drawing.h"
#include "examples/sketchbook/model/Finding.h"
#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/model/Shapes.h"
#include "tests/Support.h"

#include <unordered_set>

using namespace sketchbook;

namespace {

NSRef<Shape> rectangle(NSRect frame) { return NSMake<Rectangle>(u"Rectangle"_ns, frame); }
NSRef<Shape> label(const char* text, NSPoint at = {0, 0}) {
  return NSMake<Label>(u"Label"_ns, NSRect(at, {100, 20}), string(text));
}
NSRef<Path> arch() {
  return NSMake<Path>(u"Path"_ns, std::vector<NSPoint>{{0, 0}, {30, 50}, {100, 60}});
}

NSRef<Drawing> drawingOf(const NSRef<NSArray>& shapes) {
  auto drawing = NSMake<Drawing>();
  drawing->setShapes(shapes);
  return drawing;
}

std::string texts(const Drawing& drawing) {
  return shown(drawing.shapes()->valueForKey(u"text"_ns));
}

// What users do, by number, with whatever is selected.
void act(const NSRef<Drawing>& drawing, int action) {
  const double at = action;
  switch (action % 12) {
    case 0:
      return drawing->add(u"Add"_ns, NSMake<NSArray>({rectangle({{at, 5}, {20, at}})}));
    case 1:
      return drawing->add(u"Add"_ns, NSMake<NSArray>({arch(), label("ring")}));
    case 2:
      return drawing->duplicate();
    case 3:
      return drawing->removeSelected(u"Cut"_ns);
    case 4:
      return drawing->rename(u"Label 2"_ns);
    case 5:
      return drawing->align(Alignment{action % 6});
    case 6:
      return drawing->distribute(action % 2 == 0);
    case 7:
      return drawing->bringToFront();
    case 8:
      return drawing->selectAll();
    case 9:
      return (void)replaceAll(*drawing, ZKTextFinder(u"i"_ns), u"ii"_ns, nullptr);
    case 10: {
      const auto data = drawing->copiedData();
      return (void)(data && drawing->paste(data, nullptr));
    }
    default: {
      Drag drag(drawing, NSUInteger(action % 9), {at, at}, {.grid = 5, .usesGuides = true});
      for (const double x : {50.0, -70.0, 130.0})
        drag.moveTo({x, at}, {.keepsProportions = action % 2 == 0});
      if (action % 5 == 0) drag.cancel();
    }
  }
}

}  // namespace

TEST(Sketchbook, undoesAndRedoesEverything) {
  expectProperty("undo leads back through every state and redo forth",
                 [](const std::vector<std::uint8_t>& actions) {
                   const auto drawing = NSMake<Drawing>();
                   std::vector<NSRef<NSArray>> states = {drawing->shapes()};
                   for (const int action : actions) {
                     act(drawing, action);
                     if (!drawing->shapes().is(states.back())) states.push_back(drawing->shapes());
                     const auto names = drawing->shapes()->valueForKey(u"name"_ns).as<NSArray>();
                     const std::unordered_set<NSRef<NSObject>> different(names->objects().begin(),
                                                                         names->objects().end());
                     RC_ASSERT(different.size() == names->count());
                   }
                   const auto last = drawing->shapes();
                   while (drawing->undoAction()) drawing->undo();
                   RC_ASSERT(drawing->shapes().is(states.front()));
                   while (drawing->redoAction()) drawing->redo();
                   RC_ASSERT(drawing->shapes().is(last));
                   RC_ASSERT(shapesWithData(dataWithShapes(last), nullptr) == last);
                 });
}

TEST(Sketchbook, sharesWhatAChangeDoesNotTouch) {
  const auto drawing = drawingOf(NSMake<NSArray>({label("a"), label("b"), arch()}));
  const auto before = drawing->shapes();
  drawing->select(NSMake<NSIndexSet>(1));
  drawing->changeSelected(u"Paint"_ns, [](Shape& shape) { shape.colour = 0xFF0000; });
  EXPECT_PRED2(areSame, drawing->shapes()[0], before[0]);
  EXPECT_PRED2(areDistinct, drawing->shapes()[1], before[1]);
  EXPECT_PRED2(areSame, drawing->shapes()[2], before[2]);
  EXPECT_NE(before[1].as<Shape>()->colour, 0xFF0000);
}

TEST(Sketchbook, dragsAPathOverBothEdgesAndBack) {
  const auto path = arch();
  const NSRect frame = path->frame;
  const auto drawing = drawingOf(NSMake<NSArray>({path}));
  drawing->selectAll();
  Drag drag(drawing, ZKHandleMaxXMaxY, {NSMaxX(frame), NSMaxY(frame)}, {});
  drag.moveTo({-NSMaxX(frame), -NSMaxY(frame)});
  EXPECT_EQ(drag.handle(), ZKHandleMinXMinY);
  const auto turned = drawing->shapes()[0].as<Path>()->points();
  const auto points = path->points();
  for (std::size_t k = 0; k < points.size(); ++k) {
    EXPECT_TRUE(ZKAreSimilarPoints(turned[k], -points[k], 1e-9)) << turned[k] << points[k];
  }
  drag.moveTo({NSMaxX(frame), NSMaxY(frame)});
  EXPECT_EQ(drawing->shapes(), NSMake<NSArray>({path}));
  drawing->undo();
  drag.moveTo({0, 0});
  EXPECT_PRED2(areSame, drawing->shapes()[0], path) << "the undo has ended the drag";
}

TEST(Sketchbook, dragsTheEndsOfLinesWithoutWidthOrHeight) {
  for (const NSPoint end : {NSPoint(10, 50), {50, 10}}) {
    for (NSUInteger handle = ZKHandleMinXMinY; handle < ZKHandleCenter; ++handle) {
      for (const NSPoint to : {NSPoint(70, 80), {-30, 80}, {70, -20}, {-30, -20}}) {
        const NSPoint start = {10, 10};
        const auto line = NSMake<Path>(u"Path"_ns, std::vector{start, end});
        const auto drawing = drawingOf(NSMake<NSArray>({line}));
        drawing->selectAll();
        const NSPoint from = ZKGetPointOfRect(handle, line->frame);
        Drag(drawing, handle, from, {}).moveTo(to);
        const auto points = drawing->shapes()[0].as<Path>()->points();
        EXPECT_TRUE(ZKAreSimilarPoints(points.front(), from == start ? to : start, 1e-9))
            << handle << to << points.front();
        EXPECT_TRUE(ZKAreSimilarPoints(points.back(), from == end ? to : end, 1e-9))
            << handle << to << points.back();
      }
    }
  }
}

TEST(Sketchbook, snaps) {
  const Rows<const char*, Snapping, bool, NSUInteger, NSPoint, NSRect> rows = {
      {"moves freely", {}, false, 8, {103, 204}, {{103, 204}, {40, 20}}},
      {"to the grid", {.grid = 10}, false, 8, {103, 204}, {{100, 200}, {40, 20}}},
      {"to an edge", {.usesGuides = true}, false, 8, {297, 50}, {{300, 50}, {40, 20}}},
      {"to a centre", {.usesGuides = true}, false, 8, {333, 50}, {{330, 50}, {40, 20}}},
      {"a guide before the grid",
       {.grid = 7, .usesGuides = true},
       false,
       8,
       {297, 51},
       {{300, 49}, {40, 20}}},
      {"at an angle", {}, true, 8, {100, 8}, {{std::hypot(100, 8), 0}, {40, 20}}},
      {"a handle to the grid", {.grid = 10}, false, 3, {97, 3}, {{0, 0}, {140, 20}}},
      {"in proportion", {}, true, 6, {40, 0}, {{0, 0}, {80, 40}}},
  };
  for (const auto& [what, snapping, isConstrained, handle, vector, expected] : rows) {
    SCOPED_TRACE(what);
    const auto drawing = drawingOf(
        NSMake<NSArray>({rectangle({{0, 0}, {40, 20}}), rectangle({{300, 1000}, {100, 1000}})}));
    drawing->select(NSMake<NSIndexSet>(0));
    Drag(drawing, handle, {7, 7}, snapping)
        .moveTo(NSPoint(7, 7) + vector, {.keepsProportions = isConstrained});
    EXPECT_EQ(drawing->shapes()[0].as<Shape>()->frame, expected);
  }
}

TEST(Sketchbook, pastesAsideAndTogether) {
  const auto drawing = drawingOf(
      NSMake<NSArray>({rectangle({{0, 0}, {9, 9}}), arch(), rectangle({{10, 10}, {9, 9}})}));
  drawing->select(NSMake<NSIndexSet>(NSRange{0, 2}));
  EXPECT_TRUE(drawing->paste(drawing->copiedData(), nullptr));
  EXPECT_EQ(drawing->shapes()[3].as<Shape>()->frame, NSMakeRect(20, 20, 9, 9));
  EXPECT_EQ(drawing->shapes()[4].as<Shape>()->frame, arch()->frame + NSPoint(20, 20));
}

TEST(Sketchbook, hitsTheShapeInFront) {
  const auto drawing = drawingOf(NSMake<NSArray>({rectangle({{0, 0}, {100, 60}}), arch()}));
  const Rows<NSPoint, NSUInteger> rows = {
      {{30, 50}, 1}, {{31, 53}, 1}, {{10, 55}, 0}, {{80, 20}, 0}, {{150, 20}, NSNotFound}};
  for (const auto& [point, index] : rows) {
    EXPECT_EQ(drawing->indexOfShapeAt(point, 3), index) << point;
  }
}

TEST(Sketchbook, alignsAndDistributes) {
  const auto drawing =
      drawingOf(NSMake<NSArray>({rectangle({{50, 0}, {10, 10}}), rectangle({{0, 5}, {20, 30}}),
                                 rectangle({{13, 90}, {30, 10}})}));
  drawing->selectAll();
  const auto frames = [&] {
    std::vector<NSRect> result;
    for (const auto& shape : drawing->shapes()->each<Shape>()) result.push_back(shape->frame);
    return result;
  };
  drawing->distribute(false);
  EXPECT_EQ(frames(),
            (std::vector<NSRect>{{{50, 0}, {10, 10}}, {{0, 5}, {20, 30}}, {{20, 90}, {30, 10}}}));
  drawing->align(Alignment::right);
  drawing->align(Alignment::middle);
  EXPECT_EQ(frames(), (std::vector<NSRect>{
                          {{50, 45}, {10, 10}}, {{40, 35}, {20, 30}}, {{30, 45}, {30, 10}}}));
}

TEST(Sketchbook, findsAndReplacesInAllLabels) {
  const auto drawing = drawingOf(NSMake<NSArray>({label("ring, Ring"), arch(), label("a string")}));
  ZKTextFinder finder(u"ring"_ns, NSCaseInsensitiveSearch);
  std::optional<LabelMatch> at;
  for (const LabelMatch& expected :
       {LabelMatch{0, {0, 4}}, {0, {6, 4}}, {2, {4, 4}}, {0, {0, 4}}}) {
    at = findNext(drawing->shapes(), finder, at, nullptr);
    EXPECT_TRUE(at == expected);
  }
  finder.setWraps(false);
  EXPECT_FALSE(findNext(drawing->shapes(), finder, LabelMatch{2, {4, 4}}, nullptr));
  EXPECT_EQ(replaceAll(*drawing, finder, u"bell"_ns, nullptr), 3U);
  EXPECT_EQ(texts(*drawing), "(bell, bell, <null>, a stbell)");
  drawing->undo();
  EXPECT_EQ(texts(*drawing), "(ring, Ring, <null>, a string)");
  NSRef<NSError> error;
  EXPECT_EQ(replaceAll(*drawing, ZKTextFinder(u"("_ns, ZKRegularExpressionSearch), u""_ns, &error),
            0U);
  EXPECT_TRUE(error);
}

TEST(Sketchbook, writesPicturesAndWords) {
  const auto safe = label("a < b & c");
  safe->link = NSURL::URLWithString(u"https://example.org/"_ns);
  const auto unsafe = label("Über B");
  unsafe->link = NSURL::URLWithString(u"javascript:alert(1)"_ns);
  const auto shapes = NSMake<NSArray>({safe, unsafe, arch()});
  const auto svg = svgPicture(shapes);
  const auto contains = [&](const char* text) {
    return svg->rangeOfString(string(text)).length > 0;
  };
  EXPECT_TRUE(contains("viewBox=\"-20 -20 140 ") && contains("<a href=\"https://example.org/\">") &&
              contains("a &lt; b &amp; c") && contains("<path d=\"M 0 0 C "))
      << svg;
  EXPECT_FALSE(contains("javascript")) << svg;
  EXPECT_EQ(shown(wordsOfLabels(shapes)), "(a, b, c, über)");
  double reached = 0;
  const auto stopAfterHalf = [&](double done) { return (reached = done) < 0.5; };
  EXPECT_FALSE(svgPicture(shapes, stopAfterHalf));
  EXPECT_FALSE(wordsOfLabels(shapes, stopAfterHalf));
  EXPECT_GT(reached, 0.5);
}
