#include "fuzz/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// What becomes of a name that is taken begins as it does, and ends with a number.
void requireNumber(const NSRef<NSString>& name, const NSRef<NSString>& numbered) {
  const std::u16string_view units = numbered->view();
  const auto base = units.substr(0, units.find_last_not_of(u"0123456789") + 1);
  require(base.size() < units.size());
  require(name->view().starts_with(base) || base.starts_with(name->view()));
}

void requirePath(const NSRef<NSString>& path) {
  const auto extension = path->pathExtension();
  const auto rest = path->stringByDeletingPathExtension();
  if (extension->length() != 0) {
    require(path->hasPrefix(rest));
    require(rest->pathExtension()->length() + extension->length() < path->length());
  }
  const auto last = path->lastPathComponent();
  require(last == u"/" || last->view().find(u'/') == std::u16string_view::npos);
  require(path->stringByDeletingLastPathComponent()->length() <= path->length());
  const auto longer = path->stringByAppendingPathComponent(u"name.txt"_ns);
  require(longer->lastPathComponent() == u"name.txt" && longer->pathExtension() == u"txt");
}

}  // namespace

// After a byte of options the lines are names, of which the first is made unique beside the others
// and itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const ZKNamingOptions options = {ZKNamingStyle(data[0] % 4U), (data[0] & 4U) != 0,
                                   (data[0] & 8U) != 0};
  const auto names =
      NSMake<NSString>(bytesOf(data + 1, size - 1))->componentsSeparatedByString(u"\n"_ns);
  const auto name = names->firstObject().as<NSString>();

  const auto numbered = uniqueStringWithString_forStringArray(name, names);
  require(!names->containsObject(numbered));
  requireNumber(name, numbered);
  require(uniqueStringWithString_forStringArray(numbered, names)->isEqual(numbered));

  const auto styled = uniqueStringWithString_forStringArray_options(name, names, options);
  require(!names->containsObject(styled));
  require(uniqueStringWithString_forStringArray_options(styled, names, options)->isEqual(styled));

  const auto urls = NSMake<NSMutableArray>();
  for (const auto& object : *names) {
    requirePath(object.as<NSString>());
    if (const auto url = NSURL::fileURLWithPath(
            u"/no such folder"_ns->stringByAppendingPathComponent(object.as<NSString>()))) {
      urls->addObject(url);
    }
  }
  if (urls->count() == 0) return 0;
  const auto taken = urls->firstObject().as<NSURL>();
  const auto url = uniqueURLWithURL_forURLArray(taken, urls);
  require(!url || url->isFileURL());
  // The number of a name that ends with "." is its extension, which is not compared.
  require(!url || taken->path()->hasSuffix(u"."_ns) || !urls->containsObject(url));
  return 0;
}
