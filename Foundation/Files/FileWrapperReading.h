#pragma once

#include <filesystem>

#include <Foundation/NSError.h>
#include <Foundation/NSFileWrapper.h>

/// What `NSFileWrapper` does to read from the disk.
NSRef<NSFileWrapper> NSReadFileTree(const std::filesystem::path& path, NSRef<NSError>* error);
