#include "fuzz/Support.h"

#include <string>

#include <ZKFoundation/ZKFoundation.h>

// Any text as a typed address: the answer is one of those that are documented, and an accepted URL
// is accepted again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto formatter = NSMake<ZKURLFormatter>();
  const auto text = NSMake<NSString>(std::string_view(reinterpret_cast<const char*>(data), size));
  NSRef<NSObject> object;
  NSRef<NSString> error;
  const bool isAccepted =
      formatter->getObjectValue_forString_errorDescription(object, text, &error);
  require(isAccepted == !error);
  require(formatter->stringForObjectValue(object).get() != nullptr);
  if (text->view().starts_with(u'/') && isAccepted) {
    // The disk may know it as a directory.
    std::string path = object.as<NSURL>()->fileSystemPath();
    if (path != text->utf8()) path.pop_back();
    require(path == text->utf8());
  } else if (const auto url = object.as<NSURL>()) {
    require(url->absoluteString()->hasSuffix(text));
    require(url->path() || !isAccepted);
    require(!url->port() || url->port()->integerValue() >= 0);
    require((url->pathComponents() == nullptr) == (url->path() == nullptr));
    require((url->user() != nullptr) >= (url->password() != nullptr));
    if (isAccepted) {
      NSRef<NSObject> again;
      require(formatter->getObjectValue_forString_errorDescription(again, url->absoluteString(),
                                                                   nullptr));
      require(again->isEqual(url));
      require(!url->host()->view().empty());
    }
  }
  if (const auto url = NSURL::URLWithString(text)) {
    require(NSURL::URLWithString(url->absoluteString())->isEqual(url));
    (void)url->pathComponents();
    (void)url->URLByAppendingPathComponent_isDirectory(text, size % 2 == 0);
  }
  const auto standardized = text->stringByStandardizingPath();
  require(standardized->stringByStandardizingPath()->isEqual(standardized));
  return 0;
}
