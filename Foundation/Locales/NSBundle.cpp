#include "Foundation/NSBundle.h"

#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

#include <Foundation/Locales/LocalizedStrings.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* runningProgram = "/proc/self/exe";

// The file that is mapped at the address, as the kernel knows it: absolute, whatever the working
// directory was when it was loaded. Empty when nothing is mapped from a file there.
fs::path fileMappedAt(const void* address) {
  std::ifstream maps("/proc/self/maps");
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;
    int path = 0;
    if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %*s %*s %*s %*s %n", &start, &end,
                    &path) == 2 &&
        start <= wanted && wanted < end) {
      return line.substr(static_cast<std::size_t>(path));
    }
  }
  return {};
}

fs::path withoutDeletionMark(const fs::path& path) {
  constexpr std::string_view mark = " (deleted)";
  const std::string& text = path.native();
  return text.ends_with(mark) ? fs::path(text.substr(0, text.size() - mark.size())) : path;
}

NSRef<NSString> stringOf(const fs::path& path) {
  return NSMake<NSString>(std::string_view(path.native()));
}

}  // namespace

NSRef<NSBundle> NSBundle::bundleForFile(const fs::path& file, const void* address) {
  static NSNeverDestroyed<std::mutex> mutex;
  static NSNeverDestroyed<std::map<fs::path, NSRef<NSBundle>>> bundles;
  const std::lock_guard lock(*mutex);
  // Kept as the loader spells it, which is cheap to ask for again.
  NSRef<NSBundle>& bundle = (*bundles)[file];
  if (bundle) return bundle;
  std::error_code error;
  const fs::path resolved = withoutDeletionMark(
      file == runningProgram ? fs::read_symlink(file, error) : fileMappedAt(address));
  for (const auto& [spelling, other] : *bundles) {
    if (other && other->_executable == resolved) return bundle = other;
  }
  return bundle = NSMake<NSBundle>(NSPasskey<NSBundle>(), resolved);
}

NSBundle::NSBundle(NSPasskey<NSBundle> /*key*/, fs::path executable)
    : _executable(std::move(executable)), _tables(std::make_unique<NSLocalizedStrings>()) {}
NSBundle::~NSBundle() = default;

NSRef<NSBundle> NSBundle::mainBundle() {
  static const NSNeverDestroyed<NSRef<NSBundle>> bundle(bundleForFile(runningProgram, nullptr));
  return *bundle;
}

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
  return bundleForFile(object->l_name, name);
}

NSRef<NSString> NSBundle::executablePath() const { return stringOf(_executable); }

NSRef<NSString> NSBundle::bundlePath() const { return stringOf(_executable.parent_path()); }

NSRef<NSString> NSBundle::resourcePath() const {
  std::string name = _executable.filename().string();
  const bool isLibrary = name.starts_with("lib") && name.find(".so") != std::string::npos;
  name.resize(std::min(name.find('.', 1), name.size()));
  if (isLibrary) name.erase(0, 3);
  const fs::path folder = _executable.parent_path() / (name + ".resources");
  std::error_code error;
  return fs::is_directory(folder, error) ? stringOf(folder) : bundlePath();
}

NSRef<NSString> NSBundle::localizedStringForKey_value_table(const NSRef<NSString>& key,
                                                            const NSRef<NSString>& value,
                                                            const NSRef<NSString>& table) const {
  const bool hasValue = !NSViewOf(value).empty();
  if (!key) return hasValue ? value : u""_ns;
  static const NSNeverDestroyed<NSRef<NSString>> standardTable(u"Localizable"_ns);
  const auto& name = NSViewOf(table).empty() ? *standardTable : table;
  if (auto text = _tables->find(key, name, *this)) return text;
  return hasValue ? value : key;
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
