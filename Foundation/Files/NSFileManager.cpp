#include "Foundation/NSFileManager.h"

#include <cerrno>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/FilePaths.h>
#include <Foundation/Files/StandardDirectories.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t everything = 0777;
constexpr mode_t permissionBits = 07777;

// Makes directories, and removes those that it has made unless it is told to keep them. What makes
// one gives the `errno`, 0 for success.
class DirectoryMaker {
 public:
  DirectoryMaker() = default;
  DirectoryMaker(const DirectoryMaker&) = delete;
  ~DirectoryMaker() {
    // One that another has used since is not empty, and stays.
    for (; !_made.empty(); _made.pop_back()) rmdir(_made.back().c_str());
  }

  int make(const fs::path& path, mode_t mode) {
    _made.reserve(_made.size() + 1);
    if (mkdir(path.c_str(), mode) != 0) {
      const int error = errno;
      _refused = path;
      return error;
    }
    _made.push_back(path);
    return 0;
  }

  int makeWithIntermediates(const fs::path& path, mode_t mode) {
    // What was there may be gone when another that could not go on has removed it.
    constexpr int tries = 64;
    for (int k = 0; k < tries; ++k) {
      const int error = make(path, mode);
      if (error == EEXIST) {
        struct stat status {};
        if (stat(path.c_str(), &status) == 0) return S_ISDIR(status.st_mode) ? 0 : EEXIST;
        if (lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) return EEXIST;
      } else if (error != ENOENT || path == path.parent_path()) {
        return error;
      } else if (const int above = makeWithIntermediates(path.parent_path(), everything)) {
        return above;
      }
    }
    return ENOENT;
  }

  // What was refused last.
  const fs::path& refused() const { return _refused; }
  bool hasMade(const fs::path& path) const { return !_made.empty() && _made.back() == path; }
  void keep() { _made.clear(); }

 private:
  std::vector<fs::path> _made;
  fs::path _refused;
};

// After a failure `path` is the one that failed.
int makeDirectory(fs::path& path, bool createIntermediates, const mode_t* permissions) {
  DirectoryMaker maker;
  const mode_t mode = permissions != nullptr ? *permissions : everything;
  const int error =
      createIntermediates ? maker.makeWithIntermediates(path, mode) : maker.make(path, mode);
  if (error != 0) {
    path = maker.refused();
    return error;
  }
  // The file mode creation mask has taken its part.
  if (permissions != nullptr && maker.hasMade(path) && chmod(path.c_str(), mode) != 0) return errno;
  maker.keep();
  return 0;
}

const NSRef<NSString>& typeOf(mode_t mode) {
  if (S_ISDIR(mode)) return NSFileTypeDirectory();
  if (S_ISREG(mode)) return NSFileTypeRegular();
  return S_ISLNK(mode) ? NSFileTypeSymbolicLink() : NSFileTypeUnknown();
}

}  // namespace

const NSRef<NSString>& NSFileType() { return NSConstantString<u"NSFileType">(); }

const NSRef<NSString>& NSFileSize() { return NSConstantString<u"NSFileSize">(); }

const NSRef<NSString>& NSFilePosixPermissions() {
  return NSConstantString<u"NSFilePosixPermissions">();
}

const NSRef<NSString>& NSFileTypeDirectory() { return NSConstantString<u"NSFileTypeDirectory">(); }

const NSRef<NSString>& NSFileTypeRegular() { return NSConstantString<u"NSFileTypeRegular">(); }

const NSRef<NSString>& NSFileTypeSymbolicLink() {
  return NSConstantString<u"NSFileTypeSymbolicLink">();
}

const NSRef<NSString>& NSFileTypeUnknown() { return NSConstantString<u"NSFileTypeUnknown">(); }

NSFileManager::~NSFileManager() = default;

const NSRef<NSFileManager>& NSFileManager::defaultManager() {
  static const NSNeverDestroyed<NSRef<NSFileManager>> manager(NSMake<NSFileManager>());
  return *manager;
}

NSRef<NSURL> NSFileManager::URLForDirectory_inDomain_appropriateForURL_create_error(
    NSUInteger directory, NSUInteger domain, const NSRef<NSURL>& /*reference*/, bool create,
    NSRef<NSError>* error) const {
  const fs::path path = NSStandardDirectory(directory, domain);
  const auto url = path.empty() ? nullptr : NSURL::fileURLWithPath_isDirectory(path, true);
  if (!url) {
    NSStoreError(error, NSFileError(NSFileReadUnknownError, nullptr, "No such standard directory"));
    return nullptr;
  }
  const bool isThere = !create || createDirectoryAtURL_withIntermediateDirectories_attributes_error(
                                      url, true, nullptr, error);
  return isThere ? url : nullptr;
}

bool NSFileManager::createDirectoryAtURL_withIntermediateDirectories_attributes_error(
    const NSRef<NSURL>& url, bool createIntermediates, const NSRef<NSDictionary>& attributes,
    NSRef<NSError>* error) const {
  if (!url) {
    NSRaiseNilArgument("url", "createDirectoryAtURL:withIntermediateDirectories:attributes:error:");
  }
  fs::path path = NSPathOfFileToWrite(url, error);
  if (path.empty()) return false;
  while (path.has_parent_path() && path != "/" &&
         (!path.has_filename() || path.filename() == ".")) {
    path = path.parent_path();
  }
  mode_t permissions = 0;
  const auto wanted = attributes ? attributes->objectForKey(NSFilePosixPermissions()) : nullptr;
  if (wanted) {
    const auto* const number = wanted.cast<NSNumber>();
    if (number == nullptr) {
      NSStoreError(error, NSFileWriteError(EINVAL, path));
      return false;
    }
    permissions = static_cast<mode_t>(number->unsignedIntegerValue()) & permissionBits;
  }
  const int number = makeDirectory(path, createIntermediates, wanted ? &permissions : nullptr);
  if (number != 0) NSStoreError(error, NSFileWriteError(number, path));
  return number == 0;
}

NSRef<NSDictionary> NSFileManager::attributesOfItemAtPath_error(const NSRef<NSString>& path,
                                                                NSRef<NSError>* error) const {
  if (!path) NSRaiseNilArgument("path", "attributesOfItemAtPath:error:");
  const fs::path file = NSBytesOfPath(path->view());
  struct stat status {};
  if (file.empty()) {
    NSStoreError(error, NSFileError(NSFileReadInvalidFileNameError, path, "No file has this path"));
    return nullptr;
  }
  if (lstat(file.c_str(), &status) != 0) {
    NSStoreError(error, NSFileReadError(errno, file));
    return nullptr;
  }
  return NSMake<NSDictionary>(
      {{NSFileType(), typeOf(status.st_mode)},
       {NSFileSize(), NSMake<NSNumber>(status.st_size)},
       {NSFilePosixPermissions(), NSMake<NSNumber>(status.st_mode & permissionBits)}});
}
