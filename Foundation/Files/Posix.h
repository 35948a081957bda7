#pragma once

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

#include <Foundation/NSBlock.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>

// What the standard library leaves out of file systems. Failures are thrown as its own are.

[[noreturn]] void NSFailWithPath(const std::filesystem::path& path, int number = errno);

/// An open file, which no other program inherits.
class NSFileDescriptor {
 public:
  NSFileDescriptor(std::filesystem::path path, int flags, mode_t mode = 0);
  NSFileDescriptor(const NSFileDescriptor&) = delete;
  ~NSFileDescriptor();

  [[nodiscard]] int number() const noexcept { return _number; }
  /// Reads into the room and gives how many bytes there were; 0 at the end.
  [[nodiscard]] std::size_t read(std::span<std::byte> room) const;
  void writeAll(std::span<const std::byte> bytes) const;
  /// Closes the file. Some file systems tell only here that a disk is full.
  void close();

 private:
  std::filesystem::path _path;
  int _number;
};

/// Reads a regular file to its end, even while it grows, and gives how many bytes there are. The
/// memory for them is `roomFor(n)`, which keeps what was read when it is asked for more.
std::size_t NSReadFile(const std::filesystem::path& path, int flags,
                       NSBlockRef<std::byte*(std::size_t)> roomFor);
/// Gives the bytes of a regular file.
[[nodiscard]] NSRef<NSData> NSDataOfFile(const std::filesystem::path& path, int flags = 0);

/// Gives what the operation gives. Throws ENOMEM or EFBIG where it finds no memory.
template <class F>
auto NSWithinMemory(const std::filesystem::path& path, F operation) -> decltype(operation()) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    NSFailWithPath(path, ENOMEM);
  } catch (const std::length_error&) {
    NSFailWithPath(path, EFBIG);
  }
}

/// Tells what stands at the path itself; a symbolic link is not followed.
[[nodiscard]] struct stat NSStatusOf(const std::filesystem::path& path);

/// Lists what is in a folder, at once: a walk of a deep tree needs no descriptor for each level.
[[nodiscard]] std::vector<std::filesystem::path> NSPathsIn(const std::filesystem::path& folder);

/// Whether it is "." or "..", names that every directory has besides its own.
[[nodiscard]] bool NSIsDots(const std::filesystem::path& name);

/// Gives the last name of a path; one that is not UTF-8 fails with EILSEQ.
[[nodiscard]] NSRef<NSString> NSNameOf(const std::filesystem::path& path);

/// Gives the path without "/" and "." at the end.
[[nodiscard]] std::filesystem::path NSWithoutEnd(std::filesystem::path path);

/// Gives the path without "/" at the end, and where a symbolic link, "." and ".." lead.
[[nodiscard]] std::filesystem::path NSPlaceOf(const std::filesystem::path& path);

/// Gives the number under `NSFilePosixPermissions`, if there is one. The dictionary may be nil.
[[nodiscard]] std::optional<mode_t> NSPermissionsIn(const NSRef<NSDictionary>& attributes);
