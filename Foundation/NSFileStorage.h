#pragma once

#include <filesystem>

#include <Foundation/NSError.h>
#include <Foundation/NSFileWrapper.h>

// File wrappers on the disk, in NSFileReading.cpp and NSFileWriting.cpp; `NSFileWrapper` tells what
// the two do.

NSRef<NSFileWrapper> NSReadFileTree(const std::filesystem::path& path, NSRef<NSError>* error);
bool NSWriteFileTree(const NSFileWrapper& wrapper, const std::filesystem::path& path,
                     NSRef<NSError>* error);
