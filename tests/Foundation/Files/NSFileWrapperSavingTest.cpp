#include "tests/FileWrappers.h"

#include <cstddef>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/fsuid.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace {

TEST(NSFileWrapper, LeavesTheOldDocumentWhenTheNewOneCannotBeWritten) {
  const TestFolder folder;
  const auto old = directory({file("old", "a"), directory({file("older", "c")}, "b")});
  const auto large = directory({file("new", "a"), file(std::string(1 << 20U, 'x'), "d")});
  const fs::path place = folder / "document";
  const auto expectOld = [&](NSInteger code) {
    EXPECT_EQ(write(large, place), code);
    EXPECT_TRUE(haveSameContents(old, read(place)));
    EXPECT_EQ(namesIn(folder.path()),
              (std::set<std::string>{"document", "document/a", "document/b", "document/b/c"}));
  };
  EXPECT_EQ(write(old, place), 0);
  fs::permissions(folder.path(), fs::perms{0555});
  EXPECT_TRUE(asNobody([&] { expectOld(NSFileWriteNoPermissionError); }));
  fs::permissions(folder.path(), fs::perms{0755});
#ifndef __SANITIZE_ADDRESS__
  // With too few descriptors, also beside another who is saving. (The sanitizer needs some to look
  // at an exception's class.)
  EXPECT_TRUE(inChild([&] {
    for (rlim_t few = 0; few < 10; ++few) {
      const fs::path other = folder / ".saving-document";
      if (few == 5) fs::create_directory(other);
      const int user = open(other.c_str(), O_RDONLY | O_DIRECTORY);
      if (user >= 0) flock(user, LOCK_EX);
      const int first = dup(0);
      close(first);
      rlimit limit{};
      getrlimit(RLIMIT_NOFILE, &limit);
      const rlimit tight = {static_cast<rlim_t>(first) + few % 5, limit.rlim_max};
      setrlimit(RLIMIT_NOFILE, &tight);
      const bool isSaved = write(large, place) == 0;
      setrlimit(RLIMIT_NOFILE, &limit);
      EXPECT_EQ(isSaved, few % 5 > (few < 5 ? 2U : 1U));
      EXPECT_TRUE(haveSameContents(isSaved ? large : old, read(place))) << few;
      EXPECT_EQ(namesIn(folder.path()).size(), (isSaved ? 3U : 4U) + (few < 5 ? 0U : 1U)) << few;
      EXPECT_EQ(write(old, place), 0);
      close(user);
    }
    fs::remove(folder / ".saving-document");
  }));
#endif
  fs::permissions(folder.path(), fs::perms{0555});
  const bool isMounted = onDisk(folder.path(), "size=256k", [&] {
    EXPECT_EQ(write(old, place), 0);
    expectOld(NSFileWriteOutOfSpaceError);
  });
  if (!isMounted) GTEST_SKIP() << "may not mount file systems";
  EXPECT_TRUE(onDisk(folder.path(), "size=8m", [&] {
    EXPECT_EQ(write(old, place), 0);
    mount(nullptr, folder.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
    expectOld(NSFileWriteVolumeReadOnlyError);
  }));
  // What is mounted within the old document is not a part of it.
  EXPECT_TRUE(onDisk(folder.path(), "size=8m", [&] {
    EXPECT_EQ(write(old, place), 0);
    mount("tmpfs", (folder / "document/b").c_str(), "tmpfs", 0, nullptr);
    writeFile(folder / "document/b/file", "precious");
    std::string logged;
    NSSetLogSink([&](const NSRef<NSString>& line) { logged = line->utf8(); });
    const int mounted = open((folder / "document/b").c_str(), O_RDONLY | O_DIRECTORY);
    EXPECT_EQ(write(large, place), 0);
    EXPECT_TRUE(haveSameContents(large, read(place)));
    EXPECT_EQ(faccessat(mounted, "file", F_OK, 0), 0);
    close(mounted);
    EXPECT_TRUE(logged.starts_with("Cannot remove a temporary folder")) << logged;
  }));
  // Nor can it be exchanged when it is mounted itself, and stays locked.
  EXPECT_TRUE(onDisk(folder.path(), "size=8m", [&] {
    fs::create_directory(place);
    mount("tmpfs", place.c_str(), "tmpfs", 0, "mode=0500");
    EXPECT_EQ(write(large, place), NSFileWriteUnknownError);
    EXPECT_EQ(fs::status(place).permissions(), fs::perms{0500});
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"document"});
  }));
}

TEST(NSFileWrapper, WritesWhatItsOwnerMayNotChange) {
  const TestFolder folder;
  const bool isTested = asNobody([&] {
    const auto locked = directory({directory({file("x", "a")}, "in")}, "locked");
    for (const auto& wrapper : {locked, childOf(locked, u"in"_ns)}) {
      wrapper->setFileAttributes(permissions(number(0500)));
    }
    const auto document = directory({locked});
    for (int k = 0; k < 2; ++k) EXPECT_EQ(write(document, folder / "document"), 0);
    EXPECT_EQ(write(locked, folder / "copy"), 0);
    EXPECT_EQ(write(read(folder / "copy"), folder / "copy"), 0);
    EXPECT_EQ(fs::status(folder / "copy").permissions(), fs::perms{0500});
    EXPECT_TRUE(haveSameContents(document, read(folder / "document")));
    EXPECT_EQ(write(directory({}), folder / "document"), 0);
    EXPECT_EQ(namesIn(folder.path()),
              (std::set<std::string>{"copy", "copy/in", "copy/in/a", "document"}));
  });
  EXPECT_TRUE(isTested);
}

// Ends the process where the system does not let a call be forbidden.
void forbid(unsigned call, unsigned error) {
  std::array<sock_filter, 4> filter{{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  sock_fprog program{filter.size(), filter.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    leave(cannotTest);
  }
}

TEST(NSFileWrapper, ReplacesADocumentWithoutExchange) {
  const TestFolder folder;
  const auto document = directory({file("x", "a"), directory({file("y", "c")}, "b")});
  const bool isTested = inChild([&] {
    forbid(SYS_renameat2, EINVAL);
    for (const auto& wrapper : {file("all"), file("more"), document, directory({})}) {
      EXPECT_EQ(write(wrapper, folder / "document"), 0);
      EXPECT_TRUE(haveSameContents(wrapper, read(folder / "document")));
    }
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"document"});
  });
  if (!isTested) GTEST_SKIP() << "may not forbid system calls";
}

TEST(NSFileWrapper, LeavesNothingWhereItsFolderCannotBeItsOwn) {
  const TestFolder folder;
  for (const bool hasLocks : {false, true}) {
    const bool isTested = inChild([&] {
      // What root makes belongs to nobody on some file systems.
      if (hasLocks) {
        setfsuid(65534);
      } else {
        forbid(SYS_flock, EOPNOTSUPP);
      }
      for (int k = 0; k < 2; ++k) EXPECT_EQ(write(directory({}), folder / "document"), 0);
      EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"document"}) << hasLocks;
      fs::remove(folder / "document");
    });
    if (!isTested) GTEST_SKIP() << "may not forbid system calls";
  }
}

TEST(NSFileWrapper, TakesAwayWhatAKilledProcessHasLeft) {
  const Rows<const char*, fs::perms, bool, bool, bool> rows = {
      {"new", fs::perms{0700}, false, false, false},
      {"new/deep", fs::perms{0700}, false, false, false},
      {"old12/old1", fs::perms{0700}, false, false, false},
      {"mine", fs::perms{0700}, false, false, true},
      {"old1a", fs::perms{0700}, false, false, true},
      {"new", fs::perms{0700}, true, false, true},
      {"new", fs::perms{0750}, false, false, true},
      {"former", fs::perms{0700}, false, false, false},
      {"former", fs::perms{0700}, false, true, true}};
  for (const auto& [left, mode, isInUse, hasOther, stays] : rows) {
    const TestFolder folder;
    if (hasOther) write(file("other"), folder / "document");
    const fs::path hidden = folder / ".saving-document";
    fs::create_directories(hidden / left);
    fs::permissions(hidden, mode);
    const int user = open(hidden.c_str(), O_RDONLY | O_DIRECTORY);
    if (isInUse) flock(user, LOCK_EX);
    for (int k = 0; k < 2; ++k) EXPECT_EQ(write(directory({}), folder / "document"), 0);
    close(user);
    EXPECT_EQ(fs::exists(hidden / left), stays) << left << isInUse;
    EXPECT_EQ(namesIn(folder.path()).size(), stays ? 3U : 1U) << left << isInUse;
  }
}

TEST(NSFileWrapper, TakesAwayWhatWasBeingTakenAway) {
  const TestFolder folder;
  const fs::path hidden = folder / ".saving-document";
  for (const char* const left : {"old1/a", "old2/b", "old3/c", "new/d"}) {
    fs::create_directories(hidden / left);
  }
  fs::permissions(hidden, fs::perms::owner_all);
  EXPECT_EQ(write(file("all"), folder / "document"), 0);
  EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"document"});
}

TEST(NSFileWrapper, PutsBackWhatAKilledProcessHasTakenOut) {
  const TestFolder folder;
  fs::create_directories(folder / ".saving-document/former/part");
  fs::permissions(folder / ".saving-document", fs::perms::owner_all);
  // This cannot replace the directory.
  EXPECT_FALSE(NSMake<NSData>()->writeToURL_options_error(
      NSURL::fileURLWithPath(folder / "document"), 0, nullptr));
  EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"document", "document/part"}));
}

TEST(NSFileWrapper, IsReadWholeWhileItIsWritten) {
  const TestFolder folder;
  const fs::path place = folder / "document";
  const auto version = [](int number) {
    const auto text = std::to_string(number);
    return directory({file(text, "a"), directory({file(text, "c")}, "b"), file(text, "d")});
  };
  std::atomic<int> writers = 3;
  onThreads(5, [&, started = std::make_shared<std::atomic<int>>(0)] {
    const int self = (*started)++;
    for (int k = 0; self < 3 && k < 30; ++k) EXPECT_EQ(write(version(self * 100 + k), place), 0);
    if (self < 3) --writers;
    while (self >= 3 && writers != 0) {
      NSInteger code = 0;
      const auto found = read(place, &code);
      // Not before the first writing.
      if (!found) {
        EXPECT_EQ(code, NSFileReadNoSuchFileError);
        continue;
      }
      const auto text = childOf(found, u"a"_ns);
      const int number = std::stoi(std::string(text->regularFileContents()->view()));
      EXPECT_TRUE(haveSameContents(found, version(number)));
    }
  });
  EXPECT_EQ(namesIn(folder.path()).size(), 5U);
}

}  // namespace
