#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

/// Text in aligned columns for a terminal or a file.
class Table {
 public:
  struct Column {
    const char* title;
    /// Longer cells are cut, with an ellipsis.
    NSUInteger widest;
    /// The terminal's parameters for the column's colour, such as "36".
    const char* colour;
  };

  explicit Table(std::vector<Column> columns) : _columns(std::move(columns)) {}

  /// As many cells as there are columns.
  void addRow(std::vector<NSRef<NSString>> cells);
  void print(std::ostream& out, bool isColoured) const;

 private:
  void printRow(std::ostream& out, const std::vector<NSRef<NSString>>& cells,
                const std::vector<NSUInteger>& widths, const char* colour) const;

  std::vector<Column> _columns;
  std::vector<std::vector<NSRef<NSString>>> _rows;
};
