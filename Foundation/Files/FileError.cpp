#include "Foundation/Files/FileError.h"

#include <cerrno>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace {

NSCocoaErrorCode readCode(int number) {
  switch (number) {
    case ENOENT:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    case ENAMETOOLONG:
    case EILSEQ:
      return NSFileReadInvalidFileNameError;
    case EFBIG:
    case ENOMEM:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

NSCocoaErrorCode writeCode(int number) {
  switch (number) {
    case ENOENT:
      return NSFileNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    case ENAMETOOLONG:
      return NSFileWriteInvalidFileNameError;
    case EEXIST:
      return NSFileWriteFileExistsError;
    case ENOSPC:
    case EDQUOT:
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    default:
      return NSFileWriteUnknownError;
  }
}

NSRef<NSError> errorWithNumber(NSCocoaErrorCode code, int number,
                               const std::filesystem::path& path) {
  return NSMake<NSError>(
      NSCocoaErrorDomain(), code,
      NSMake<NSDictionary>(
          {{NSFilePathErrorKey(), NSMake<NSString>(path.native())},
           {NSUnderlyingErrorKey(), NSMake<NSError>(NSPOSIXErrorDomain(), number, nullptr)}}));
}

std::filesystem::path pathOfFile(const NSRef<NSURL>& url, NSCocoaErrorCode unsupported,
                                 NSCocoaErrorCode invalid, NSRef<NSError>* error) {
  if (!url->isFileURL()) {
    NSStoreError(error, NSFileError(unsupported, url->absoluteString(), "Not a file URL"));
    return {};
  }
  auto path = url->fileSystemPath();
  if (path.is_absolute() && path.native().find('\0') == std::string::npos) return path;
  NSStoreError(error, NSFileError(invalid, url->absoluteString(), "No file has this path"));
  return {};
}

}  // namespace

NSRef<NSError> NSFileReadError(int number, const std::filesystem::path& path) {
  return errorWithNumber(readCode(number), number, path);
}

NSRef<NSError> NSFileWriteError(int number, const std::filesystem::path& path) {
  return errorWithNumber(writeCode(number), number, path);
}

NSRef<NSError> NSFileError(NSCocoaErrorCode code, const NSRef<NSString>& path, const char* reason) {
  const auto info = NSMake<NSMutableDictionary>();
  info->setObject_forKey(NSMake<NSString>(reason), NSLocalizedDescriptionKey());
  if (path) info->setObject_forKey(path, NSFilePathErrorKey());
  return NSMake<NSError>(NSCocoaErrorDomain(), code, info);
}

std::filesystem::path NSPathOfFileToRead(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  return pathOfFile(url, NSFileReadUnsupportedSchemeError, NSFileReadInvalidFileNameError, error);
}

std::filesystem::path NSPathOfFileToWrite(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  return pathOfFile(url, NSFileWriteUnsupportedSchemeError, NSFileWriteInvalidFileNameError, error);
}
