#pragma once

#include <ZKFoundation/ZKFoundation.h>

namespace sketchbook {

/// Makes the shapes of a drawing that shows what there is.
NSRef<NSArray> sampleShapes();

}  // namespace sketchbook
