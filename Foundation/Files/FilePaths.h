#pragma once

#include <string>
#include <string_view>

// Paths as the file system has them: bytes without U+0000.

/// Gives the bytes of a path; empty for a text with U+0000 or half of a surrogate pair.
[[nodiscard]] std::string NSBytesOfPath(std::u16string_view path);

/// Gives the value of an environment variable that is an absolute path; empty for any other.
[[nodiscard]] std::string NSEnvironmentPath(const char* variable);

/// Gives the home directory of a user, of the process's for an empty name; empty if there is none.
[[nodiscard]] std::string NSHomeDirectoryOf(const std::string& user);
