#include "ZKFoundation/Categories/NSFileManager+ZKFoundationExtensions.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <Foundation/NSException.h>
#include <Foundation/NSPathUtilities.h>
#include <ZKFoundation/Categories/ZKStyledName.h>

namespace fs = std::filesystem;

namespace {

NSRef<NSURL> standardDirectory(NSSearchPathDirectory directory, NSSearchPathDomainMask domain) {
  return NSMake<NSFileManager>()->URLForDirectory_inDomain_appropriateForURL_create_error(
      directory, domain, nullptr, false, nullptr);
}

// The path with a name that is neither in its folder nor among those that have been tried. A folder
// that cannot be read takes no name; what is there is found out one by one.
fs::path freePath(const fs::path& path, const ZKNamingOptions& options,
                  const std::vector<fs::path>& tried) {
  std::vector<fs::path> taken = tried;
  std::error_code error;
  for (fs::directory_iterator entry(path.parent_path(), error), end; !error && entry != end;
       entry.increment(error)) {
    taken.push_back(entry->path().filename());
  }
  const NSUnitBuffer wanted = NSUnitsFromUTF8(path.filename().native());
  ZKStyledName name(wanted.view(), options, taken.size());
  for (const fs::path& other : taken) name.take(NSUnitsFromUTF8(other.native()).view());
  return path.parent_path() / NSUTF8FromUnits(name.freeName());
}

// Makes something at the path or beside it by `make(url, error)`, which refuses what is there.
template <class Make>
NSRef<NSURL> makeWithUniqueName(const NSRef<NSURL>& url, ZKNamingOptions options, bool isDirectory,
                                NSRef<NSError>* error, Make make) {
  constexpr int tries = 1000;
  options.isFileName = true;
  fs::path path = url->fileSystemPath();
  if (isDirectory && !path.has_filename()) path = path.parent_path();
  const fs::path name = path.filename();
  const bool namesFile =
      url->isFileURL() && path.is_absolute() && path.native().find('\0') == std::string::npos;
  const bool canChange = namesFile && !name.empty() && name != "." && name != ".." &&
                         NSIsWellFormedUTF8(name.native());
  NSRef<NSURL> place = url;
  fs::path candidate = path;
  NSRef<NSError> failure;
  std::vector<fs::path> tried;
  for (int k = 0; k < tries; ++k) {
    if (canChange && (k > 0 || options.ignoresCase)) {
      candidate = freePath(path, options, tried);
      place = NSURL::fileURLWithPath_isDirectory(candidate, isDirectory);
    }
    const bool isMade = make(place, &failure);
    if (error != nullptr) *error = isMade ? nullptr : failure;
    if (isMade) return place;
    if (!canChange || failure->code() != NSFileWriteFileExistsError) break;
    tried.push_back(candidate.filename());
  }
  return nullptr;
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
      *error = NSError::errorWithDomain_code_description(
          NSCocoaErrorDomain(), NSFileWriteInvalidFileNameError, u"No file can have this name"_ns);
    }
    return nullptr;
  }
  const bool isThere = manager->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
      url, true, nullptr, error);
  if (!isThere) return nullptr;
  if (error != nullptr) *error = nullptr;
  return url;
}

NSRef<NSURL> createFileWithUniqueNameAtURL_contents_options_error(
    const NSRef<NSFileManager>& manager, const NSRef<NSURL>& url, const NSRef<NSData>& contents,
    const ZKNamingOptions& options, NSRef<NSError>* error) {
  constexpr auto operation = "createFileWithUniqueNameAtURL:contents:options:error:";
  NSCheckArgument(operation, "manager", manager);
  NSCheckArgument(operation, "url", url);
  return makeWithUniqueName(url, options, /*isDirectory=*/false, error,
                            [&](const NSRef<NSURL>& place, NSRef<NSError>* failure) {
                              return manager->createNewFileAtURL_contents_error(place, contents,
                                                                                failure);
                            });
}

NSRef<NSURL> createDirectoryWithUniqueNameAtURL_options_error(const NSRef<NSFileManager>& manager,
                                                              const NSRef<NSURL>& url,
                                                              const ZKNamingOptions& options,
                                                              NSRef<NSError>* error) {
  constexpr auto operation = "createDirectoryWithUniqueNameAtURL:options:error:";
  NSCheckArgument(operation, "manager", manager);
  NSCheckArgument(operation, "url", url);
  return makeWithUniqueName(
      url, options, /*isDirectory=*/true, error,
      [&](const NSRef<NSURL>& place, NSRef<NSError>* failure) {
        return manager->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
            place, false, nullptr, failure);
      });
}

}  // namespace ZKFoundationExtensions
