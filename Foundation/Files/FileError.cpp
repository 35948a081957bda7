#include "Foundation/Files/FileError.h"

#include <cerrno>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

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
      NSCocoaErrorDomain(), use == NSFileUse::reading ? readCode(number) : writeCode(number),
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
  throw NSFileRefusal{isRead ? NSFileReadInvalidFileNameError : NSFileWriteInvalidFileNameError,
                      url->absoluteString(), "No file has this path"};
}
