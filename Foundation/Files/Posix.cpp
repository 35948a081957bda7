#include "Foundation/Files/Posix.h"

#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include <Foundation/NSFileManager.h>
#include <Foundation/NSNumber.h>

namespace fs = std::filesystem;

void NSFailWithPath(const fs::path& path, int number) {
  throw fs::filesystem_error({}, path, std::error_code(number, std::system_category()));
}

NSFileDescriptor::NSFileDescriptor(fs::path path, int flags, mode_t mode)
    : _path(std::move(path)), _number(::open(_path.c_str(), flags | O_CLOEXEC, mode)) {
  if (_number < 0) NSFailWithPath(_path);
}

NSFileDescriptor::~NSFileDescriptor() {
  if (_number >= 0) ::close(_number);
}

std::size_t NSFileDescriptor::read(std::span<std::byte> room) const {
  for (;;) {
    const ssize_t count = ::read(_number, room.data(), room.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) NSFailWithPath(_path);
  }
}

void NSFileDescriptor::writeAll(std::span<const std::byte> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(_number, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      NSFailWithPath(_path);
    }
  }
}

void NSFileDescriptor::close() {
  if (::close(std::exchange(_number, -1)) != 0) NSFailWithPath(_path);
}

std::size_t NSReadFile(const fs::path& path, int flags,
                       NSBlockRef<std::byte*(std::size_t)> roomFor) {
  // What is no file must not keep the reader waiting.
  const NSFileDescriptor file(path, O_RDONLY | O_NONBLOCK | flags);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) NSFailWithPath(path);
  if (!S_ISREG(status.st_mode)) NSFailWithPath(path, S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP);
  // One byte more shows the end without another reading. Files of the system's own tell no size.
  constexpr std::size_t unknownSize = 4096;
  std::size_t size =
      status.st_size == 0 ? unknownSize : static_cast<std::size_t>(status.st_size) + 1;
  std::byte* bytes = roomFor(size);
  std::size_t length = 0;
  while (const std::size_t count = file.read({bytes + length, size - length})) {
    length += count;
    if (length < size) continue;
    size *= 2;
    bytes = roomFor(size);
  }
  return length;
}

NSRef<NSData> NSDataOfFile(const fs::path& path, int flags) {
  std::vector<std::byte> bytes;
  const std::size_t length = NSReadFile(path, flags, [&](std::size_t size) {
    bytes.resize(size);
    return bytes.data();
  });
  bytes.resize(length);
  if (length < bytes.capacity() / 2) bytes.shrink_to_fit();
  return NSMake<NSData>(std::move(bytes));
}

struct stat NSStatusOf(const fs::path& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) NSFailWithPath(path);
  return status;
}

std::vector<fs::path> NSPathsIn(const fs::path& folder) {
  std::vector<fs::path> paths;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    paths.push_back(entry.path());
  }
  return paths;
}

bool NSIsDots(const fs::path& name) { return name == "." || name == ".."; }

NSRef<NSString> NSNameOf(const fs::path& path) {
  const std::string name = path.filename().native();
  if (!NSIsWellFormedUTF8(name)) NSFailWithPath(path, EILSEQ);
  return NSMake<NSString>(name);
}

fs::path NSWithoutEnd(fs::path path) {
  while (path.has_parent_path() && path != "/" &&
         (!path.has_filename() || path.filename() == ".")) {
    path = path.parent_path();
  }
  return path;
}

fs::path NSPlaceOf(const fs::path& path) {
  fs::path place = path.has_filename() ? path : path.parent_path();
  if (!place.has_filename()) NSFailWithPath(path, EBUSY);
  const bool leadsElsewhere =
      NSIsDots(place.filename()) || fs::is_symlink(fs::symlink_status(place));
  return leadsElsewhere ? fs::canonical(place) : place;
}

std::optional<mode_t> NSPermissionsIn(const NSRef<NSDictionary>& attributes) {
  const auto value = attributes ? attributes->objectForKey(NSFilePosixPermissions()) : nullptr;
  const auto* const number = value.cast<NSNumber>();
  if (number == nullptr) return std::nullopt;
  return static_cast<mode_t>(number->unsignedIntegerValue());
}
