#include "examples/workbench/FormatReport.h"

#include "examples/workbench/Table.h"

#include <array>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

NSRef<ZKUnitOfInformationFormatter> sizeFormatter(bool bytes, bool binary, bool binaryNames) {
  auto formatter = NSMake<ZKUnitOfInformationFormatter>();
  formatter->setDisplaysInTermsOfBytes(bytes);
  formatter->setUsesIECBinaryPrefixesForCalculation(binary);
  formatter->setUsesIECBinaryPrefixesForDisplay(binaryNames);
  return formatter;
}

constexpr std::array<const char*, 18> typedAddresses = {
    "www.example.org",
    "example.org/a/page.html?query=1#top",
    "https://user@example.org:8080/path",
    "http://[::1]/index",
    "/usr/share/doc",
    "/no such folder/a b",
    "../notes/./today.txt",
    "",
    "localhost",
    "localhost:8000",
    "HTTP://example.org",
    "ftp://example.org",
    "file:///tmp",
    "file://localhost/tmp",
    "mailto:someone@example.org",
    "www.example.org/a page",
    "http://bücher.example",
    "http://example.org/100%",
};

}  // namespace

void printSizes(std::ostream& out, const std::vector<NSRef<Document>>& documents, bool isColoured) {
  const std::array formatters = {NSMake<ZKUnitOfInformationFormatter>(),
                                 sizeFormatter(true, true, true), sizeFormatter(true, false, false),
                                 sizeFormatter(false, false, false)};
  Table table({{"file", 60, "36"},
               {"bytes by 1024", 20, "0"},
               {"IEC names", 20, "0"},
               {"by 1000", 20, "0"},
               {"bits by 1000", 20, "0"}});
  for (const auto& document : documents) {
    const auto bytes = NSMake<NSNumber>(document->byteCount());
    std::vector<NSRef<NSString>> cells = {document->name()};
    for (const auto& formatter : formatters) {
      cells.push_back(formatter->stringFromNumber_ofUnit(bytes, ZKUnitOfInformationByte));
    }
    table.addRow(std::move(cells));
  }
  table.print(out, isColoured);
}

void printAddresses(std::ostream& out, bool isColoured) {
  const auto formatter = NSMake<ZKURLFormatter>();
  Table table({{"typed", 40, "36"}, {"kind", 8, "0"}, {"became", 44, "0"}, {"refused", 60, "31"}});
  for (const char* const typed : typedAddresses) {
    const auto text = NSMake<NSString>(typed);
    NSRef<NSObject> object;
    NSRef<NSString> reason;
    formatter->getObjectValue_forString_errorDescription(object, text, &reason);
    const auto kind = object.as<NSURL>() ? u"URL"_ns : object ? u"path"_ns : emdashString();
    table.addRow(
        {text, kind, object ? object->description() : emdashString(), reason ? reason : u""_ns});
  }
  table.print(out, isColoured);
}
