#pragma once

#include <filesystem>

#include <Foundation/NSTypes.h>

/// Gives the path of a standard directory of `NSFileManager`'s list; empty where there is none.
[[nodiscard]] std::filesystem::path NSStandardDirectory(NSUInteger directory, NSUInteger domain);
