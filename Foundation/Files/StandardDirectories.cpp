#include "Foundation/Files/StandardDirectories.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <utility>

#include <Foundation/Files/FilePaths.h>
#include <Foundation/NSFileManager.h>

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

// Removes blanks and the word after them; gives false for another word.
bool takeWord(std::string_view& line, std::string_view word) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (!line.starts_with(word)) return false;
  line.remove_prefix(word.size());
  return true;
}

// The path in `XDG_MUSIC_DIR="$HOME/Music"`; empty for any other line.
fs::path pathInLine(std::string_view line, std::string_view variable, const fs::path& home) {
  if (!takeWord(line, variable) || !takeWord(line, "=") || !takeWord(line, "\"")) return {};
  std::string path;
  if (line.starts_with("$HOME/") || line.starts_with("$HOME\"")) {
    line.remove_prefix(5);
    path = home.native();
    if (path.ends_with('/') && line.starts_with('/')) path.pop_back();
  } else if (!line.starts_with('/')) {
    return {};
  }
  for (; !line.empty() && line.front() != '"'; line.remove_prefix(1)) {
    if (line.front() == '\\' && line.size() > 1) line.remove_prefix(1);
    path.push_back(line.front());
  }
  return line.empty() || path.find('\0') != std::string::npos ? fs::path() : fs::path(path);
}

// What `user-dirs.dirs` says; the last line that tells counts, as for a shell.
fs::path listedFolder(std::string_view variable, const fs::path& home) {
  fs::path settings = NSEnvironmentPath("XDG_CONFIG_HOME");
  if (settings.empty()) settings = home / ".config";
  settings /= "user-dirs.dirs";
  std::ostringstream text;
  std::error_code error;
  // Opening a pipe would wait for its other end.
  if (fs::is_regular_file(settings, error))
    text << std::ifstream(settings, std::ios::binary).rdbuf();
  const std::string list = std::move(text).str();
  fs::path result;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.find('\n', start), list.size());
    fs::path path = pathInLine(std::string_view(list).substr(start, end - start), variable, home);
    if (!path.empty()) result = std::move(path);
    start = end + 1;
  }
  return result;
}

fs::path localDirectory(NSUInteger directory) {
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

fs::path userDirectory(NSUInteger directory) {
  const std::string known = NSHomeDirectoryOf({});
  const fs::path home = known.empty() ? "/" : known;
  const auto variableOr = [&](const char* variable, const char* usual) {
    fs::path path = NSEnvironmentPath(variable);
    return path.empty() ? home / usual : path;
  };
  if (directory == NSApplicationSupportDirectory)
    return variableOr("XDG_DATA_HOME", ".local/share");
  if (directory == NSCachesDirectory) return variableOr("XDG_CACHE_HOME", ".cache");
  for (const auto& [listedDirectory, variable, usual] : listedFolders) {
    if (listedDirectory != directory) continue;
    fs::path path = listedFolder(variable, home);
    return path.empty() ? home / usual : path;
  }
  return {};
}

}  // namespace

fs::path NSStandardDirectory(NSUInteger directory, NSUInteger domain) {
  if (domain == NSUserDomainMask) return userDirectory(directory);
  return domain == NSLocalDomainMask ? localDirectory(directory) : fs::path();
}
