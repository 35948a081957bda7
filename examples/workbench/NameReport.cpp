#include "examples/workbench/NameReport.h"

#include "examples/workbench/Table.h"

#include <array>
#include <string>

using namespace ZKFoundationExtensions;

namespace {

// Of the identifiers of a preference, say, what is none is left out.
NSRef<NSArray> languages() {
  return ZKLocaleEntity::entitiesForLocaleIdentifiers(
      NSMake<NSArray>({u"en"_ns, u"de"_ns, u"de_CH"_ns, u"fr_CA"_ns, u"pl"_ns, u"no language"_ns}));
}

NSRef<NSString> quoted(const NSRef<NSString>& text, const NSRef<NSString>& identifier) {
  return stringWithStrings(
      {stringWithCharacter(openingDoubleQuotationForLocaleIdentifier(identifier)), text,
       stringWithCharacter(closingDoubleQuotationForLocaleIdentifier(identifier))});
}

}  // namespace

void printNames(std::ostream& out, const std::vector<NSRef<Document>>& documents,
                const std::filesystem::path& directory, bool isColoured) {
  const auto urls = NSMake<NSMutableArray>();
  for (const auto& document : documents) {
    const auto path = std::filesystem::absolute(directory) / document->name()->utf8();
    urls->addObject(NSURL::fileURLWithPath_isDirectory(path, false));
  }
  const auto entities = languages();
  std::vector<std::string> titles;
  for (const auto& entity : entities) {
    titles.push_back(entity.as<ZKLocaleEntity>()->displayName()->utf8());
  }
  std::vector<Table::Column> columns = {{"file", 44, "36"}, {"its copy", 32, "0"}};
  for (const std::string& title : titles) columns.push_back({title.c_str(), 24, "0"});
  Table table(std::move(columns));
  for (std::size_t k = 0; k < documents.size(); ++k) {
    const auto copy = uniqueURLWithURL_forURLArray(urls->objectAtIndex(k).as<NSURL>(), urls);
    std::vector<NSRef<NSString>> cells = {documents[k]->name(), copy->lastPathComponent()};
    const auto& title = documents[k]->title();
    for (const auto& entity : entities) {
      const bool hasTitle = !isEmptyString(title);
      cells.push_back(hasTitle ? quoted(title, entity.as<ZKLocaleEntity>()->localeIdentifier())
                               : emdashString());
    }
    table.addRow(std::move(cells));
  }
  table.print(out, isColoured);
}
