#include "ZKFoundation/Categories/NSError+ZKFoundationExtensions.h"

#include <cerrno>

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

bool isFileNotFoundError(const NSRef<NSError>& error) {
  NSCheckArgument("isFileNotFoundError", "error", error);
  const NSInteger code = error->code();
  if (error->domain().is(NSPOSIXErrorDomain())) return code == ENOENT;
  return error->domain().is(NSCocoaErrorDomain()) &&
         (code == NSFileNoSuchFileError || code == NSFileReadNoSuchFileError);
}

}  // namespace ZKFoundationExtensions
