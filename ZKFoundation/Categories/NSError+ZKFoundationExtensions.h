#pragma once

#include <Foundation/NSError.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Whether the error says that a file does not exist: ENOENT of `NSPOSIXErrorDomain`,
/// `NSFileNoSuchFileError` or `NSFileReadNoSuchFileError` of `NSCocoaErrorDomain`. Another domain
/// of the same text is another one. A nil error raises `NSInvalidArgumentException`.
ZK_EXPORT bool isFileNotFoundError(const NSRef<NSError>& error);

}  // namespace ZKFoundationExtensions
