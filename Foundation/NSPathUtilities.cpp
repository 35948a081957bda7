#include "Foundation/NSPathUtilities.h"

#include "Foundation/NSString.h"
#include "Foundation/NSUserFolders.h"

#include <array>
#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

std::string NSEnvironmentPath(const char* variable) {
  const char* const value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): only read.
  return value != nullptr && *value == '/' ? value : "";
}

std::string NSHomeDirectoryOf(const std::string& user) {
  if (user.find('\0') != std::string::npos) return {};
  if (user.empty()) {
    const char* const home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe): only read.
    if (home != nullptr && *home != '\0') return home;
  }
  std::array<char, 4096> room{};
  passwd entry{};
  passwd* found = nullptr;
  const int error = user.empty()
                        ? getpwuid_r(getuid(), &entry, room.data(), room.size(), &found)
                        : getpwnam_r(user.c_str(), &entry, room.data(), room.size(), &found);
  return error == 0 && found != nullptr ? found->pw_dir : "";
}

NSRef<NSString> NSHomeDirectory() {
  const std::string home = NSHomeDirectoryOf({});
  return NSMake<NSString>(home.empty() ? "/" : home);
}

NSRef<NSString> NSTemporaryDirectory() {
  const std::string directory = NSEnvironmentPath("TMPDIR");
  return NSMake<NSString>(directory.empty() ? "/tmp" : directory);
}
