#pragma once

#include <filesystem>

#include <Foundation/NSFileWrapper.h>

/// Reads the file or folder, as `NSFileWrapper` tells.
[[nodiscard]] NSRef<NSFileWrapper> NSReadFileTree(const std::filesystem::path& path);
