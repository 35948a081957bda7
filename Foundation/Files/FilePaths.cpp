#include "Foundation/Files/FilePaths.h"

#include <array>
#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

#include <Foundation/NSUnicode.h>

std::string NSBytesOfPath(std::u16string_view path) {
  const bool canBePath = NSIsWellFormed(path) && path.find(u'\0') == std::u16string_view::npos;
  return canBePath ? NSUTF8FromUnits(path) : std::string();
}

std::string NSEnvironmentPath(const char* variable) {
  const char* const value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): only read.
  return value != nullptr && *value == '/' ? value : "";
}

std::string NSHomeDirectoryOf(const std::string& user) {
  if (user.find('\0') != std::string::npos) return {};
  std::string home = user.empty() ? NSEnvironmentPath("HOME") : "";
  if (!home.empty()) return home;
  std::array<char, 4096> room{};
  passwd entry{};
  passwd* found = nullptr;
  const int error = user.empty()
                        ? getpwuid_r(getuid(), &entry, room.data(), room.size(), &found)
                        : getpwnam_r(user.c_str(), &entry, room.data(), room.size(), &found);
  return error == 0 && found != nullptr ? found->pw_dir : "";
}
