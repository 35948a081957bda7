#pragma once

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

#include <Foundation/NSDictionary.h>

// What the standard library leaves out of file systems. Failures are thrown as its own are.

[[noreturn]] void NSFailWithPath(const std::filesystem::path& path, int number = errno);

/// An open file. A symbolic link is not followed.
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

/// Tells what stands at the path itself; a symbolic link is not followed.
[[nodiscard]] struct stat NSStatusOf(const std::filesystem::path& path);

/// Lists what is in a folder, at once: a walk of a deep tree needs no descriptor for each level.
[[nodiscard]] std::vector<std::filesystem::path> NSPathsIn(const std::filesystem::path& folder);

/// Gives the path without "/" at the end, and where a symbolic link, "." and ".." lead.
[[nodiscard]] std::filesystem::path NSPlaceOf(const std::filesystem::path& path);

/// Gives the number under `NSFilePosixPermissions`, if there is one. The dictionary may be nil.
[[nodiscard]] std::optional<mode_t> NSPermissionsIn(const NSRef<NSDictionary>& attributes);
