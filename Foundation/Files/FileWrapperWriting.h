#pragma once

#include <filesystem>

#include <Foundation/NSFileWrapper.h>

/// Writes the file or folder, as `NSFileWrapper` tells, and gives the name under which it stands.
NSRef<NSString> NSWriteFileTree(const NSFileWrapper& wrapper, const std::filesystem::path& path);
