#pragma once

#include <filesystem>

#include <Foundation/NSTypes.h>

/// Where `NSFileManager` says that a standard directory is; empty where there is none.
std::filesystem::path NSStandardDirectory(NSUInteger directory, NSUInteger domain);
