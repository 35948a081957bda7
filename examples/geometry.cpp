#include <array>
#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

namespace {

// A handle is pressed and moved. Each move goes by the rectangle and the handle of the press.
void drag() {
  const NSRect start = {{10, 10}, {40, 20}};
  const NSUInteger pressed = ZKHandleMaxXMaxY;
  for (const NSPoint pointer : {NSPoint(70, 30), NSPoint(0, 20)}) {
    const auto [rect, handle] = ZKDragHandle(start, pressed, pointer, {.keepsProportions = true});
    std::cout << rect << " by handle " << handle << '\n';
  }
  const std::array<CGFloat, 2> guides = {0, 100};
  const auto snapped = ZKSnapPointToGuides({97, 50}, guides, {}, 4);
  std::cout << snapped.point << " is " << snapped.distance << " away\n";
}

// What is drawn around (0, 0) is turned and put in its place, and the pointer is taken back.
void place() {
  const auto placing = ZKConcatTransforms(ZKMakeScaling(2, 2), ZKMakeTranslation(100, 50));
  std::array<NSPoint, 4> drawn = {{{0, 0}, {5, 10}, {15, 10}, {20, 0}}};
  ZKTransformPoints(drawn.data(), drawn.size(), placing, drawn.data());
  std::cout << ZKCurveBounds(drawn.data()) << '\n';
  if (const auto back = ZKInverseTransform(placing)) {
    std::cout << ZKTransformPoint({110, 60}, *back) << '\n';
  }
}

void cut() {
  const std::array<NSPoint, 4> first = {{{0, 0}, {0, 30}, {30, 30}, {30, 0}}};
  const std::array<NSPoint, 4> second = {{{0, 30}, {0, 0}, {30, 0}, {30, 30}}};
  for (const ZKCrossing& crossing : ZKCrossingsOfCurves(first.data(), second.data())) {
    // The part of the first curve up to there.
    std::array<NSPoint, 4> part;
    std::array<NSPoint, 4> rest;
    ZKBezier(first.data(), 3, crossing.t, part.data(), rest.data());
    std::cout << "cut at height " << crossing.point.y << ", " << ZKCurveLength(part.data(), 0.01)
              << " long\n";
  }
  const auto [point, t, distance] = ZKProjectOnCurve(first.data(), {15, 40});
  std::cout << point << " is nearest, at t = " << t << '\n';
  std::cout << ZKFlattenCurve(first.data(), 0.1).size() << " points of chords\n";
}

}  // namespace

int main() {
  drag();
  place();
  cut();
}
