#include "Foundation/NSFileManager.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/Workshop.h>
#include <Foundation/NSException.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t ownerOnly = 0700;
constexpr mode_t permissionBits = 0777;

// The item at a path of a URL. Not the root of all, which has no name, nor what "." and ".." lead
// to, which may be far more than was meant.
fs::path itemAt(const NSRef<NSURL>& url, NSFileUse use) {
  fs::path path = NSPathOfFile(url, use);
  if (!path.has_filename()) path = path.parent_path();
  if (!path.has_filename()) NSFailWithPath(path, EBUSY);
  if (NSIsDots(path.filename())) NSFailWithPath(path, EINVAL);
  return path;
}

// Whether the place is in the directory or in one below it.
bool isWithin(const fs::path& place, const fs::path& directory) {
  const fs::path inner = fs::weakly_canonical(place.parent_path());
  const fs::path outer = fs::canonical(directory);
  return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

// Copies and moves one item. Notes whether it is reading or writing, on which the codes of errors
// depend.
class Transfer {
 public:
  Transfer(const NSRef<NSURL>& source, const NSRef<NSURL>& target)
      : _source(source), _target(target) {}

  [[nodiscard]] const NSFileUse& use() const { return _use; }

  void copy() {
    findItems();
    copyItem();
  }

  void move() {
    findItems();
    try {
      NSMoveToFreePlace(_from, _place);
    } catch (const fs::filesystem_error& failure) {
      if (failure.code().value() != EXDEV) throw;
      copyItem();
      fs::remove_all(_from);
    }
  }

 private:
  void findItems() {
    _from = itemAt(_source, NSFileUse::reading);
    _status = NSStatusOf(_from);
    _use = NSFileUse::writing;
    _place = itemAt(_target, NSFileUse::writing);
    if (fs::exists(fs::symlink_status(_place))) NSFailWithPath(_place, EEXIST);
  }

  void copyItem() {
    if (S_ISDIR(_status.st_mode) && isWithin(_place, _from)) NSFailWithPath(_place, EINVAL);
    const NSWorkshop workshop(_place);
    const fs::path piece = workshop.piece();
    try {
      copyTree(_from, piece);
      workshop.flush();
    } catch (const fs::filesystem_error& failure) {
      if (_use == NSFileUse::reading) throw;
      // Nobody else knows the temporary places.
      NSFailWithPath(_place, failure.code().value());
    }
    NSUnlocked unlocked(piece, _status.st_mode);
    workshop.installNew();
    unlocked.movedTo(_place);
  }

  void copyTree(const fs::path& from, const fs::path& to) {
    _use = NSFileUse::reading;
    const struct stat status = NSStatusOf(from);
    if (S_ISLNK(status.st_mode)) {
      _use = NSFileUse::writing;
      fs::copy_symlink(from, to);
    } else if (S_ISREG(status.st_mode)) {
      copyBytes(from, to);
    } else if (S_ISDIR(status.st_mode)) {
      const std::vector<fs::path> children = NSPathsIn(from);
      _use = NSFileUse::writing;
      if (mkdir(to.c_str(), ownerOnly) != 0) NSFailWithPath(to);
      for (const fs::path& child : children) copyTree(child, to / child.filename());
    } else {
      NSFailWithPath(from, ENOTSUP);
    }
    _use = NSFileUse::writing;
    copyAttributes(status, to);
  }

  // The standard library's own copying does not tell that a disk is full.
  void copyBytes(const fs::path& from, const fs::path& to) {
    const NSFileDescriptor source(from, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    _use = NSFileUse::writing;
    NSFileDescriptor target(to, O_WRONLY | O_CREAT | O_EXCL, ownerOnly);
    constexpr std::size_t chunk = std::size_t{1} << 17U;
    std::vector<std::byte> room(chunk);
    for (;;) {
      _use = NSFileUse::reading;
      const std::size_t count = source.read(room);
      _use = NSFileUse::writing;
      if (count == 0) break;
      target.writeAll(std::span(room).first(count));
    }
    target.close();
  }

  // Last, as it may be a directory that nothing can be written to.
  static void copyAttributes(const struct stat& status, const fs::path& to) {
    if (!S_ISLNK(status.st_mode)) NSSetMode(to, status.st_mode & permissionBits);
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    if (utimensat(AT_FDCWD, to.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0) NSFailWithPath(to);
  }

  const NSRef<NSURL>& _source;
  const NSRef<NSURL>& _target;
  NSFileUse _use = NSFileUse::reading;
  fs::path _from;
  fs::path _place;
  struct stat _status {};
};

bool transfer(const NSRef<NSURL>& source, const NSRef<NSURL>& target, NSRef<NSError>* error,
              const char* operation, void (Transfer::*way)()) {
  NSCheckArgument(operation, "source", source);
  NSCheckArgument(operation, "target", target);
  Transfer items(source, target);
  return NSReportFailure(error, items.use(), [&] {
    (items.*way)();
    return true;
  });
}

NSRef<NSURL> urlOf(const fs::directory_entry& entry) {
  return NSURL::fileURLWithPath_isDirectory(entry.path(), fs::is_directory(entry.symlink_status()));
}

}  // namespace

NSRef<NSArray> NSFileManager::contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
    const NSRef<NSURL>& url, const NSRef<NSArray>& /*keys*/, NSUInteger options,
    NSRef<NSError>* error) const {
  if (!url) {
    NSRaiseNilArgument("url", "contentsOfDirectoryAtURL:includingPropertiesForKeys:options:error:");
  }
  return NSReportFailure(error, NSFileUse::reading, [&] {
    std::vector<fs::path> paths = NSPathsIn(NSPathOfFile(url, NSFileUse::reading));
    if ((options & NSDirectoryEnumerationSkipsHiddenFiles) != 0) {
      std::erase_if(paths, [](const fs::path& path) { return path.filename().native()[0] == '.'; });
    }
    std::ranges::sort(paths, {}, [](const fs::path& path) { return path.native(); });
    const auto urls = NSMake<NSMutableArray>();
    for (const fs::path& path : paths) urls->addObject(urlOf(fs::directory_entry(path)));
    return urls->copy();
  });
}

bool NSFileManager::copyItemAtURL_toURL_error(const NSRef<NSURL>& source,
                                              const NSRef<NSURL>& target,
                                              NSRef<NSError>* error) const {
  return transfer(source, target, error, "copyItemAtURL:toURL:error:", &Transfer::copy);
}

bool NSFileManager::moveItemAtURL_toURL_error(const NSRef<NSURL>& source,
                                              const NSRef<NSURL>& target,
                                              NSRef<NSError>* error) const {
  return transfer(source, target, error, "moveItemAtURL:toURL:error:", &Transfer::move);
}

bool NSFileManager::removeItemAtURL_error(const NSRef<NSURL>& url, NSRef<NSError>* error) const {
  if (!url) NSRaiseNilArgument("url", "removeItemAtURL:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    const fs::path path = itemAt(url, NSFileUse::writing);
    if (fs::remove_all(path) == 0) NSFailWithPath(path, ENOENT);
    return true;
  });
}
