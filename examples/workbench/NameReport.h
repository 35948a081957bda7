#pragma once

#include "examples/workbench/Document.h"

#include <filesystem>
#include <ostream>
#include <vector>

/// What a copy of each document would be called beside the others, and its title in the quotation
/// marks of some languages, which are named in the user's own.
void printNames(std::ostream& out, const std::vector<NSRef<Document>>& documents,
                const std::filesystem::path& directory, bool isColoured);
