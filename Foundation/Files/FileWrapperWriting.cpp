#include "Foundation/Files/FileWrapperWriting.h"

#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/FilePaths.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSString.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t permissionBits = 0777;

bool canBeName(const NSRef<NSString>& name) {
  const std::string bytes = NSBytesOfPath(name->view());
  return !bytes.empty() && bytes != "." && bytes != ".." && bytes.find('/') == std::string::npos;
}

// The path within the wrapper of a name that no file can have; nothing if all is well.
std::optional<fs::path> unusablePath(const NSFileWrapper& wrapper) {
  if (!wrapper.isDirectory()) return std::nullopt;
  for (const auto& entry : wrapper.fileWrappers()) {
    const auto name = entry.first.as<NSString>();
    if (!canBeName(name)) return name->utf8();
    if (const auto within = unusablePath(*entry.second.as<NSFileWrapper>())) {
      return name->utf8() / *within;
    }
  }
  return std::nullopt;
}

void writeTree(const NSFileWrapper& wrapper, const fs::path& path);

void writeContents(const NSFileWrapper& wrapper, const fs::path& path) {
  if (!wrapper.isDirectory()) {
    NSFileDescriptor file(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
    file.writeAll(wrapper.regularFileContents()->bytes());
    file.close();
    return;
  }
  if (mkdir(path.c_str(), 0777) != 0) NSFailWithPath(path);
  for (const auto& entry : wrapper.fileWrappers()) {
    writeTree(*entry.second.as<NSFileWrapper>(), path / entry.first.as<NSString>()->utf8());
  }
}

void setMode(const fs::path& path, mode_t mode) {
  if (chmod(path.c_str(), mode) != 0) NSFailWithPath(path);
}

void writeTree(const NSFileWrapper& wrapper, const fs::path& path) {
  writeContents(wrapper, path);
  // Last, as it may be a directory that nothing can be written to.
  if (const auto mode = NSPermissionsIn(wrapper.fileAttributes())) setMode(path, *mode);
}

// A hidden folder beside a place, which no other user can look into, for what shall go there.
class Workshop {
 public:
  explicit Workshop(const fs::path& place) {
    std::string pattern = place.parent_path() / ".saving-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) NSFailWithPath(place);
    _folder = pattern;
  }
  Workshop(const Workshop&) = delete;
  ~Workshop() {
    if (!_isKept) clear();
  }

  [[nodiscard]] fs::path piece() const { return _folder / "new"; }
  [[nodiscard]] fs::path former() const { return _folder / "former"; }
  // Leaves all that is in it.
  void keep() { _isKept = true; }

  // Waits until all of it is on the disk.
  void flush() const {
    const NSFileDescriptor folder(_folder, O_RDONLY | O_DIRECTORY);
    if (syncfs(folder.number()) != 0) NSFailWithPath(_folder);
  }

 private:
  // Takes folders out of folders before it removes them, so that neither long paths nor deep trees
  // stop it. Where another file system is mounted that does not work, and it must not go on.
  void clear() const noexcept try {
    const dev_t device = NSStatusOf(_folder).st_dev;
    std::size_t count = 0;
    for (std::vector<fs::path> open = {_folder}; !open.empty();) {
      const fs::path folder = open.back();
      open.pop_back();
      for (const fs::path& path : NSPathsIn(folder)) {
        if (!fs::is_directory(fs::symlink_status(path))) {
          fs::remove(path);
          continue;
        }
        if (NSStatusOf(path).st_dev != device) NSFailWithPath(path, EBUSY);
        fs::permissions(path, fs::perms::owner_all);
        const fs::path outside = _folder / ("old" + std::to_string(++count));
        fs::rename(path, outside);
        open.push_back(outside);
      }
      if (folder != _folder) fs::remove(folder);
    }
    fs::remove(_folder);
  } catch (const std::exception& exception) {
    NSLog(NSString::stringWithFormat(u"Cannot remove a temporary folder: %s"_ns, exception.what()));
  }

  fs::path _folder;
  bool _isKept = false;
};

// Where the file system cannot exchange: it can replace a file, but where a directory is concerned
// nothing stands at the place for a moment.
void installByHand(Workshop& workshop, const fs::path& place) {
  const fs::path piece = workshop.piece();
  const fs::file_status status = fs::symlink_status(place);
  const bool isDirectory = fs::is_directory(piece) || fs::is_directory(status);
  if (!isDirectory || !fs::exists(status)) return fs::rename(piece, place);
  fs::rename(place, workshop.former());
  try {
    fs::rename(piece, place);
  } catch (const fs::filesystem_error&) {
    std::error_code error;
    fs::rename(workshop.former(), place, error);
    if (error) workshop.keep();
    throw;
  }
}

// Puts the piece in the place; what was there comes into the workshop.
void install(Workshop& workshop, const fs::path& place) {
  const fs::path piece = workshop.piece();
  // Others may write to the place, too, so that it comes and goes.
  constexpr int tries = 100;
  constexpr std::array<std::pair<unsigned, int>, 2> ways = {
      {{RENAME_EXCHANGE, ENOENT}, {RENAME_NOREPLACE, EEXIST}}};
  for (int k = 0; k < tries; ++k) {
    for (const auto& [flags, again] : ways) {
      if (renameat2(AT_FDCWD, piece.c_str(), AT_FDCWD, place.c_str(), flags) == 0) return;
      if (errno == EINVAL || errno == ENOSYS) return installByHand(workshop, place);
      if (errno != again) NSFailWithPath(place);
    }
  }
  NSFailWithPath(place, EBUSY);
}

// Failures here change nothing any more.
void flushFolder(const fs::path& path) noexcept {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

// A directory that its owner cannot write to cannot be moved either. Unlocks one while it is.
class Unlocked {
 public:
  Unlocked(const fs::path& path, mode_t mode) : _path(path), _mode(mode) {
    if (isLocked()) setMode(path, mode | S_IWUSR);
  }
  Unlocked(const Unlocked&) = delete;
  ~Unlocked() {
    if (isLocked()) chmod(_path.c_str(), _mode & permissionBits);
  }
  void movedTo(const fs::path& path) { _path = path; }

 private:
  [[nodiscard]] bool isLocked() const { return S_ISDIR(_mode) && (_mode & S_IWUSR) == 0; }

  fs::path _path;
  mode_t _mode;
};

void replace(const NSFileWrapper& wrapper, const fs::path& place) {
  struct stat former {};
  const bool hasFormer = lstat(place.c_str(), &former) == 0;
  const mode_t kind = wrapper.isDirectory() ? S_IFDIR : S_IFREG;
  auto mode = NSPermissionsIn(wrapper.fileAttributes());
  if (!mode && hasFormer && (former.st_mode & S_IFMT) == kind) {
    mode = former.st_mode & permissionBits;
  }

  Workshop workshop(place);
  const fs::path piece = workshop.piece();
  writeContents(wrapper, piece);
  if (mode) setMode(piece, *mode);
  workshop.flush();
  Unlocked unlockedPiece(piece, kind | mode.value_or(permissionBits));
  Unlocked unlockedFormer(place, hasFormer ? former.st_mode : 0);
  install(workshop, place);
  unlockedFormer.movedTo(piece);
  unlockedPiece.movedTo(place);
  flushFolder(place.parent_path());
}

}  // namespace

void NSWriteFileTree(const NSFileWrapper& wrapper, const fs::path& path) {
  if (const auto unusable = unusablePath(wrapper)) {
    throw NSFileRefusal{NSFileWriteInvalidFileNameError,
                        NSMake<NSString>((path / *unusable).native()),
                        "No file can have this name"};
  }
  try {
    replace(wrapper, NSPlaceOf(path));
  } catch (const fs::filesystem_error& failure) {
    // Nobody else knows the temporary places.
    NSFailWithPath(path, failure.code().value());
  }
}
