#include "tests/Files.h"

#include <sys/stat.h>

namespace {

using Operation = bool (NSFileManager::*)(const NSRef<NSURL>&, const NSRef<NSURL>&,
                                          NSRef<NSError>*) const;
constexpr Operation copy = &NSFileManager::copyItemAtURL_toURL_error;
constexpr Operation move = &NSFileManager::moveItemAtURL_toURL_error;

std::string transfer(Operation operation, const fs::path& from, const fs::path& to) {
  NSRef<NSError> error;
  const bool isDone =
      ((*NSFileManager::defaultManager()).*operation)(fileURL(from), fileURL(to), &error);
  EXPECT_EQ(isDone, !error);
  return shownFailure(error);
}

std::string erase(const fs::path& path) {
  NSRef<NSError> error;
  const bool isDone = NSFileManager::defaultManager()->removeItemAtURL_error(fileURL(path), &error);
  EXPECT_EQ(isDone, !error);
  return shownFailure(error);
}

std::string list(const fs::path& folder, NSUInteger options = 0) {
  NSRef<NSError> error;
  const auto urls = NSFileManager::defaultManager()
                        ->contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
                            fileURL(folder), nullptr, options, &error);
  if (!urls) return shownFailure(error);
  std::string names;
  for (const auto& url : urls->each<NSURL>()) {
    names += url->lastPathComponent()->utf8() + (url->hasDirectoryPath() ? "/ " : " ");
  }
  return names;
}

// A directory with everything in it that can be copied.
void makeTree(const fs::path& tree) {
  fs::create_directories(tree / "locked");
  writeFile(tree / "script", "#!/bin/sh");
  writeFile(tree / "locked/text", "text");
  writeFile(tree / ".hidden", "");
  fs::create_symlink("nowhere", tree / "link");
  fs::permissions(tree / "script", fs::perms{0750});
  fs::permissions(tree / "locked", fs::perms{0555});
  fs::last_write_time(tree / "script", fs::file_time_type(std::chrono::hours(1)));
  fs::permissions(tree, fs::perms{0755});
}

void expectTree(const fs::path& tree) {
  EXPECT_EQ(namesIn(tree),
            (std::set<std::string>{".hidden", "link", "locked", "locked/text", "script"}));
  EXPECT_EQ(contentsOf(tree / "locked/text"), "text");
  EXPECT_EQ(fs::read_symlink(tree / "link"), "nowhere");
  EXPECT_EQ(fs::status(tree / "script").permissions(), fs::perms{0750});
  EXPECT_EQ(fs::status(tree / "locked").permissions(), fs::perms{0555});
  EXPECT_EQ(fs::last_write_time(tree / "script"), fs::file_time_type(std::chrono::hours(1)));
}

TEST(NSFileCopying, ListsInOrder) {
  const TestFolder folder;
  makeTree(folder / "tree");
  fs::create_directory_symlink("locked", folder / "tree/folder");
  EXPECT_EQ(list(folder / "tree"), ".hidden folder link locked/ script ");
  EXPECT_EQ(list(folder / "tree", NSDirectoryEnumerationSkipsHiddenFiles),
            "folder link locked/ script ");
  EXPECT_EQ(list(folder / "none"), "260 No such file or directory: none");
  EXPECT_EQ(list(folder / "tree/script"), "256 Not a directory: script");
}

TEST(NSFileCopying, CopiesMovesAndRemovesTrees) {
  const TestFolder folder;
  EXPECT_TRUE(asNobody([&] {
    makeTree(folder / "tree");
    EXPECT_EQ(transfer(copy, folder / "tree", folder / "copy"), "");
    expectTree(folder / "tree");
    expectTree(folder / "copy");
    EXPECT_EQ(transfer(move, folder / "copy", folder / "moved"), "");
    expectTree(folder / "moved");
    EXPECT_EQ(transfer(copy, folder / "tree/locked", folder / "locked"), "");
    EXPECT_EQ(fs::status(folder / "locked").permissions(), fs::perms{0555});
    EXPECT_EQ(transfer(copy, folder / "tree/link", folder / "link"), "");
    EXPECT_EQ(list(folder.path()), "link locked/ moved/ tree/ ");
    EXPECT_EQ(erase(folder / "link"), "");
    EXPECT_EQ(erase(folder / "moved"), "513 Permission denied: moved");
    fs::permissions(folder / "moved/locked", fs::perms::owner_all);
    EXPECT_EQ(erase(folder / "moved"), "");
    EXPECT_EQ(list(folder.path()), "locked/ tree/ ");
  }));
}

TEST(NSFileCopying, RefusesAndLeavesEverything) {
  const TestFolder folder;
  makeTree(folder / "tree");
  writeFile(folder / "file", "file");
  mkfifo((folder / "pipe").c_str(), 0600);
  const auto before = namesIn(folder.path());
  for (const Operation operation : {copy, move}) {
    for (const auto& [from, to, expected] : Rows<const char*, const char*, std::string>{
             {"none", "a", "260 No such file or directory: none"},
             {"file", "tree", "516 File exists: tree"},
             {"tree", "file", "516 File exists: file"},
             {"file", "tree/link", "516 File exists: link"},
             {"file", "file", "516 File exists: file"},
             {"tree", "tree/locked/in", "512 Invalid argument: in"},
             {"file", "none/a", "4 No such file or directory: a"},
             {"tree", "none/a", "4 No such file or directory: a"},
             {"tree/locked/..", "a", "256 Invalid argument: .."},
             {"tree/.", "a", "256 Invalid argument: ."},
             {"file", "tree/..", "512 Invalid argument: .."},
             {"tree", "none/./", "512 Invalid argument: ."},
         }) {
      EXPECT_EQ(transfer(operation, folder / from, folder / to), expected) << from;
    }
  }
  EXPECT_EQ(transfer(copy, folder / "pipe", folder / "a"), "256 Operation not supported: pipe");
  fs::permissions(folder / "file", fs::perms::none);
  EXPECT_TRUE(asNobody([&] {
    EXPECT_EQ(transfer(copy, folder / "file", folder / "a"), "257 Permission denied: file");
    EXPECT_EQ(transfer(copy, folder / "tree", folder / "tree/a"), "512 Invalid argument: a");
    EXPECT_EQ(transfer(copy, folder / "tree", folder / "b"), "257 Permission denied: script");
    EXPECT_EQ(transfer(copy, folder / "tree/locked", folder / "tree/b"),
              "513 Permission denied: b");
  }));
  EXPECT_EQ(erase(folder / "none"), "4 No such file or directory: none");
  EXPECT_EQ(erase("/"), "512 Device or resource busy: /");
  for (const char* const name :
       {"tree/.", "tree/..", "tree/locked/../", "tree/link/../.", "none/.."}) {
    EXPECT_TRUE(erase(folder / name).starts_with("512 Invalid argument: .")) << name;
  }
  EXPECT_EQ(namesIn(folder.path()), before);
}

TEST(NSFileCopying, MovesToAnotherFileSystem) {
  const TestFolder folder;
  const TestFolder disk;
  makeTree(folder / "tree");
  const bool isMounted = onDisk(disk.path(), "size=1m", [&] {
    EXPECT_EQ(transfer(move, folder / "tree", disk / "tree"), "");
    expectTree(disk / "tree");
    writeFile(folder / "large", std::string(2'000'000, 'x'));
    EXPECT_EQ(transfer(move, folder / "large", disk / "large"),
              "640 No space left on device: large");
    EXPECT_EQ(list(folder.path()), "large ");
    EXPECT_EQ(list(disk.path()), "tree/ ");
  });
  if (!isMounted) GTEST_SKIP() << "may not mount file systems";
}

}  // namespace
