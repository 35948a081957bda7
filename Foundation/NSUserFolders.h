#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <Foundation/NSFileManager.h>

// Where the system keeps what, by the XDG base directory specification and xdg-user-dirs.

/// What counts of the environment.
struct NSUserFolders {
  std::filesystem::path home;
  /// XDG_DATA_HOME, XDG_CACHE_HOME; empty ones have their default.
  std::filesystem::path data;
  std::filesystem::path cache;
  /// The text of `user-dirs.dirs`.
  std::string list;

  /// Those of the process.
  static NSUserFolders current();

  /// Empty where the domain has no such directory.
  std::filesystem::path directory(NSUInteger directory, NSUInteger domain) const;

 private:
  std::filesystem::path listed(std::string_view variable) const;
};

/// The value of an environment variable that is an absolute path; empty for any other.
std::string NSEnvironmentPath(const char* variable);

/// The home directory of a user, or of the process's for an empty name; empty if there is none.
std::string NSHomeDirectoryOf(const std::string& user);
