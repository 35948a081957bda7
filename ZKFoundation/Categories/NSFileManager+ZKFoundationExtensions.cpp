#include "ZKFoundation/Categories/NSFileManager+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>
#include <Foundation/NSPathUtilities.h>

namespace {

NSRef<NSURL> standardDirectory(NSSearchPathDirectory directory, NSSearchPathDomainMask domain) {
  return NSMake<NSFileManager>()->URLForDirectory_inDomain_appropriateForURL_create_error(
      directory, domain, nullptr, false, nullptr);
}

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSURL> documentsDirectory() {
  return standardDirectory(NSDocumentDirectory, NSUserDomainMask);
}

NSRef<NSURL> usersDirectory() { return standardDirectory(NSUserDirectory, NSLocalDomainMask); }

NSRef<NSURL> applicationSupportDirectory() {
  return standardDirectory(NSApplicationSupportDirectory, NSLocalDomainMask);
}

NSRef<NSURL> userApplicationSupportDirectory() {
  return standardDirectory(NSApplicationSupportDirectory, NSUserDomainMask);
}

NSRef<NSURL> temporaryFolder() {
  return NSURL::fileURLWithPath_isDirectory(NSTemporaryDirectory(), true);
}

NSRef<NSURL> findOrCreateDirectory_inDomain_appendPathComponent_error(
    const NSRef<NSFileManager>& manager, NSUInteger directory, NSUInteger domain,
    const NSRef<NSString>& component, NSRef<NSError>* error) {
  NSCheckArgument("findOrCreateDirectory:inDomain:appendPathComponent:error:", "manager", manager);
  auto url = manager->URLForDirectory_inDomain_appropriateForURL_create_error(
      directory, domain, nullptr, false, error);
  if (!url) return nullptr;
  if (component) url = url->URLByAppendingPathComponent_isDirectory(component, true);
  if (!url) {
    if (error != nullptr) {
      *error = NSMake<NSError>(
          NSCocoaErrorDomain(), NSFileWriteInvalidFileNameError,
          NSMake<NSDictionary>({{NSLocalizedDescriptionKey(), u"No file can have this name"_ns}}));
    }
    return nullptr;
  }
  const bool isThere = manager->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
      url, true, nullptr, error);
  if (!isThere) return nullptr;
  if (error != nullptr) *error = nullptr;
  return url;
}

}  // namespace ZKFoundationExtensions
