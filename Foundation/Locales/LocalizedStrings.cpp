#include "Foundation/Locales/LocalizedStrings.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include <Foundation/Locales/StringsFile.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>

namespace fs = std::filesystem;

namespace {

// Where the table is in one language: "de-CH.lproj", "de_CH.lproj", "de.lproj".
fs::path fileInLanguage(const fs::path& folder, std::string language, const std::string& name) {
  std::error_code error;
  while (true) {
    std::string withUnderscores = language;
    std::ranges::replace(withUnderscores, '-', '_');
    for (const std::string& spelling : {language, withUnderscores}) {
      fs::path file = folder / (spelling + ".lproj") / name;
      if (fs::is_regular_file(file, error)) return file;
    }
    const std::size_t end = language.find_last_of("-_");
    if (end == std::string::npos) return {};
    language.resize(end);
  }
}

fs::path fileOf(const NSRef<NSString>& table, const NSRef<NSArray>& languages,
                const fs::path& folder) {
  const std::string name = table->utf8() + ".strings";
  for (const auto& language : languages) {
    const auto tag = language.as<NSString>();
    fs::path file = tag ? fileInLanguage(folder, tag->utf8(), name) : fs::path();
    if (!file.empty()) return file;
  }
  std::error_code error;
  fs::path file = folder / name;
  return fs::is_regular_file(file, error) ? file : fs::path();
}

}  // namespace

const NSRef<NSDictionary>& NSLocalizedStrings::entries(const NSRef<NSString>& table,
                                                       const NSBundle& bundle, std::string& fault) {
  if (const auto known = _tables.find(table); known != _tables.end()) return known->second;
  const fs::path file = fileOf(table, _languages, bundle.resourcePath()->utf8());
  auto& entries = _tables[table->copy()] = NSMake<NSDictionary>();
  if (!file.empty()) {
    const NSStringsFile read = NSReadStringsFile(file);
    entries = read.entries;
    if (!read.fault.empty()) fault = file.native() + ", " + read.fault;
  }
  return entries;
}

NSRef<NSString> NSLocalizedStrings::find(const NSRef<NSString>& key, const NSRef<NSString>& table,
                                         const NSBundle& bundle) {
  std::string fault;
  NSRef<NSString> text;
  {
    const std::lock_guard lock(_mutex);
    // Asked first, so that languages which change meanwhile are asked for again next time.
    const std::uint64_t generation = NSLocale::languagesGeneration();
    if (!_languages || generation != _generation) {
      _generation = generation;
      _languages = NSLocale::preferredLanguages();
      _tables.clear();
      _recentTable = nullptr;
    }
    if (!table.is(_recentTable)) {
      _recentEntries = entries(table, bundle, fault);
      _recentTable = table->copy();
    }
    text = _recentEntries->objectForKey(key).as<NSString>();
  }
  // A log sink may look up texts itself.
  NSLogStringsFault(fault);
  return text;
}
