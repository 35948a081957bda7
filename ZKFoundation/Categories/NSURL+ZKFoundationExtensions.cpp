#include "ZKFoundation/Categories/NSURL+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/Categories/ZKNumberedName.h>

namespace {

NSRef<NSString> stemOf(const NSRef<NSString>& path) {
  return path->pathExtension()->length() != 0 ? path->stringByDeletingPathExtension() : path;
}

// The path of a file, unless its bytes are others than those of its text.
NSRef<NSString> pathInUTF8(const NSRef<NSURL>& url) {
  auto path = url->path();
  if (!path || !url->isFileURL()) return path;
  return NSIsWellFormedUTF8(url->fileSystemPath().native()) ? path : nullptr;
}

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSURL> uniqueURLWithURL_forURLArray(const NSRef<NSURL>& url, const NSRef<NSArray>& urls) {
  NSCheckArgument("uniqueURLWithURL:forURLArray:", "url", url);
  if (!url->isFileURL()) return url;
  const auto path = pathInUTF8(url);
  if (!path) return nullptr;
  const auto stem = stemOf(path);
  const auto taken = urls ? urls.get()->objects() : std::span<const NSRef<NSObject>>();
  ZKNumberedName name(stem->view(), taken.size());
  for (const auto& object : taken) {
    const auto* const other = object.cast<NSURL>();
    const auto otherPath = other != nullptr ? other->path() : nullptr;
    if (otherPath) name.take(stemOf(otherPath)->view());
  }
  const auto freeStem = NSMake<NSString>(name.freeName());
  return NSURL::fileURLWithPath(freeStem->stringByAppendingPathExtension(path->pathExtension()));
}

bool isSafeToOpen(const NSRef<NSURL>& url) {
  if (!url || !url->scheme()) return false;
  const auto is = [](const NSRef<NSString>& text, const NSRef<NSString>& other) {
    return text->caseInsensitiveCompare(other) == NSOrderedSame;
  };
  const auto scheme = url->scheme();
  const auto host = url->host();
  const bool hasHost = !NSViewOf(host).empty();
  if (is(scheme, u"http"_ns) || is(scheme, u"https"_ns)) return hasHost;
  if (is(scheme, u"mailto"_ns)) {
    const auto recipient = url->absoluteString()->view().substr(scheme->length() + 1);
    return !url->hasHierarchy() && !recipient.empty() && recipient.front() != u'?';
  }
  const bool isHere = !hasHost || is(host, u"localhost"_ns);
  return is(scheme, u"file"_ns) && isHere && url->fileSystemPath().is_absolute();
}

bool isSecurityScoped(const NSRef<NSURL>& url) {
  NSCheckArgument("isSecurityScoped", "url", url);
  const auto query = url->query();
  return !query || query->view().find(u"applesecurityscope=") != std::u16string_view::npos;
}

NSRef<NSURL> strippedSecurityScopedURL(const NSRef<NSURL>& url) {
  NSCheckArgument("strippedSecurityScopedURL", "url", url);
  if (!isSecurityScoped(url)) return url;
  return pathInUTF8(url) ? NSURL::fileURLWithPathComponents(url->pathComponents()) : nullptr;
}

}  // namespace ZKFoundationExtensions
