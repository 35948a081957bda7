#include "Foundation/Files/Workshop.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <Foundation/Files/Posix.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSString.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t permissionBits = 0777;
constexpr mode_t readAndWrite = 0666;
// What folders are called that are taken out of others, with a number.
constexpr std::string_view aside = "old";

bool isAt(const fs::path& path, int folder) {
  struct stat held {};
  struct stat there {};
  return fstat(folder, &held) == 0 && lstat(path.c_str(), &there) == 0 &&
         held.st_dev == there.st_dev && held.st_ino == there.st_ino;
}

// Whether nobody else can reach into the folder.
bool isPrivate(int folder) {
  struct stat held {};
  return fstat(folder, &held) == 0 && held.st_uid == geteuid() &&
         (held.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

}  // namespace

NSWorkshop::NSWorkshop(const fs::path& place)
    : _place(place), _folder(place.parent_path() / (".saving-" + place.filename().native())) {
  if (!takeFolder()) {
    std::string pattern = place.parent_path() / ".saving-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) NSFailWithPath(place);
    _folder = pattern;
  }
  _spare = open(_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (_spare >= 0) return;
  const int code = errno;
  rmdir(_folder.c_str());
  if (_lock >= 0) close(_lock);
  NSFailWithPath(place, code);
}

NSWorkshop::~NSWorkshop() {
  if (_spare >= 0) close(_spare);
  if (!_isKept) clear();
  if (_lock >= 0) close(_lock);
}

// A process that was killed has left the folder as it was, but not its lock. It has the name of the
// place, so that the next one who writes there finds it.
bool NSWorkshop::takeFolder() try {
  const bool isNew = mkdir(_folder.c_str(), S_IRWXU) == 0;
  _lock = open(_folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  const bool isLocked = _lock >= 0 && flock(_lock, LOCK_EX | LOCK_NB) == 0;
  // Nobody else takes it where there are no locks.
  const bool isOurs = isLocked ? isAt(_folder, _lock) : errno != EWOULDBLOCK;
  if (isLocked && isOurs && isPrivate(_lock) && (isNew || takeOver())) return true;
  if (isNew && isOurs) rmdir(_folder.c_str());
  if (_lock >= 0) close(std::exchange(_lock, -1));
  return false;
} catch (const fs::filesystem_error&) {
  close(std::exchange(_lock, -1));
  return false;
}

// A folder with anything else is somebody's own, whatever it is called.
bool NSWorkshop::holdsOwnAlone() const {
  return std::ranges::all_of(NSPathsIn(_folder), [&](const fs::path& path) {
    const std::string name = path.filename();
    const bool isAside = name.starts_with(aside) && name.size() > aside.size() &&
                         name.find_first_not_of("0123456789", aside.size()) == std::string::npos;
    return isAside || path == piece() || path == former();
  });
}

// Leaves the folder empty, or as it is.
bool NSWorkshop::takeOver() const {
  if (!holdsOwnAlone()) return false;
  // What was taken out of the place goes back, unless something is there: then it may be the only
  // one of its kind, and stays.
  if (isThere(former()) && !isThere(_place)) NSMoveToFreePlace(former(), _place);
  if (isThere(former())) return false;
  empty();
  return true;
}

void NSWorkshop::flush() const {
  const NSFileDescriptor folder(_folder, O_RDONLY | O_DIRECTORY);
  if (syncfs(folder.number()) != 0) NSFailWithPath(_folder);
}

// Takes folders out of folders before it removes them, so that neither long paths nor deep trees
// stop it. Where another file system is mounted that does not work, and it must not go on.
void NSWorkshop::empty() const {
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
      fs::path outside;
      do {
        outside = _folder / std::string(aside).append(std::to_string(++count));
      } while (isThere(outside));
      fs::rename(path, outside);
      open.push_back(outside);
    }
    if (folder != _folder) fs::remove(folder);
  }
}

void NSWorkshop::clear() const noexcept try {
  empty();
  fs::remove(_folder);
} catch (const std::exception& exception) {
  NSLog(NSString::stringWithFormat(u"Cannot remove a temporary folder: %s"_ns, exception.what()));
}

// Where the file system cannot exchange, nothing stands at the place for a moment.
void NSWorkshop::installByHand() {
  if (!isThere(_place)) return fs::rename(piece(), _place);
  fs::rename(_place, former());
  try {
    fs::rename(piece(), _place);
  } catch (const fs::filesystem_error&) {
    std::error_code error;
    fs::rename(former(), _place, error);
    if (error) _isKept = true;
    throw;
  }
}

void NSWorkshop::install() {
  const fs::path piece = this->piece();
  // Others may write to the place, too, so that it comes and goes.
  constexpr int tries = 100;
  constexpr std::array<std::pair<unsigned, int>, 2> ways = {
      {{RENAME_EXCHANGE, ENOENT}, {RENAME_NOREPLACE, EEXIST}}};
  for (int k = 0; k < tries; ++k) {
    for (const auto& [flags, again] : ways) {
      if (renameat2(AT_FDCWD, piece.c_str(), AT_FDCWD, _place.c_str(), flags) == 0) return;
      if (errno == EINVAL || errno == ENOSYS) return installByHand();
      if (errno != again) NSFailWithPath(_place);
    }
  }
  NSFailWithPath(_place, EBUSY);
}

void NSWorkshop::installNew() const { NSMoveToFreePlace(piece(), _place); }

void NSMoveToFreePlace(const fs::path& from, const fs::path& place) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, place.c_str(), RENAME_NOREPLACE) == 0) return;
  // Where the file system does not know the flag, somebody may be faster.
  const bool knowsFlag = errno != EINVAL && errno != ENOSYS;
  if (knowsFlag) NSFailWithPath(place);
  if (isThere(place)) NSFailWithPath(place, EEXIST);
  if (rename(from.c_str(), place.c_str()) != 0) NSFailWithPath(place);
}

void NSFlushFolder(const fs::path& path) noexcept {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

NSUnlocked::NSUnlocked(const fs::path& path, mode_t mode) : _path(path), _mode(mode) {
  if (isLocked()) NSSetMode(path, mode | S_IWUSR);
}

NSUnlocked::~NSUnlocked() {
  if (isLocked()) chmod(_path.c_str(), _mode & permissionBits);
}

bool NSUnlocked::isLocked() const { return S_ISDIR(_mode) && (_mode & S_IWUSR) == 0; }

void NSSetMode(const fs::path& path, mode_t mode) {
  if (chmod(path.c_str(), mode) != 0) NSFailWithPath(path);
}

mode_t NSModeToReplace(const fs::path& place, mode_t kind) {
  struct stat former {};
  if (lstat(place.c_str(), &former) != 0) return 0;
  if (S_ISDIR(former.st_mode) && !S_ISDIR(kind)) NSFailWithPath(place, EISDIR);
  if (!S_ISDIR(former.st_mode) && !S_ISREG(former.st_mode)) NSFailWithPath(place, ENOTSUP);
  return former.st_mode;
}

void NSWriteFile(const fs::path& path, std::span<const std::byte> bytes,
                 std::optional<mode_t> mode) {
  NSAtPlace(path, [&](const fs::path& place) {
    const mode_t former = NSModeToReplace(place, S_IFREG);
    if (!mode && former != 0) mode = former & permissionBits;
    const NSWorkshop workshop(place);
    NSFileDescriptor file(workshop.piece(), O_WRONLY | O_CREAT | O_EXCL, readAndWrite);
    file.writeAll(bytes);
    if (mode && fchmod(file.number(), *mode) != 0) NSFailWithPath(place);
    if (fsync(file.number()) != 0) NSFailWithPath(place);
    file.close();
    // Unlike an exchange it refuses a directory that has come meanwhile.
    fs::rename(workshop.piece(), place);
    NSFlushFolder(place.parent_path());
  });
}

void NSAtPlace(const fs::path& path, NSBlockRef<void(const fs::path&)> operation) {
  try {
    operation(NSPlaceOf(path));
  } catch (const fs::filesystem_error& failure) {
    NSFailWithPath(path, failure.code().value());
  }
}
