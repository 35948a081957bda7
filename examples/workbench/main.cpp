#include "examples/workbench/Document.h"
#include "examples/workbench/Folder.h"
#include "examples/workbench/FormatReport.h"
#include "examples/workbench/NameReport.h"
#include "examples/workbench/Reading.h"
#include "examples/workbench/SavedReport.h"
#include "examples/workbench/Shelf.h"
#include "examples/workbench/Table.h"
#include "examples/workbench/TextReport.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

namespace fs = std::filesystem;
using namespace ZKFoundationExtensions;

namespace {

NSRef<NSString> valuesText(const std::vector<NSRef<NSString>>& words) {
  constexpr std::size_t shown = 2;
  auto text = NSMake<NSMutableString>();
  for (std::size_t k = 0; k < std::min(words.size(), shown); ++k) {
    // The lenient parser reads 32 bits; what is longer needs the other one.
    const bool isShort = words[k]->length() <= 10;
    const std::uint64_t value = isShort ? hexValue(words[k]) : maxHexValue(words[k]);
    appendStrings(text, {words[k], u" = "_ns, NSMake<NSNumber>(value)->stringValue(), u"  "_ns});
  }
  if (words.size() > shown) {
    appendStrings(text,
                  {u"and "_ns, NSMake<NSNumber>(words.size() - shown)->stringValue(), u" more"_ns});
  }
  return text;
}

void printDocuments(std::ostream& out, const std::vector<NSRef<Document>>& documents,
                    bool isColoured) {
  Table table(
      {{"file", 60, "36"}, {"title", 48, "0"}, {"ids", 48, "33"}, {"document id", 36, "2"}});
  for (const auto& document : documents) {
    const auto& title = document->title();
    table.addRow({document->name(), isEmptyString(title) ? emdashString() : title,
                  valuesText(document->hexadecimalWords()), document->identifier()});
  }
  table.print(out, isColoured);
}

void printCollections(std::ostream& out, const std::vector<NSRef<Document>>& documents) {
  Shelf shelf;
  const auto root = NSMake<Folder>(u""_ns);
  for (const auto& document : documents) {
    shelf.add(document);
    root->file(document, document->name()->view());
  }
  shelf.print(out);
  out << "\nCopying the tree of folders\n\n";
  printCopying(out, root);
}

void report(const fs::path& directory, const NSRef<NSString>& term) {
  const bool isColoured = isatty(STDOUT_FILENO) != 0;
  const auto documents = readDocuments(directory);
  std::vector<Section> sections;
  // What is kept is without colours.
  const auto print = [&](const std::string& title, auto section) {
    std::ostringstream text;
    section(text, false);
    std::cout << '\n' << title << "\n\n";
    if (isColoured) {
      section(std::cout, true);
    } else {
      std::cout << text.str();
    }
    sections.push_back({title, text.str()});
  };
  std::cout << documents.size() << " text files in " << directory.string() << '\n';
  print("Documents", [&](auto& out, bool inColour) { printDocuments(out, documents, inColour); });
  print("Sizes", [&](auto& out, bool inColour) { printSizes(out, documents, inColour); });
  print("Typed addresses", [&](auto& out, bool inColour) { printAddresses(out, inColour); });
  print("Names",
        [&](auto& out, bool inColour) { printNames(out, documents, directory, inColour); });
  print("On the shelf", [&](auto& out, bool /*inColour*/) { printCollections(out, documents); });
  print("Texts", [&](auto& out, bool inColour) { printTextStatistics(out, documents, inColour); });
  print("Sections", [&](auto& out, bool /*inColour*/) { printOutlines(out, documents); });
  print("Search", [&](auto& out, bool inColour) {
    out << "  " << leftPointingDoubleAngleQuotationMarkString() << term
        << rightPointingDoubleAngleQuotationMarkString() << " from the middle around\n\n";
    printHits(out, documents, term, inColour);
  });
  std::cout << "\nSaving the report\n\n";
  saveAndOpen(std::cout, sections, documents);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: workbench DIRECTORY [TERM]\n";
    return 2;
  }
  try {
    report(argv[1], NSMake<NSString>(argc == 3 ? argv[2] : "string"));
  } catch (const std::exception& error) {
    std::cerr << "workbench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
