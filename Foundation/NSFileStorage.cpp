#include "Foundation/NSFileStorage.h"

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& path, int number = errno) {
  throw fs::filesystem_error({}, path, std::error_code(number, std::system_category()));
}

class Descriptor {
 public:
  Descriptor(fs::path path, int flags, mode_t mode = 0)
      : _path(std::move(path)),
        _number(::open(_path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, mode)) {
    if (_number < 0) fail(_path);
  }
  Descriptor(const Descriptor&) = delete;
  ~Descriptor() {
    if (_number >= 0) ::close(_number);
  }

  int number() const { return _number; }
  // Gives how many bytes there were; 0 at the end.
  std::size_t read(std::span<std::byte> room) const {
    for (;;) {
      const ssize_t count = ::read(_number, room.data(), room.size());
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) fail(_path);
    }
  }
  void writeAll(std::span<const std::byte> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = ::write(_number, bytes.data(), bytes.size());
      if (count >= 0) {
        bytes = bytes.subspan(static_cast<std::size_t>(count));
      } else if (errno != EINTR) {
        fail(_path);
      }
    }
  }
  // Some file systems tell only here that a disk is full.
  void close() {
    if (::close(std::exchange(_number, -1)) != 0) fail(_path);
  }

 private:
  fs::path _path;
  int _number;
};

bool canBeName(const NSRef<NSString>& name) {
  const std::string bytes = name->utf8();
  return !bytes.empty() && bytes != "." && bytes != ".." &&
         bytes.find_first_of(std::string_view("/\0", 2)) == std::string::npos &&
         NSUnitsFromUTF8(bytes).view() == name->view();
}

// Where something would stand under a name that no file can have; nothing if all is well.
std::optional<fs::path> unusablePath(const NSFileWrapper& wrapper, const fs::path& path) {
  if (!wrapper.isDirectory()) return std::nullopt;
  for (const auto& entry : wrapper.fileWrappers()) {
    const auto name = entry.first.as<NSString>();
    const fs::path place = path / name->utf8();
    if (!canBeName(name)) return place;
    if (auto unusable = unusablePath(*entry.second.as<NSFileWrapper>(), place)) return unusable;
  }
  return std::nullopt;
}

NSRef<NSString> nameOf(const fs::path& path) {
  auto name = NSMake<NSString>(path.filename().native());
  if (name->utf8() != path.filename().native()) fail(path, EILSEQ);
  return name;
}

NSRef<NSDictionary> permissionsOf(mode_t mode) {
  return NSMake<NSDictionary>({{NSFilePosixPermissions(), NSMake<NSNumber>(mode & 0777U)}});
}

std::optional<mode_t> permissionsOf(const NSFileWrapper& wrapper) {
  const auto number = wrapper.fileAttributes()->objectForKey(NSFilePosixPermissions());
  if (!number) return std::nullopt;
  return static_cast<mode_t>(number.as<NSNumber>()->unsignedIntegerValue());
}

// A file may grow while it is read.
NSRef<NSData> readFile(const fs::path& path) {
  const Descriptor file(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) fail(path);
  // One byte more shows the end without another reading. Files of the system's own tell no size.
  constexpr std::size_t unknownSize = 4096;
  const auto size = static_cast<std::size_t>(status.st_size);
  std::vector<std::byte> bytes(size == 0 ? unknownSize : size + 1);
  std::size_t length = 0;
  while (const std::size_t count = file.read(std::span(bytes).subspan(length))) {
    length += count;
    if (length == bytes.size()) bytes.resize(bytes.size() * 2);
  }
  bytes.resize(length);
  if (length < bytes.capacity() / 2) bytes.shrink_to_fit();
  return NSMake<NSData>(std::move(bytes));
}

NSRef<NSFileWrapper> readTree(const fs::path& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) fail(path);
  NSRef<NSFileWrapper> wrapper;
  if (S_ISREG(status.st_mode)) {
    wrapper = NSMake<NSFileWrapper>(readFile(path));
  } else if (S_ISDIR(status.st_mode)) {
    const auto children = NSMake<NSMutableDictionary>();
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
      children->setObject_forKey(readTree(entry.path()), nameOf(entry.path()));
    }
    wrapper = NSMake<NSFileWrapper>(children);
  } else {
    fail(path, S_ISLNK(status.st_mode) ? ELOOP : ENOTSUP);
  }
  const auto name = nameOf(path);
  wrapper->setPreferredFilename(name);
  wrapper->setFilename(name);
  wrapper->setFileAttributes(permissionsOf(status.st_mode));
  return wrapper;
}

void writeTree(const NSFileWrapper& wrapper, const fs::path& path);

void writeContents(const NSFileWrapper& wrapper, const fs::path& path) {
  if (!wrapper.isDirectory()) {
    Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
    file.writeAll(wrapper.regularFileContents()->bytes());
    file.close();
    return;
  }
  if (mkdir(path.c_str(), 0777) != 0) fail(path);
  for (const auto& entry : wrapper.fileWrappers()) {
    writeTree(*entry.second.as<NSFileWrapper>(), path / entry.first.as<NSString>()->utf8());
  }
}

void setMode(const fs::path& path, mode_t mode) {
  if (chmod(path.c_str(), mode) != 0) fail(path);
}

void writeTree(const NSFileWrapper& wrapper, const fs::path& path) {
  writeContents(wrapper, path);
  // Last, as it may be a directory that nothing can be written to.
  if (const auto permissions = permissionsOf(wrapper)) setMode(path, *permissions);
}

// Also what permits no changes to its owner.
void removeTree(const fs::path& path) noexcept try {
  std::error_code error;
  fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, error);
  for (fs::recursive_directory_iterator at(path), end; at != end; ++at) {
    if (!at->is_symlink() && at->is_directory()) {
      fs::permissions(at->path(), fs::perms::owner_all, fs::perm_options::add);
    }
  }
  fs::remove_all(path);
} catch (const std::exception& exception) {
  NSLog(NSString::stringWithFormat(u"Cannot remove a temporary folder: %s"_ns, exception.what()));
}

// A hidden folder beside a place, which no other user can look into, for what shall go there.
class Workshop {
 public:
  explicit Workshop(const fs::path& place) {
    std::string pattern = place.parent_path() / ".saving-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) fail(place);
    _folder = pattern;
  }
  Workshop(const Workshop&) = delete;
  ~Workshop() { removeTree(_folder); }

  fs::path piece() const { return _folder / "new"; }
  fs::path former() const { return _folder / "former"; }

  // Waits until all of it is on the disk.
  void flush() const {
    const Descriptor folder(_folder, O_RDONLY | O_DIRECTORY);
    if (syncfs(folder.number()) != 0) fail(_folder);
  }

 private:
  fs::path _folder;
};

// Puts the piece in the place of what is there, which comes into the workshop.
void exchange(const Workshop& workshop, const fs::path& place) {
  const fs::path piece = workshop.piece();
  if (renameat2(AT_FDCWD, piece.c_str(), AT_FDCWD, place.c_str(), RENAME_EXCHANGE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) fail(place);
  // The file system cannot exchange. It can replace a file; but where a directory is concerned,
  // nothing stands at the place for a moment.
  if (!fs::is_directory(piece) && !fs::is_directory(place)) return fs::rename(piece, place);
  fs::rename(place, workshop.former());
  try {
    fs::rename(piece, place);
  } catch (const fs::filesystem_error&) {
    fs::rename(workshop.former(), place);
    throw;
  }
}

// Failures here change nothing any more.
void flushFolder(const fs::path& path) noexcept {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

void replace(const NSFileWrapper& wrapper, const fs::path& place) {
  struct stat former {};
  const bool hasFormer = lstat(place.c_str(), &former) == 0;
  const bool isSameKind = hasFormer && wrapper.isDirectory() == S_ISDIR(former.st_mode);
  auto mode = permissionsOf(wrapper);
  if (!mode && isSameKind) mode = former.st_mode & 0777U;

  const Workshop workshop(place);
  const fs::path piece = workshop.piece();
  writeContents(wrapper, piece);
  // A directory that cannot be written to cannot be moved either.
  const bool isLocked = mode && wrapper.isDirectory() && (*mode & S_IWUSR) == 0;
  if (mode) setMode(piece, isLocked ? *mode | S_IWUSR : *mode);
  workshop.flush();
  if (hasFormer) {
    exchange(workshop, place);
  } else {
    fs::rename(piece, place);
  }
  if (isLocked) chmod(place.c_str(), *mode);
  flushFolder(place.parent_path());
}

// Without "/" at the end, and where a symbolic link leads.
fs::path placeOf(const fs::path& path) {
  fs::path place = path.has_filename() ? path : path.parent_path();
  if (!place.has_filename()) fail(path, EBUSY);
  return fs::is_symlink(fs::symlink_status(place)) ? fs::canonical(place) : place;
}

}  // namespace

NSRef<NSFileWrapper> NSReadFileTree(const fs::path& path, NSRef<NSError>* error) {
  try {
    return readTree(placeOf(path));
  } catch (const fs::filesystem_error& failure) {
    NSStoreError(error, NSFileReadError(failure.code().value(), failure.path1()));
    return nullptr;
  }
}

bool NSWriteFileTree(const NSFileWrapper& wrapper, const fs::path& path, NSRef<NSError>* error) {
  if (const auto unusable = unusablePath(wrapper, path)) {
    NSStoreError(error,
                 NSFileError(NSFileWriteInvalidFileNameError, NSMake<NSString>(unusable->native()),
                             "No file can have this name"));
    return false;
  }
  try {
    replace(wrapper, placeOf(path));
    return true;
  } catch (const fs::filesystem_error& failure) {
    NSStoreError(error, NSFileWriteError(failure.code().value(), path));
    return false;
  }
}
