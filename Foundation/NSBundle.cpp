#include "Foundation/NSBundle.h"

#include "Foundation/NSKeyValueCoding.h"
#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSString.h"

#include <map>
#include <mutex>
#include <string>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* runningProgram = "/proc/self/exe";

NSRef<NSString> stringOf(const fs::path& path) {
  return NSMake<NSString>(std::string_view(path.native()));
}

}  // namespace

NSRef<NSBundle> NSBundle::bundleForFile(const fs::path& file) {
  static NSNeverDestroyed<std::mutex> mutex;
  static NSNeverDestroyed<std::map<fs::path, NSRef<NSBundle>>> bundles;
  const std::lock_guard lock(*mutex);
  // Looked up as the loader spells it: a path that was relative must not be resolved again later,
  // from another working directory.
  NSRef<NSBundle>& bundle = (*bundles)[file];
  if (bundle) return bundle;
  std::error_code error;
  fs::path resolved = fs::canonical(file, error);
  if (error) resolved = fs::absolute(file, error);
  for (const auto& [spelling, other] : *bundles) {
    if (other && other->_executable == resolved) return bundle = other;
  }
  return bundle = NSMake<NSBundle>(Key(), std::move(resolved));
}

NSRef<NSBundle> NSBundle::mainBundle() { return bundleForFile(runningProgram); }

NSRef<NSBundle> NSBundle::bundleForClass(NSClass aClass) {
  // Where the class's name lies, not its type_info: an executable that is not position-independent
  // may hold a copy of the type_info of a library's class.
  const void* const name = aClass.typeInfo().name();
  Dl_info info;
  link_map* object = nullptr;
  if (dladdr1(name, &info, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0 ||
      object == nullptr || object->l_name == nullptr || *object->l_name == '\0') {
    return mainBundle();
  }
  return bundleForFile(object->l_name);
}

NSRef<NSString> NSBundle::executablePath() const { return stringOf(_executable); }

NSRef<NSString> NSBundle::bundlePath() const { return stringOf(_executable.parent_path()); }

NSRef<NSString> NSBundle::resourcePath() const {
  std::string name = _executable.filename().string();
  name.resize(std::min(name.find('.', 1), name.size()));
  if (name.starts_with("lib")) name.erase(0, 3);
  const fs::path folder = _executable.parent_path() / (name + ".resources");
  std::error_code error;
  return fs::is_directory(folder, error) ? stringOf(folder) : bundlePath();
}

NSRef<NSString> NSBundle::description() const {
  return NSMake<NSString>("NSBundle <" + _executable.string() + ">");
}

const NSPropertyTable& NSBundle::propertyTable() const {
  static const NSPropertyTable table({{u"executablePath", &NSBundle::executablePath},
                                      {u"bundlePath", &NSBundle::bundlePath},
                                      {u"resourcePath", &NSBundle::resourcePath}},
                                     NSObject::propertyTable());
  return table;
}
