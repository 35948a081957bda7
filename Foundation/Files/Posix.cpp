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
    : _path(std::move(path)), _number(::open(_path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, mode)) {
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

fs::path NSPlaceOf(const fs::path& path) {
  fs::path place = path.has_filename() ? path : path.parent_path();
  if (!place.has_filename()) NSFailWithPath(path, EBUSY);
  const bool leadsElsewhere = place.filename() == "." || place.filename() == ".." ||
                              fs::is_symlink(fs::symlink_status(place));
  return leadsElsewhere ? fs::canonical(place) : place;
}

std::optional<mode_t> NSPermissionsIn(const NSRef<NSDictionary>& attributes) {
  const auto value = attributes ? attributes->objectForKey(NSFilePosixPermissions()) : nullptr;
  const auto* const number = value.cast<NSNumber>();
  if (number == nullptr) return std::nullopt;
  return static_cast<mode_t>(number->unsignedIntegerValue());
}
