#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <Foundation/NSDictionary.h>

/// The entries of a table of localized strings, and what the first unreadable one suffers from,
/// "line 3: …"; empty for a table without faults.
struct NSStringsFile {
  NSRef<NSDictionary> entries;
  std::string fault;
};

/// Writes the one log line of a table with a fault; nothing for an empty one.
void NSLogStringsFault(const std::string& fault);

/// Reads a table's text: `"key" = "value";` with comments as in C++, in any layout. Words of ASCII
/// letters, digits and "_-.:/$" need no quotation marks; `key;` stands for itself. The last of
/// equal keys counts. What cannot be read is passed over up to the end of its line.
NSStringsFile NSReadStringsTable(std::u16string_view text);
/// Reads a file in UTF-8, or UTF-16 in either byte order.
NSStringsFile NSReadStringsFile(const std::filesystem::path& file);
