#include "examples/sketchbook/model/Sample.h"

#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/model/Texts.h"

#include <cmath>
#include <vector>

namespace sketchbook {

NSRef<NSArray> sampleShapes() {
  const auto shapes = NSMake<NSMutableArray>();
  const auto add = [&](const NSRef<Shape>& shape, NSInteger colour) {
    shape->colour = colour;
    shapes->addObject(shape);
    return shape;
  };
  const auto rectangle = [&](const NSRef<NSString>& name, NSRect frame, NSInteger colour) {
    add(NSMake<Rectangle>(localized(name), frame), colour);
  };
  rectangle(u"Wall"_ns, {{200, 220}, {260, 180}}, 0xC05621);
  rectangle(u"Door"_ns, {{300, 300}, {60, 100}}, 0x1F2937);
  rectangle(u"Left window"_ns, {{225, 250}, {50, 50}}, 0x2B6CB0);
  rectangle(u"Right window"_ns, {{385, 250}, {50, 50}}, 0x2B6CB0);
  for (const auto& [start, end] : {std::pair(NSPoint(180, 220), NSPoint(330, 120)),
                                   std::pair(NSPoint(330, 120), NSPoint(480, 220))}) {
    add(NSMake<Path>(localized(u"Roof"_ns), std::vector{start, end}), 0xE11D48);
  }
  std::vector<NSPoint> smoke;
  std::vector<NSPoint> ground;
  for (int k = 0; k <= 12; ++k) smoke.emplace_back(400 + 8 * k + 14 * std::sin(k), 150 - 9 * k);
  for (int k = 0; k <= 16; ++k) ground.emplace_back(90 + 30 * k, 404 + 6 * std::sin(k * 0.8));
  add(NSMake<Path>(localized(u"Smoke"_ns), smoke), 0x1F2937);
  add(NSMake<Path>(localized(u"Ground"_ns), ground), 0x2F855A);
  add(NSMake<Label>(localized(u"Title"_ns), NSPoint(200, 430), 36, localized(u"Our house"_ns)),
      0x1F2937);
  add(NSMake<Label>(
          localized(u"Hint"_ns), NSPoint(200, 475), 22,
          localized(u"Drag a handle over the other edge.\nShift keeps the proportions."_ns)),
      0x2B6CB0)
      ->link = NSURL::URLWithString(u"https://example.org/house"_ns);
  return shapes->copy();
}

}  // namespace sketchbook
