#pragma once

#include "examples/workbench/Document.h"

#include <ostream>
#include <string>
#include <vector>

/// A section of what the workbench tells.
struct Section {
  std::string title;
  std::string text;
};

/// Saves the report and the documents that it is about as one document, a directory, in the
/// temporary folder, opens it again and tells what is in it; then it is removed.
void saveAndOpen(std::ostream& out, const std::vector<Section>& sections,
                 const std::vector<NSRef<Document>>& documents);
