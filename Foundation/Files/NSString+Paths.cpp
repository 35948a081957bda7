#include "Foundation/NSString.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <Foundation/Files/FilePaths.h>
#include <Foundation/NSArray.h>

namespace fs = std::filesystem;

namespace {

using View = std::u16string_view;

// Without "/" at the end; the root stays.
View withoutTrailingSlashes(View path) {
  while (path.size() > 1 && path.ends_with(u'/')) path.remove_suffix(1);
  return path;
}

std::size_t startOfLastName(View path) {
  const std::size_t slash = path.rfind(u'/');
  return slash == View::npos ? 0 : slash + 1;
}

// Where the "." of the extension is, or the end. A "." in front of the name begins no extension.
std::size_t endOfStem(View path) {
  const std::size_t dot = path.rfind(u'.');
  const std::size_t name = startOfLastName(path);
  return dot == View::npos || dot <= name || dot + 1 == path.size() ? path.size() : dot;
}

// Whether there is a name that an extension can be appended to.
bool hasName(View path) { return !path.empty() && path != u"/"; }

std::vector<View> namesOf(View path) {
  std::vector<View> names;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find(u'/', start), path.size());
    if (end != start) names.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

std::u16string withTildeExpanded(View path) {
  if (!path.starts_with(u'~')) return std::u16string(path);
  const std::size_t end = std::min(path.find(u'/'), path.size());
  const std::string home = NSHomeDirectoryOf(NSUTF8FromUnits(path.substr(1, end - 1)));
  if (home.empty()) return std::u16string(path);
  const NSUnitBuffer units = NSUnitsFromUTF8(home);
  const View rest = path.substr(end);
  std::u16string result(withoutTrailingSlashes(units.view()));
  if (result == u"/" && !rest.empty()) result.clear();
  return result.append(rest);
}

// The folder that holds what an absolute path names, through the link if it names one.
std::u16string parentOf(const std::u16string& path) {
  std::error_code error;
  // The system knows no longer paths, and none with a zero.
  const bool mayExist = path.size() < PATH_MAX && path.find(u'\0') == View::npos;
  const fs::path onDisk(mayExist ? NSUTF8FromUnits(path) : std::string());
  if (mayExist && fs::is_symlink(onDisk, error)) {
    const fs::path real = fs::canonical(onDisk, error);
    if (!error) {
      const NSUnitBuffer parent = NSUnitsFromUTF8(real.parent_path().native());
      return std::u16string(parent.view() == u"/" ? View() : parent.view());
    }
  }
  return path.substr(0, path.empty() ? 0 : path.rfind(u'/'));
}

}  // namespace

bool NSString::isAbsolutePath() const noexcept {
  return view().starts_with(u'/') || view().starts_with(u'~');
}

NSRef<NSArray> NSString::pathComponents() const {
  std::vector<NSRef<NSObject>> components;
  const View path = view();
  const auto names = namesOf(path);
  components.reserve(names.size() + 2);
  if (path.starts_with(u'/')) components.emplace_back(u"/"_ns);
  for (const View name : names) components.emplace_back(NSMake<NSString>(name));
  if (!names.empty() && path.ends_with(u'/')) components.emplace_back(u"/"_ns);
  return NSMake<NSArray>(std::move(components));
}

NSRef<NSString> NSString::lastPathComponent() const {
  const View path = withoutTrailingSlashes(view());
  return NSMake<NSString>(hasName(path) ? path.substr(startOfLastName(path)) : path);
}

NSRef<NSString> NSString::stringByDeletingLastPathComponent() const {
  const View path = withoutTrailingSlashes(view());
  const std::size_t name = startOfLastName(path);
  return NSMake<NSString>(withoutTrailingSlashes(path.substr(0, name)));
}

NSRef<NSString> NSString::stringByAppendingPathComponent(const NSRef<NSString>& name) const {
  View added = withoutTrailingSlashes(NSViewOf(name));
  const View path = withoutTrailingSlashes(view());
  if (path.empty()) return NSMake<NSString>(added);
  while (added.starts_with(u'/')) added.remove_prefix(1);
  if (added.empty()) return NSMake<NSString>(path);
  auto result = NSMake<NSMutableString>(path);
  if (path != u"/") result->appendUnits(u"/");
  result->appendUnits(added);
  return result;
}

NSRef<NSString> NSString::pathExtension() const {
  const View path = withoutTrailingSlashes(view());
  const std::size_t stem = endOfStem(path);
  return NSMake<NSString>(stem == path.size() ? View() : path.substr(stem + 1));
}

NSRef<NSString> NSString::stringByDeletingPathExtension() const {
  const View path = withoutTrailingSlashes(view());
  return NSMake<NSString>(path.substr(0, endOfStem(path)));
}

NSRef<NSString> NSString::stringByAppendingPathExtension(const NSRef<NSString>& extension) const {
  const View path = withoutTrailingSlashes(view());
  if (!hasName(path) || NSViewOf(extension).empty()) return copy();
  auto result = NSMake<NSMutableString>(path);
  result->appendUnits(u".");
  result->appendString(extension);
  return result;
}

NSRef<NSString> NSString::stringByExpandingTildeInPath() const {
  return NSMake<NSString>(withTildeExpanded(view()));
}

NSRef<NSString> NSString::stringByStandardizingPath() const {
  const std::u16string expanded = withTildeExpanded(view());
  const bool isAbsolute = expanded.starts_with(u'/');
  std::u16string result;
  for (const View name : namesOf(expanded)) {
    if (name == u".") continue;
    if (isAbsolute && name == u"..") {
      result = parentOf(result);
    } else {
      if (isAbsolute || !result.empty()) result.push_back(u'/');
      result.append(name);
    }
  }
  // A name that begins with "~" must not become a home directory.
  if (result.starts_with(u'~') && !expanded.starts_with(u'~')) result.insert(0, u"./");
  if (isAbsolute && result.empty()) result.push_back(u'/');
  // A relative path of nothing but "." is the current directory still.
  if (result.empty() && !expanded.empty()) result.push_back(u'.');
  return NSMake<NSString>(result);
}
