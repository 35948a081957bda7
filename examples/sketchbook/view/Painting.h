#pragma once

#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

/// Gives the font of the labels, in a size that is scaled to theirs.
QFont labelFont();
/// Lets labels be as wide as their texts are in that font.
void measureLabels();

void paintShape(QPainter& painter, const Shape& shape);

/// Draws the shapes on white, in twice their size for sharp screens, or smaller where that would be
/// too large; a null image when the progress said to stop. From any thread.
QImage pictureOfShapes(const NSRef<NSArray>& shapes, const Progress& progress = {});

}  // namespace sketchbook
