#pragma once

#include "examples/sketchbook/model/Shape.h"

#include <functional>

namespace sketchbook {

/// Tells how much is done, 0 to 1, and asks whether to go on.
using Progress = std::function<bool(double)>;

/// Calls the function with each shape. Whether it came to the end, which the progress may not want.
bool forEachShape(const NSRef<NSArray>& shapes, const Progress& progress,
                  const std::function<void(const Shape&)>& function);

/// Gives the area that a picture of the shapes shows: their frames and a margin.
NSRect pictureArea(const NSRef<NSArray>& shapes);

/// Draws the shapes as an SVG picture, with the addresses that are safe to open as links; nil when
/// the progress said to stop. From any thread.
NSRef<NSString> svgPicture(const NSRef<NSArray>& shapes, const Progress& progress = {});

/// Lists the words of the labels in lower case, each once, in order; nil when the progress said to
/// stop. From any thread.
NSRef<NSArray> wordsOfLabels(const NSRef<NSArray>& shapes, const Progress& progress = {});

}  // namespace sketchbook
