#pragma once

#include <Foundation/NSError.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Whether the error says that a file does not exist: ENOENT of `NSPOSIXErrorDomain`,
/// `NSFileNoSuchFileError` or `NSFileReadNoSuchFileError` of `NSCocoaErrorDomain`. Domains are
/// compared as objects, not texts. A nil error raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT bool isFileNotFoundError(const NSRef<NSError>& error);

}  // namespace ZKFoundationExtensions
