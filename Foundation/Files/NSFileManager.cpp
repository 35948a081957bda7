#include "Foundation/NSFileManager.h"

#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/StandardDirectories.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t everything = 0777;
constexpr mode_t readAndWrite = 0666;
constexpr mode_t permissionBits = 07777;

// Makes directories, and removes those that it has made unless it is told to keep them.
class DirectoryMaker {
 public:
  DirectoryMaker() = default;
  DirectoryMaker(const DirectoryMaker&) = delete;
  ~DirectoryMaker() {
    // One that another has used since is not empty, and stays.
    for (; !_made.empty(); _made.pop_back()) rmdir(_made.back().c_str());
  }

  void make(const fs::path& path, mode_t mode) {
    if (const int error = tryToMake(path, mode)) NSFailWithPath(path, error);
  }

  void makeWithIntermediates(const fs::path& path, mode_t mode) {
    // What was there may be gone when another that could not go on has removed it.
    constexpr int tries = 64;
    for (int k = 0; k < tries; ++k) {
      const int error = tryToMake(path, mode);
      if (error == 0) return;
      if (error == EEXIST) {
        struct stat status {};
        const bool leadsSomewhere = stat(path.c_str(), &status) == 0;
        if (leadsSomewhere && S_ISDIR(status.st_mode)) return;
        const bool isLink = lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
        if (leadsSomewhere || isLink) NSFailWithPath(path, error);
      } else if (error != ENOENT || path == path.parent_path()) {
        NSFailWithPath(path, error);
      } else {
        makeWithIntermediates(path.parent_path(), everything);
      }
    }
    NSFailWithPath(path, ENOENT);
  }

  [[nodiscard]] bool hasMade(const fs::path& path) const {
    return !_made.empty() && _made.back() == path;
  }
  void keep() { _made.clear(); }

 private:
  // Gives the `errno`, 0 for success.
  int tryToMake(const fs::path& path, mode_t mode) {
    _made.reserve(_made.size() + 1);
    if (mkdir(path.c_str(), mode) != 0) return errno;
    _made.push_back(path);
    return 0;
  }

  std::vector<fs::path> _made;
};

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
  const auto url = NSReportFailure(error, NSFileUse::reading, [&] {
    auto found = NSURL::fileURLWithPath_isDirectory(NSStandardDirectory(directory, domain), true);
    if (found) return found;
    throw NSFileRefusal{NSFileReadUnknownError, nullptr, "No such standard directory"};
  });
  const bool isThere =
      url && (!create || createDirectoryAtURL_withIntermediateDirectories_attributes_error(
                             url, true, nullptr, error));
  return isThere ? url : nullptr;
}

bool NSFileManager::createDirectoryAtURL_withIntermediateDirectories_attributes_error(
    const NSRef<NSURL>& url, bool createIntermediates, const NSRef<NSDictionary>& attributes,
    NSRef<NSError>* error) const {
  if (!url) {
    NSRaiseNilArgument("url", "createDirectoryAtURL:withIntermediateDirectories:attributes:error:");
  }
  return NSReportFailure(error, NSFileUse::writing, [&] {
    const fs::path path = NSWithoutEnd(NSPathOfFile(url, NSFileUse::writing));
    const auto permissions = NSPermissionsIn(attributes);
    if (!permissions && attributes && attributes->objectForKey(NSFilePosixPermissions())) {
      NSFailWithPath(path, EINVAL);
    }
    DirectoryMaker maker;
    const mode_t mode = permissions ? *permissions & permissionBits : everything;
    createIntermediates ? maker.makeWithIntermediates(path, mode) : maker.make(path, mode);
    // The file mode creation mask has taken its part.
    if (permissions && maker.hasMade(path) && chmod(path.c_str(), mode) != 0) NSFailWithPath(path);
    maker.keep();
    return true;
  });
}

bool NSFileManager::createNewFileAtURL_contents_error(const NSRef<NSURL>& url,
                                                      const NSRef<NSData>& contents,
                                                      NSRef<NSError>* error) const {
  if (!url) NSRaiseNilArgument("url", "createNewFileAtURL:contents:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    const fs::path path = NSPathOfFile(url, NSFileUse::writing);
    NSFileDescriptor file(path, O_WRONLY | O_CREAT | O_EXCL, readAndWrite);
    try {
      if (contents) file.writeAll(contents->bytes());
      file.close();
    } catch (const fs::filesystem_error&) {
      unlink(path.c_str());
      throw;
    }
    return true;
  });
}

NSRef<NSDictionary> NSFileManager::attributesOfItemAtPath_error(const NSRef<NSString>& path,
                                                                NSRef<NSError>* error) const {
  if (!path) NSRaiseNilArgument("path", "attributesOfItemAtPath:error:");
  return NSReportFailure(error, NSFileUse::reading, [&] {
    const struct stat status = NSStatusOf(NSPathOfFile(path, NSFileUse::reading));
    return NSMake<NSDictionary>(
        {{NSFileType(), typeOf(status.st_mode)},
         {NSFileSize(), NSMake<NSNumber>(status.st_size)},
         {NSFilePosixPermissions(), NSMake<NSNumber>(status.st_mode & permissionBits)}});
  });
}
