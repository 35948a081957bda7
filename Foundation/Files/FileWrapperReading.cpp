#include "Foundation/Files/FileWrapperReading.h"

#include <tuple>

#include <fcntl.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

namespace fs = std::filesystem;

namespace {

NSRef<NSDictionary> permissionsOf(mode_t mode) {
  return NSMake<NSDictionary>({{NSFilePosixPermissions(), NSMake<NSNumber>(mode & 0777U)}});
}

NSRef<NSFileWrapper> readTree(const fs::path& path) {
  const struct stat status = NSStatusOf(path);
  NSRef<NSFileWrapper> wrapper;
  if (S_ISREG(status.st_mode)) {
    wrapper = NSMake<NSFileWrapper>(NSDataOfFile(path, O_NOFOLLOW));
  } else if (S_ISDIR(status.st_mode)) {
    const auto children = NSMake<NSMutableDictionary>();
    for (const fs::path& child : NSPathsIn(path)) {
      children->setObject_forKey(readTree(child), NSNameOf(child));
    }
    wrapper = NSMake<NSFileWrapper>(children);
  } else if (S_ISLNK(status.st_mode)) {
    throw NSFileRefusal{NSFileReadUnknownError, NSMake<NSString>(path.native()),
                        "A document cannot hold a symbolic link"};
  } else {
    NSFailWithPath(path, ENOTSUP);
  }
  const auto name = NSNameOf(path);
  wrapper->setPreferredFilename(name);
  wrapper->setFilename(name);
  wrapper->setFileAttributes(permissionsOf(status.st_mode));
  return wrapper;
}

// What stands at a place; another one as soon as it is exchanged, even if its number is the same.
auto identityOf(const fs::path& place) {
  struct stat status {};
  if (lstat(place.c_str(), &status) != 0) status = {};
  return std::tuple(status.st_dev, status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
}

// Reads again when it was exchanged meanwhile, as parts may be those of another then.
NSRef<NSFileWrapper> readDocument(const fs::path& place) {
  constexpr int tries = 100;
  for (int k = 0; k < tries; ++k) {
    const auto before = identityOf(place);
    try {
      auto wrapper = readTree(place);
      if (identityOf(place) == before) return wrapper;
    } catch (...) {
      if (identityOf(place) == before) throw;
    }
  }
  NSFailWithPath(place, EBUSY);
}

}  // namespace

NSRef<NSFileWrapper> NSReadFileTree(const fs::path& path) {
  return NSWithinMemory(path, [&] { return readDocument(NSPlaceOf(path)); });
}
