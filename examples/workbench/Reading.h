#pragma once

#include "examples/workbench/Document.h"

#include <filesystem>
#include <vector>

/// Reads the text files below the directory in the background, while the main run loop shows how
/// far it is on a terminal; in the order of their paths. Hidden files and what builds produce are
/// left out. Throws `std::filesystem::filesystem_error`.
std::vector<NSRef<Document>> readDocuments(const std::filesystem::path& directory);
