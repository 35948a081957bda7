#pragma once

#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

/// Makes a panel that shows and changes the name and the address of what is selected, and tells the
/// size of the document and its attachments.
QWidget* makeInspector(const NSRef<Document>& document);

}  // namespace sketchbook
