#pragma once

#include "examples/workbench/Document.h"

#include <ostream>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

/// A table of lines, words, the longest word and a headline in title case for every document.
void printTextStatistics(std::ostream& out, const std::vector<NSRef<Document>>& documents,
                         bool isColoured);

/// The headings of the documents that have several, numbered: Roman numerals for sections, letters
/// for their parts.
void printOutlines(std::ostream& out, const std::vector<NSRef<Document>>& documents);

/// Searches every document from its middle, around its end, without regard to letter case. Tells
/// which lines have hits and shows the first of them with the words that hold them marked.
void printHits(std::ostream& out, const std::vector<NSRef<Document>>& documents,
               const NSRef<NSString>& term, bool isColoured);
