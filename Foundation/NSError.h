#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

// Domains of errors. Each is one object for the whole process: compare `error->domain()` with `==`.

/// Names the domain whose codes are those of `errno`.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSPOSIXErrorDomain();
/// Names the domain whose codes are the `NSCocoaErrorCode`s.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSCocoaErrorDomain();

// Keys of `NSError::userInfo`.

/// Has a string, the text for people.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocalizedDescriptionKey();
/// Has the `NSError` that led to this one.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSUnderlyingErrorKey();
/// Has a string, the path of the file, or the text of a URL that is no file's.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFilePathErrorKey();

/// The codes of `NSCocoaErrorDomain`: for archives, and for files with the `errno` of each.
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
  /// Bytes that are no text in the encoding
  NSFileReadInapplicableStringEncodingError = 261,
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
  /// A text that the encoding cannot keep
  NSFileWriteInapplicableStringEncodingError = 517,
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

/// A failure: a code of a domain, and what is known of it. Immutable.
class NS_EXPORT NSError : public NSObject {
 public:
  /// Keeps copies, so that an immutable domain stays the same object. A nil domain raises
  /// `NSInvalidArgumentException`; nil for `userInfo` is the empty dictionary.
  NSError(const NSRef<NSString>& domain, NSInteger code, const NSRef<NSDictionary>& userInfo);

  [[nodiscard]] static NSRef<NSError> errorWithDomain_code_userInfo(
      const NSRef<NSString>& domain, NSInteger code, const NSRef<NSDictionary>& userInfo) {
    return NSMake<NSError>(domain, code, userInfo);
  }
  /// Makes an error with a text for people; nil has none.
  [[nodiscard]] static NSRef<NSError> errorWithDomain_code_description(
      const NSRef<NSString>& domain, NSInteger code, const NSRef<NSString>& description);

  [[nodiscard]] NSRef<NSString> domain() const noexcept { return _domain; }
  [[nodiscard]] NSInteger code() const noexcept { return _code; }
  [[nodiscard]] NSRef<NSDictionary> userInfo() const noexcept { return _userInfo; }

  /// Gives the text under `NSLocalizedDescriptionKey`, or else that of the underlying error, or
  /// else for codes of `errno` the C library's, or else the domain and the code.
  [[nodiscard]] NSRef<NSString> localizedDescription() const;

  /// Whether domains (as texts), codes and dictionaries are equal.
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "NSPOSIXErrorDomain 2: No such file or directory", and the path, if any, in parentheses.
  [[nodiscard]] NSRef<NSString> description() const override;
  /// Publishes "domain", "code", "userInfo" and "localizedDescription" besides the inherited ones.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  NSRef<NSString> _domain;
  NSInteger _code;
  NSRef<NSDictionary> _userInfo;
};
