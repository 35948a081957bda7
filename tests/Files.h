#pragma once

#include "tests/Support.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

/// A folder of the test's own.
class TestFolder {
 public:
  TestFolder() {
    std::string pattern = fs::canonical(fs::temp_directory_path()) / "zk test XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for tests");
    _path = pattern;
    // Tests look at it as other users, too.
    fs::permissions(_path, fs::perms::all);
  }
  TestFolder(const TestFolder&) = delete;
  ~TestFolder() {
    fs::permissions(_path, fs::perms::owner_all, fs::perm_options::add);
    for (const auto& entry : fs::recursive_directory_iterator(_path)) {
      if (entry.is_directory())
        fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add);
    }
    fs::remove_all(_path);
  }

  const fs::path& path() const { return _path; }
  fs::path operator/(std::string_view name) const { return _path / name; }

 private:
  fs::path _path;
};

inline void writeFile(const fs::path& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

inline std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// "516 File exists: name", or nothing.
inline std::string shownFailure(const NSRef<NSError>& error) {
  if (!error) return "";
  const auto path = error->userInfo()->objectForKey(NSFilePathErrorKey()).as<NSString>();
  return std::to_string(error->code()) + ' ' + error->localizedDescription()->utf8() + ": " +
         path->lastPathComponent()->utf8();
}

/// The paths of all that is in a folder, relative to it.
inline std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    names.insert(entry.path().lexically_relative(folder));
  }
  return names;
}

inline NSRef<NSURL> fileURL(const fs::path& path) {
  return NSURL::fileURLWithPath_isDirectory(path, false);
}

inline NSRef<NSDictionary> permissions(const NSRef<NSObject>& bits) {
  return NSMake<NSDictionary>({{NSFilePosixPermissions(), bits}});
}

constexpr int cannotTest = 77;

/// Ends a child at once, but where lines are counted with what it has counted.
[[noreturn]] inline void leave(int code) {
#ifdef ZK_COUNTS_LINES
  std::exit(code);
#endif
  std::_Exit(code);
}

/// Runs the action in a process of its own, whose failures are the test's. Gives false when it says
/// with `cannotTest` that the system does not let it.
template <class Action>
[[nodiscard]] bool inChild(Action action) {
  const pid_t child = fork();
  if (child == 0) {
    try {
      action();
    } catch (const std::exception& exception) {
      ADD_FAILURE() << exception.what();
    }
    leave(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == cannotTest) return false;
  EXPECT_EQ(status, 0);
  return true;
}

/// Runs the action as a user who may not do everything.
template <class Action>
[[nodiscard]] bool asNobody(Action action) {
  constexpr uid_t nobody = 65534;
  return inChild([&] {
    if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0)) leave(cannotTest);
    action();
  });
}

/// Runs the action while a disk of its own is mounted on the folder, with these options.
template <class Action>
[[nodiscard]] bool onDisk(const fs::path& folder, const char* options, Action action) {
  return inChild([&] {
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, options) != 0) {
      leave(cannotTest);
    }
    action();
  });
}
