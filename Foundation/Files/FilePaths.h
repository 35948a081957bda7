#pragma once

#include <string>
#include <string_view>

// Paths as the file system has them: bytes without U+0000.

/// The bytes of a path; empty for a text that no file's path can be, with U+0000 or half of a
/// surrogate pair.
std::string NSBytesOfPath(std::u16string_view path);

/// The value of an environment variable that is an absolute path; empty for any other.
std::string NSEnvironmentPath(const char* variable);

/// The home directory of a user, or of the process's for an empty name; empty if there is none.
std::string NSHomeDirectoryOf(const std::string& user);
