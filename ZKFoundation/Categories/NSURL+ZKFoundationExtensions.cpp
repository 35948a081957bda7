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
