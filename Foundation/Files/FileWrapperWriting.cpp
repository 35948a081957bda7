#include "Foundation/Files/FileWrapperWriting.h"

#include <optional>
#include <string>

#include <fcntl.h>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/FilePaths.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/Workshop.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
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

void writeTree(const NSFileWrapper& wrapper, const fs::path& path) {
  writeContents(wrapper, path);
  // Last, as it may be a directory that nothing can be written to.
  if (const auto mode = NSPermissionsIn(wrapper.fileAttributes())) NSSetMode(path, *mode);
}

void replaceByDirectory(const fs::path& place, const NSFileWrapper& wrapper) {
  const mode_t former = NSModeToReplace(place, S_IFDIR);
  auto mode = NSPermissionsIn(wrapper.fileAttributes());
  if (!mode && S_ISDIR(former)) mode = former & permissionBits;

  NSWorkshop workshop(place);
  const fs::path piece = workshop.piece();
  writeContents(wrapper, piece);
  if (mode) NSSetMode(piece, *mode);
  workshop.flush();
  NSUnlocked unlockedPiece(piece, S_IFDIR | mode.value_or(permissionBits));
  NSUnlocked unlockedFormer(place, former);
  workshop.install();
  unlockedFormer.movedTo(piece);
  unlockedPiece.movedTo(place);
  NSFlushFolder(place.parent_path());
}

}  // namespace

NSRef<NSString> NSWriteFileTree(const NSFileWrapper& wrapper, const fs::path& path) {
  if (const auto unusable = unusablePath(wrapper)) {
    throw NSFileRefusal{NSFileWriteInvalidFileNameError,
                        NSMake<NSString>((path / *unusable).native()),
                        "No file can have this name"};
  }
  // A document that replaced what "." and ".." lead to could take far more than was meant.
  const fs::path last = path.has_filename() ? path : path.parent_path();
  if (NSIsDots(last.filename())) NSFailWithPath(path, EINVAL);
  NSRef<NSString> name;
  NSAtPlace(path, [&](const fs::path& place) {
    name = NSNameOf(place);
    if (wrapper.isDirectory()) return replaceByDirectory(place, wrapper);
    NSWriteFile(place, wrapper.regularFileContents()->bytes(),
                NSPermissionsIn(wrapper.fileAttributes()));
  });
  return name;
}
