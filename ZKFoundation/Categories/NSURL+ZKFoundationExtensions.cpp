#include "ZKFoundation/Categories/NSURL+ZKFoundationExtensions.h"
#include "ZKFoundation/Categories/ZKNumberedName.h"

#include <Foundation/NSString.h>

namespace {

bool hasExtension(const NSRef<NSString>& path) { return path->pathExtension()->length() != 0; }

NSRef<NSString> stemOf(const NSRef<NSString>& path) {
  return hasExtension(path) ? path->stringByDeletingPathExtension() : path;
}

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSURL> uniqueURLWithURL_forURLArray(const NSRef<NSURL>& url, const NSRef<NSArray>& urls) {
  if (!url->isFileURL()) return url;
  const auto path = url->path();
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
  return NSURL::fileURLWithPath(
      hasExtension(path) ? freeStem->stringByAppendingPathExtension(path->pathExtension())
                         : freeStem);
}

bool isSecurityScoped(const NSRef<NSURL>& url) {
  const auto query = url->query();
  return !query || query->view().find(u"applesecurityscope=") != std::u16string_view::npos;
}

NSRef<NSURL> strippedSecurityScopedURL(const NSRef<NSURL>& url) {
  return isSecurityScoped(url) ? NSURL::fileURLWithPathComponents(url->pathComponents()) : url;
}

}  // namespace ZKFoundationExtensions
