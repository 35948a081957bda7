#include "examples/workbench/Table.h"

#include <algorithm>

using namespace ZKFoundationExtensions;

namespace {

// Characters, of which a terminal gives each one cell in the scripts that are used here.
NSUInteger widthOf(std::u16string_view text) {
  return static_cast<NSUInteger>(
      std::ranges::count_if(text, [](char16_t unit) { return !NSIsLowSurrogate(unit); }));
}

NSRef<NSString> cutTo(NSUInteger widest, const NSRef<NSString>& text) {
  if (widthOf(text->view()) <= widest) return text;
  NSUInteger end = 0;
  for (NSUInteger width = 0; width + 1 < widest; ++width) {
    end += NSIsHighSurrogate(text->characterAtIndex(end)) ? 2U : 1U;
  }
  return stringByAppendingEllipsis(text->substringToIndex(end));
}

}  // namespace

void Table::addRow(std::vector<NSRef<NSString>> cells) {
  for (std::size_t k = 0; k < cells.size(); ++k) cells[k] = cutTo(_columns[k].widest, cells[k]);
  _rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out, bool isColoured) const {
  std::vector<NSRef<NSString>> titles;
  std::vector<NSUInteger> widths;
  for (const Column& column : _columns) {
    titles.push_back(NSMake<NSString>(column.title));
    widths.push_back(titles.back()->length());
  }
  for (const auto& row : _rows) {
    for (std::size_t k = 0; k < row.size(); ++k) {
      widths[k] = std::max(widths[k], widthOf(row[k]->view()));
    }
  }
  printRow(out, titles, widths, isColoured ? "1" : nullptr);
  for (const auto& row : _rows) printRow(out, row, widths, isColoured ? "" : nullptr);
}

void Table::printRow(std::ostream& out, const std::vector<NSRef<NSString>>& cells,
                     const std::vector<NSUInteger>& widths, const char* colour) const {
  for (std::size_t k = 0; k < cells.size(); ++k) {
    if (colour != nullptr) {
      out << "\033[" << (*colour != '\0' ? colour : _columns[k].colour) << 'm';
    }
    out << cells[k];
    if (colour != nullptr) out << "\033[0m";
    if (k + 1 < cells.size()) {
      out << std::string(widths[k] - widthOf(cells[k]->view()) + 2, ' ');
    }
  }
  out << '\n';
}
