#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <Foundation/NSDictionary.h>

/// The entries of a table of localized strings, and its first fault, "line 3: …"; empty for none.
struct NSStringsFile {
  NSRef<NSDictionary> entries;
  std::string fault;
};

/// Logs the fault of a table in one line; nothing for an empty one.
void NSLogStringsFault(const std::string& fault);

/// Reads a table's text: `"key" = "value";` with comments as in C++, in any layout. Words of ASCII
/// letters, digits and "_-.:/$" need no quotation marks; `key;` stands for itself. The last of
/// equal keys counts. What cannot be read is passed over up to the end of its line.
[[nodiscard]] NSStringsFile NSReadStringsTable(std::u16string_view text);
/// Reads a file in the encoding of its byte-order mark, or else in UTF-8 or UTF-16.
[[nodiscard]] NSStringsFile NSReadStringsFile(const std::filesystem::path& file);
