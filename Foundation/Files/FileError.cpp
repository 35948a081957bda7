#include "Foundation/Files/FileError.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <Foundation/Files/FilePaths.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

namespace {

struct Codes {
  int number;
  NSCocoaErrorCode reading = NSFileReadUnknownError;
  NSCocoaErrorCode writing = NSFileWriteUnknownError;
};
constexpr std::array<Codes, 11> codes = {{
    {ENOENT, NSFileReadNoSuchFileError, NSFileNoSuchFileError},
    {EACCES, NSFileReadNoPermissionError, NSFileWriteNoPermissionError},
    {EPERM, NSFileReadNoPermissionError, NSFileWriteNoPermissionError},
    {ENAMETOOLONG, NSFileReadInvalidFileNameError, NSFileWriteInvalidFileNameError},
    {EILSEQ, NSFileReadInvalidFileNameError, NSFileWriteInvalidFileNameError},
    {EFBIG, NSFileReadTooLargeError},
    {ENOMEM, NSFileReadTooLargeError},
    {EEXIST, NSFileReadUnknownError, NSFileWriteFileExistsError},
    {ENOSPC, NSFileReadUnknownError, NSFileWriteOutOfSpaceError},
    {EDQUOT, NSFileReadUnknownError, NSFileWriteOutOfSpaceError},
    {EROFS, NSFileReadUnknownError, NSFileWriteVolumeReadOnlyError},
}};

NSCocoaErrorCode codeOf(int number, NSFileUse use) {
  const auto* const found = std::ranges::find(codes, number, &Codes::number);
  const Codes known = found != codes.end() ? *found : Codes{number};
  return use == NSFileUse::reading ? known.reading : known.writing;
}

[[noreturn]] void refusePath(const NSRef<NSString>& path, NSFileUse use) {
  throw NSFileRefusal{
      use == NSFileUse::reading ? NSFileReadInvalidFileNameError : NSFileWriteInvalidFileNameError,
      path, "No file has this path"};
}

}  // namespace

NSRef<NSError> NSErrorOf(const NSFileRefusal& refusal) {
  const auto info = NSMake<NSMutableDictionary>();
  info->setObject_forKey(NSMake<NSString>(refusal.reason), NSLocalizedDescriptionKey());
  if (refusal.path) info->setObject_forKey(refusal.path, NSFilePathErrorKey());
  return NSMake<NSError>(NSCocoaErrorDomain(), refusal.code, info);
}

NSRef<NSError> NSErrorOf(const std::filesystem::filesystem_error& failure, NSFileUse use) {
  const int number = failure.code().value();
  return NSMake<NSError>(
      NSCocoaErrorDomain(), codeOf(number, use),
      NSMake<NSDictionary>(
          {{NSFilePathErrorKey(), NSMake<NSString>(failure.path1().native())},
           {NSUnderlyingErrorKey(), NSMake<NSError>(NSPOSIXErrorDomain(), number, nullptr)}}));
}

std::filesystem::path NSPathOfFile(const NSRef<NSURL>& url, NSFileUse use) {
  const bool isRead = use == NSFileUse::reading;
  if (!url->isFileURL()) {
    throw NSFileRefusal{
        isRead ? NSFileReadUnsupportedSchemeError : NSFileWriteUnsupportedSchemeError,
        url->absoluteString(), "Not a file URL"};
  }
  auto path = url->fileSystemPath();
  if (path.is_absolute() && path.native().find('\0') == std::string::npos) return path;
  refusePath(url->absoluteString(), use);
}

std::filesystem::path NSPathOfFile(const NSRef<NSString>& text, NSFileUse use) {
  std::filesystem::path path = NSBytesOfPath(text->view());
  if (path.empty()) refusePath(text, use);
  return path;
}
