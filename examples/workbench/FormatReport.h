#pragma once

#include "examples/workbench/Document.h"

#include <ostream>
#include <vector>

/// The size of every document in four styles, in the user's locale and language.
void printSizes(std::ostream& out, const std::vector<NSRef<Document>>& documents, bool isColoured);

/// What addresses become that a user might type, or why they are refused.
void printAddresses(std::ostream& out, bool isColoured);
