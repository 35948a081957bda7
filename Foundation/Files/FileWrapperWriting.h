#pragma once

#include <filesystem>

#include <Foundation/NSFileWrapper.h>

/// Writes the file or folder, as `NSFileWrapper` tells.
void NSWriteFileTree(const NSFileWrapper& wrapper, const std::filesystem::path& path);
