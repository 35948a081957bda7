#pragma once

#include <filesystem>

#include <Foundation/NSTypes.h>

/// Gives the path of a standard directory, as `NSFileManager` lists them; empty where there is
/// none.
[[nodiscard]] std::filesystem::path NSStandardDirectory(NSUInteger directory, NSUInteger domain);
