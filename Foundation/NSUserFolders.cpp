#include "Foundation/NSUserFolders.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

struct ListedFolder {
  NSUInteger directory;
  std::string_view variable;
  const char* usual;
};

constexpr std::array<ListedFolder, 7> listedFolders = {{
    {NSDocumentDirectory, "XDG_DOCUMENTS_DIR", "Documents"},
    {NSDesktopDirectory, "XDG_DESKTOP_DIR", "Desktop"},
    {NSDownloadsDirectory, "XDG_DOWNLOAD_DIR", "Downloads"},
    {NSMoviesDirectory, "XDG_VIDEOS_DIR", "Videos"},
    {NSMusicDirectory, "XDG_MUSIC_DIR", "Music"},
    {NSPicturesDirectory, "XDG_PICTURES_DIR", "Pictures"},
    {NSSharedPublicDirectory, "XDG_PUBLICSHARE_DIR", "Public"},
}};

void skipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// The path in `XDG_MUSIC_DIR="$HOME/Music"`; empty for any other line.
fs::path pathInLine(std::string_view line, std::string_view variable, const fs::path& home) {
  skipBlanks(line);
  if (!takePrefix(line, variable)) return {};
  skipBlanks(line);
  if (!takePrefix(line, "=")) return {};
  skipBlanks(line);
  if (!takePrefix(line, "\"")) return {};
  std::string path;
  if (takePrefix(line, "$HOME") && (line.starts_with('/') || line.starts_with('"'))) {
    path = home.native();
  } else if (!line.starts_with('/')) {
    return {};
  }
  for (; !line.empty() && line.front() != '"'; line.remove_prefix(1)) {
    if (line.front() == '\\' && line.size() > 1) line.remove_prefix(1);
    path.push_back(line.front());
  }
  return line.empty() || path.find('\0') != std::string::npos ? fs::path() : fs::path(path);
}

}  // namespace

NSUserFolders NSUserFolders::current() {
  NSUserFolders folders;
  const std::string home = NSHomeDirectoryOf({});
  folders.home = home.empty() ? "/" : home;
  folders.data = NSEnvironmentPath("XDG_DATA_HOME");
  folders.cache = NSEnvironmentPath("XDG_CACHE_HOME");
  fs::path settings = NSEnvironmentPath("XDG_CONFIG_HOME");
  if (settings.empty()) settings = folders.home / ".config";
  std::ifstream list(settings / "user-dirs.dirs", std::ios::binary);
  folders.list.assign(std::istreambuf_iterator<char>(list), {});
  return folders;
}

// The last line that tells counts, as for a shell.
fs::path NSUserFolders::listed(std::string_view variable) const {
  fs::path result;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.find('\n', start), list.size());
    fs::path path = pathInLine(std::string_view(list).substr(start, end - start), variable, home);
    if (!path.empty()) result = std::move(path);
    start = end + 1;
  }
  return result;
}

fs::path NSUserFolders::directory(NSUInteger directory, NSUInteger domain) const {
  if (domain == NSLocalDomainMask) {
    switch (directory) {
      case NSUserDirectory:
        return "/home";
      case NSApplicationSupportDirectory:
        return "/usr/local/share";
      case NSCachesDirectory:
        return "/var/cache";
      default:
        return {};
    }
  }
  if (domain != NSUserDomainMask) return {};
  if (directory == NSApplicationSupportDirectory) {
    return data.empty() ? home / ".local/share" : data;
  }
  if (directory == NSCachesDirectory) return cache.empty() ? home / ".cache" : cache;
  for (const auto& [listedDirectory, variable, usual] : listedFolders) {
    if (listedDirectory != directory) continue;
    fs::path path = listed(variable);
    return path.empty() ? home / usual : path;
  }
  return {};
}
