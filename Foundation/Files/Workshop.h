#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

#include <sys/types.h>

#include <Foundation/NSBlock.h>

/// A hidden folder beside a place, which no other user can look into, for what shall go there as a
/// whole. What is left in it goes with it, and what a process has left in its folder that was
/// killed goes when something is next put in the same place, if nothing else is in there.
class NSWorkshop {
 public:
  explicit NSWorkshop(const std::filesystem::path& place);
  NSWorkshop(const NSWorkshop&) = delete;
  ~NSWorkshop();

  /// Gives where what shall go to the place is made.
  [[nodiscard]] std::filesystem::path piece() const { return _folder / "new"; }
  /// Waits until all of it is on the disk.
  void flush() const;

  /// Puts the piece in the place; what was there comes into the workshop.
  void install();
  /// Puts the piece in the place, where nothing may be.
  void installNew() const;

 private:
  [[nodiscard]] bool takeFolder();
  [[nodiscard]] bool holdsOwnAlone() const;
  [[nodiscard]] bool takeOver() const;
  void installByHand();
  void empty() const;
  void clear() const noexcept;
  [[nodiscard]] std::filesystem::path former() const { return _folder / "former"; }

  std::filesystem::path _place;
  std::filesystem::path _folder;
  int _lock = -1;
  // Lets the folder be emptied when there are no more descriptors.
  int _spare = -1;
  bool _isKept = false;
};

/// Moves what is at a path to another one of the same file system, where nothing may be.
void NSMoveToFreePlace(const std::filesystem::path& from, const std::filesystem::path& place);

/// Waits until a folder's names are on the disk. Failures change nothing any more.
void NSFlushFolder(const std::filesystem::path& path) noexcept;

/// A directory that its owner cannot write to cannot be moved either. Unlocks one while it is.
class NSUnlocked {
 public:
  NSUnlocked(const std::filesystem::path& path, mode_t mode);
  NSUnlocked(const NSUnlocked&) = delete;
  ~NSUnlocked();
  void movedTo(const std::filesystem::path& path) { _path = path; }

 private:
  [[nodiscard]] bool isLocked() const;

  std::filesystem::path _path;
  mode_t _mode;
};

void NSSetMode(const std::filesystem::path& path, mode_t mode);

/// Gives the mode of what stands at a place and will be replaced by a file or directory; 0 of
/// nothing. Throws EISDIR for a directory and a file, and ENOTSUP for a pipe, device or socket.
[[nodiscard]] mode_t NSModeToReplace(const std::filesystem::path& place, mode_t kind);

/// Replaces a regular file, or makes one: at once and, unless others are given, with the
/// permissions of the one before, after all bytes are on the disk. Of a symbolic link what it
/// refers to is replaced.
void NSWriteFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
                 std::optional<mode_t> mode = std::nullopt);

/// Runs the operation with the place of a path. What fails within names the path, as nobody else
/// knows the temporary places.
void NSAtPlace(const std::filesystem::path& path,
               NSBlockRef<void(const std::filesystem::path&)> operation);
