#include "fuzz/Support.h"

#include <string>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// What may be handed on has one of four schemes and no host that is not asked for; what is stripped
// is a file's path alone.
void requireSafety(const NSRef<NSURL>& url) {
  const auto scheme = url->scheme() ? url->scheme()->lowercaseString() : u""_ns;
  const bool isWeb = scheme == u"http" || scheme == u"https";
  require(!isSafeToOpen(url) || isWeb || scheme == u"mailto" || url->isFileURL());
  require(!isSafeToOpen(url) || !isWeb || url->host()->length() != 0);
  const auto stripped = strippedSecurityScopedURL(url);
  require(!stripped || stripped == url || (stripped->isFileURL() && !stripped->query()));
}

}  // namespace

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
    requireSafety(url);
  }
  const auto standardized = text->stringByStandardizingPath();
  require(standardized->stringByStandardizingPath()->isEqual(standardized));
  return 0;
}
