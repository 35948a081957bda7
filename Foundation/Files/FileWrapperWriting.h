#pragma once

#include <filesystem>

#include <Foundation/NSError.h>
#include <Foundation/NSFileWrapper.h>

/// What `NSFileWrapper` does to write to the disk.
bool NSWriteFileTree(const NSFileWrapper& wrapper, const std::filesystem::path& path,
                     NSRef<NSError>* error);
