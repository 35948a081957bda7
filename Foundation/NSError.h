#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

// Domains of errors. Each is one object for the whole process: compare `error->domain()` with `==`.

/// Codes are those of `errno`.
NS_EXPORT const NSRef<NSString>& NSPOSIXErrorDomain();
/// Codes are the `NSCocoaErrorCode`s.
NS_EXPORT const NSRef<NSString>& NSCocoaErrorDomain();

// Keys of `NSError::userInfo`.

/// A string, the text for people.
NS_EXPORT const NSRef<NSString>& NSLocalizedDescriptionKey();
/// The `NSError` behind this one.
NS_EXPORT const NSRef<NSString>& NSUnderlyingErrorKey();
/// A string, the path of the file, or the text of a URL that is none's.
NS_EXPORT const NSRef<NSString>& NSFilePathErrorKey();

/// What went wrong with a file, with the `errno` from which each comes, or with an archive.
enum NSCocoaErrorCode : NSInteger {
  /// ENOENT while writing
  NSFileNoSuchFileError = 4,
  /// Any other while reading
  NSFileReadUnknownError = 256,
  /// EACCES and EPERM
  NSFileReadNoPermissionError = 257,
  /// ENAMETOOLONG, and names that no file can have or that are no UTF-8
  NSFileReadInvalidFileNameError = 258,
  /// ENOENT
  NSFileReadNoSuchFileError = 260,
  /// A URL that is no file URL
  NSFileReadUnsupportedSchemeError = 262,
  /// EFBIG and ENOMEM
  NSFileReadTooLargeError = 263,
  /// Any other while writing
  NSFileWriteUnknownError = 512,
  /// EACCES and EPERM
  NSFileWriteNoPermissionError = 513,
  /// ENAMETOOLONG, and names that no file can have
  NSFileWriteInvalidFileNameError = 514,
  /// EEXIST
  NSFileWriteFileExistsError = 516,
  /// A URL that is no file URL
  NSFileWriteUnsupportedSchemeError = 518,
  /// ENOSPC and EDQUOT
  NSFileWriteOutOfSpaceError = 640,
  /// EROFS
  NSFileWriteVolumeReadOnlyError = 642,
  /// Bytes that are no archive, or one that cannot be read as what was asked for
  NSCoderReadCorruptError = 4864,
  /// An archive without the object
  NSCoderValueNotFoundError = 4865,
};

/// What went wrong: a code of a domain. Immutable.
class NS_EXPORT NSError : public NSObject {
 public:
  /// A domain that is immutable stays the same object. Nil raises `NSInvalidArgumentException`; nil
  /// for `userInfo` is the empty dictionary.
  NSError(const NSRef<NSString>& domain, NSInteger code, const NSRef<NSDictionary>& userInfo);

  static NSRef<NSError> errorWithDomain_code_userInfo(const NSRef<NSString>& domain, NSInteger code,
                                                      const NSRef<NSDictionary>& userInfo) {
    return NSMake<NSError>(domain, code, userInfo);
  }

  NSRef<NSString> domain() const noexcept { return _domain; }
  NSInteger code() const noexcept { return _code; }
  NSRef<NSDictionary> userInfo() const noexcept { return _userInfo; }

  /// The text under `NSLocalizedDescriptionKey`. Without one that of the underlying error; for
  /// codes of `errno` the C library's; else the domain and the code.
  NSRef<NSString> localizedDescription() const;

  /// Whether domains (as texts), codes and dictionaries are equal.
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "NSPOSIXErrorDomain 2: No such file or directory", and in parentheses the path, if it has one.
  NSRef<NSString> description() const override;
  /// "domain", "code", "userInfo" and "localizedDescription" besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;
  /// The error itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSRef<NSString> _domain;
  NSInteger _code;
  NSRef<NSDictionary> _userInfo;
};
