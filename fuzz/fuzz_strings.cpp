#include "fuzz/Support.h"

#include <string>

#include <ZKFoundation/ZKFoundation.h>

namespace {

void appendQuoted(std::u16string_view text, std::u16string& table) {
  table.push_back(u'"');
  for (const char16_t unit : text) {
    if (unit == u'"' || unit == u'\\') table.push_back(u'\\');
    table.push_back(unit);
  }
  table.push_back(u'"');
}

}  // namespace

// What can be read of any table comes back from a table that is written from it, and formats that
// come from it hurt nobody.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const NSLogSink former = NSSetLogSink([](const NSRef<NSString>& /*line*/) {});
  const auto text = NSMake<NSString>(std::string_view(reinterpret_cast<const char*>(data), size));
  const auto entries = text->propertyListFromStringsFileFormat();
  std::u16string table;
  for (const auto& [key, value] : entries) {
    appendQuoted(key.as<NSString>()->view(), table);
    table += u" = ";
    appendQuoted(value.as<NSString>()->view(), table);
    table += u";\n";
    require(NSString::stringWithFormat(value.as<NSString>(), key, 7, -0.5, "text")->length() <
            100 * size + 8000 * size);
  }
  require(NSMake<NSString>(table)->propertyListFromStringsFileFormat()->isEqual(entries));
  return 0;
}
