#include "examples/gallery/Pictures.h"

#include <array>
#include <string>

#include <ZKFoundation/ZKFoundation.h>

namespace {

void drawHandles(Drawing& drawing, NSRect rect, std::string_view color) {
  for (NSUInteger handle = 0; handle < 9; ++handle) {
    const NSPoint point = ZKGetPointOfRect(handle, rect);
    drawing.rect(ZKCenterOnPoint({{0, 0}, {6, 6}}, point), {.stroke = color, .fill = "white"});
  }
}

Drawing handles() {
  Drawing drawing({300, 190});
  const NSRect rect = {{50, 40}, {200, 110}};
  drawing.rect(rect, {.stroke = resultColor, .width = 1.5});
  drawHandles(drawing, rect, resultColor);
  for (NSUInteger handle = 0; handle < 9; ++handle) {
    const NSPoint point = ZKGetPointOfRect(handle, rect);
    const NSPoint outwards = ZKDiffPoint(point, ZKOppositePoint(handle, rect));
    const bool isCenter = handle == ZKHandleCenter;
    drawing.text({point.x + outwards.x * 0.07, point.y + (isCenter ? 14 : outwards.y * 0.12)},
                 std::to_string(handle), ZKIsCorner(handle) ? otherColor : "#333");
  }
  return drawing;
}

// A drag of one handle by so much, in a cell of its own.
void drawDrag(Drawing& drawing, NSPoint corner, NSUInteger handle, NSPoint by) {
  NSRect rect = {{corner.x + 50, corner.y + 40}, {60, 40}};
  const NSPoint start = ZKGetPointOfRect(handle, rect);
  const NSPoint end = ZKSumPoint(start, by);
  drawing.rect(rect, {.stroke = givenColor, .dash = "3 2"});
  // Moved to the origin, as the answers depend on where the rectangle stands.
  NSRect moved = NSOffsetRect(rect, -rect.origin.x, -rect.origin.y);
  const NSUInteger becomes = ZKMovePointTo(&moved, handle, ZKDiffPoint(end, rect.origin));
  rect = NSOffsetRect(moved, rect.origin.x, rect.origin.y);
  drawing.rect(ZKNormalizedRect(rect), {.stroke = resultColor, .width = 1.5, .fill = "#1668b818"});
  drawing.arrow(start, end, {.stroke = otherColor});
  const bool isNegative = rect.size.width < 0 || rect.size.height < 0;
  drawing.text({corner.x + 80, corner.y + 8},
               "becomes " + std::to_string(becomes) + (isNegative ? ", size negative" : ""));
}

Drawing drags() {
  struct Drags {
    std::string_view handle;
    NSPoint out;
    NSPoint over;
  };
  constexpr std::array<Drags, 9> rows = {{{"0: min-y edge", {5, -20}, {5, 60}},
                                          {"1: min-x edge", {-25, 5}, {85, 5}},
                                          {"2: max-y edge", {5, 20}, {5, -60}},
                                          {"3: max-x edge", {25, 5}, {-85, 5}},
                                          {"4: min-x, min-y", {-20, -15}, {80, 55}},
                                          {"5: max-x, min-y", {20, -15}, {-80, 55}},
                                          {"6: max-x, max-y", {20, 15}, {-80, -55}},
                                          {"7: min-x, max-y", {-20, 15}, {80, -55}},
                                          {"8: centre", {30, 15}, {-30, -15}}}};
  constexpr double width = 165;
  constexpr double height = 118;
  constexpr double label = 110;
  Drawing drawing({label + 3 * width, rows.size() * height + 60});
  drawing.text({label / 2, 15}, "before", givenColor);
  drawing.text({label + 80, 15}, "the drag", otherColor);
  drawing.text({label + width + 80, 15}, "after", resultColor);
  constexpr double top = rows.size() * height + 40;
  drawing.text({label + 80, top}, "away");
  drawing.text({label + width + 80, top}, "into it");
  drawing.text({label + 2 * width + 80, top}, "over the opposite edge");
  for (NSUInteger handle = 0; handle < rows.size(); ++handle) {
    const auto& [name, out, over] = rows[handle];
    const double y = static_cast<double>(rows.size() - 1 - handle) * height + 30;
    drawing.text({label / 2, y + 60}, name);
    drawDrag(drawing, {label, y}, handle, out);
    drawDrag(drawing, {label + width, y}, handle, {-out.x, -out.y});
    drawDrag(drawing, {label + 2 * width, y}, handle, over);
  }
  return drawing;
}

Drawing alignments() {
  Drawing drawing({390, 330});
  constexpr std::array<NSUInteger, 9> codes = {
      ZKAlignTopLeft, ZKAlignTop,        ZKAlignTopRight, ZKAlignLeft,       ZKAlignCenter,
      ZKAlignRight,   ZKAlignBottomLeft, ZKAlignBottom,   ZKAlignBottomRight};
  for (std::size_t k = 0; k < codes.size(); ++k) {
    const std::size_t row = k / 3;
    const std::size_t column = k % 3;
    const NSRect frame = {
        {15 + 125.0 * static_cast<double>(column), 230 - 105.0 * static_cast<double>(row)},
        {110, 85}};
    NSRect image = {{0, 0}, {36, 26}};
    image.origin = ZKAlignRectangles(codes[k], image, frame);
    drawing.rect(frame, {.stroke = givenColor});
    drawing.rect(image, {.stroke = resultColor, .width = 1.5, .fill = "#1668b830"});
    drawing.text(ZKGetPointOfRect(ZKHandleCenter, image), std::to_string(codes[k]));
  }
  return drawing;
}

Drawing scalings() {
  Drawing drawing({650, 400});
  const std::array<NSSize, 3> sizes = {{{40, 25}, {150, 45}, {40, 115}}};
  const std::array<std::string, 3> modes = {"0: down", "1: up or down", "2: both axes"};
  for (NSUInteger mode = 0; mode < modes.size(); ++mode) {
    const double y = 290 - 125.0 * static_cast<double>(mode);
    drawing.text({60, y + 38}, modes[mode]);
    for (std::size_t k = 0; k < sizes.size(); ++k) {
      const NSRect target = {{150 + 170.0 * static_cast<double>(k), y}, {110, 75}};
      const NSRect source =
          ZKCenterOnPoint({{0, 0}, sizes[k]}, ZKGetPointOfRect(ZKHandleCenter, target));
      drawing.rect(target, {.stroke = givenColor});
      drawing.rect(source, {.stroke = otherColor, .dash = "3 2"});
      drawing.rect(ZKScaleRectToFitInRect(mode, ZKAlignCenter, source, target),
                   {.stroke = resultColor, .width = 1.5, .fill = "#1668b830"});
    }
  }
  return drawing;
}

}  // namespace

std::vector<Picture> picturesOfRectangles() {
  return {
      {"handles", "The nine handles of a rectangle. Corners have orange numbers.", handles().svg()},
      {"drags",
       "What a drag of each handle does, and which handle the dragged point becomes. Across y most "
       "handles are judged by the max-x edge, which shows in some of the answers.",
       drags().svg()},
      {"alignments", "The alignment codes: where a rectangle is placed in another.",
       alignments().svg()},
      {"scalings",
       "The scaling modes, for a source (dashed) that is smaller than the target, wider and "
       "higher.",
       scalings().svg()},
  };
}
