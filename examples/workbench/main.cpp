#include "examples/workbench/Document.h"
#include "examples/workbench/Table.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

namespace fs = std::filesystem;
using namespace ZKFoundationExtensions;

namespace {

// What tools keep for themselves and what builds produce is not the user's text.
bool isLeftOut(const fs::path& path) {
  const std::string name = path.filename().string();
  return name.starts_with('.') || name == "build" || name == "node_modules";
}

std::vector<fs::path> filesBelow(const fs::path& directory) {
  std::vector<fs::path> files;
  fs::recursive_directory_iterator walk(directory, fs::directory_options::skip_permission_denied);
  for (auto entry = fs::begin(walk); entry != fs::end(walk); ++entry) {
    if (isLeftOut(entry->path())) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file()) {
      files.push_back(entry->path());
    }
  }
  std::ranges::sort(files);
  return files;
}

// A line that is written over on a terminal, and nothing elsewhere.
void showProgress(std::size_t done, std::size_t total) {
  if (isatty(STDERR_FILENO) == 0) return;
  std::cerr << "\rreading " << done << " of " << total << (done == total ? "\r\033[K" : "")
            << std::flush;
}

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

void report(const fs::path& directory) {
  Table table(
      {{"file", 60, "36"}, {"title", 48, "0"}, {"ids", 48, "33"}, {"document id", 36, "2"}});
  const auto files = filesBelow(directory);
  std::size_t count = 0;
  for (std::size_t k = 0; k < files.size(); ++k) {
    if (const auto document = Document::read(files[k])) {
      const auto name = NSMake<NSString>(fs::relative(files[k], directory).native());
      const auto title = document->title();
      table.addRow({name, isEmptyString(title) ? emdashString() : title,
                    valuesText(document->hexadecimalWords()), document->identifier()});
      ++count;
    }
    showProgress(k + 1, files.size());
  }
  table.print(std::cout, isatty(STDOUT_FILENO) != 0);
  std::cout << '\n' << count << " text files in " << directory.string() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: workbench DIRECTORY\n";
    return 2;
  }
  try {
    report(argv[1]);
  } catch (const std::exception& error) {
    std::cerr << "workbench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
