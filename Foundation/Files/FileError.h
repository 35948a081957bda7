#pragma once

#include <filesystem>

#include <Foundation/NSError.h>
#include <Foundation/NSURL.h>

// Errors of files: of `NSCocoaErrorDomain`, with the path and, from `errno`, the error behind it.

/// The error for what `errno` says of a file that was to be read.
NSRef<NSError> NSFileReadError(int number, const std::filesystem::path& path);
/// The same of one that was to be written.
NSRef<NSError> NSFileWriteError(int number, const std::filesystem::path& path);
/// An error that no `errno` stands behind; the path may be nil.
NSRef<NSError> NSFileError(NSCocoaErrorCode code, const NSRef<NSString>& path, const char* reason);

/// The path of a file URL, empty and with an error where it names no file.
std::filesystem::path NSPathOfFileToRead(const NSRef<NSURL>& url, NSRef<NSError>* error);
std::filesystem::path NSPathOfFileToWrite(const NSRef<NSURL>& url, NSRef<NSError>* error);

/// Stores the error unless nobody asks for it.
inline void NSStoreError(NSRef<NSError>* place, NSRef<NSError> error) {
  if (place != nullptr) *place = std::move(error);
}
