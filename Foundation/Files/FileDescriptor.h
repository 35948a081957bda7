#pragma once

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

#include <sys/types.h>

// What the standard library leaves out of file systems. Failures are thrown as its own are, with
// the path and the `errno`.

[[noreturn]] void NSFailWithPath(const std::filesystem::path& path, int number = errno);

/// An open file. A symbolic link is not followed.
class NSFileDescriptor {
 public:
  NSFileDescriptor(std::filesystem::path path, int flags, mode_t mode = 0);
  NSFileDescriptor(const NSFileDescriptor&) = delete;
  ~NSFileDescriptor();

  int number() const noexcept { return _number; }
  /// Gives how many bytes there were; 0 at the end.
  std::size_t read(std::span<std::byte> room) const;
  void writeAll(std::span<const std::byte> bytes) const;
  /// Some file systems tell only here that a disk is full.
  void close();

 private:
  std::filesystem::path _path;
  int _number;
};

/// What is in a folder: a list, so that who walks a deep tree needs no descriptor for each level.
std::vector<std::filesystem::path> NSPathsIn(const std::filesystem::path& folder);

/// The path without "/" at the end, and where a symbolic link, "." and ".." lead.
std::filesystem::path NSPlaceOf(const std::filesystem::path& path);
