#include "tests/Files.h"

#include <cstddef>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace {

NSRef<NSFileWrapper> file(std::string_view bytes, const char* name = nullptr) {
  auto wrapper = NSMake<NSFileWrapper>(NSMake<NSData>(bytes));
  if (name != nullptr) wrapper->setPreferredFilename(string(name));
  return wrapper;
}

NSRef<NSFileWrapper> directory(std::initializer_list<NSRef<NSFileWrapper>> children,
                               const char* name = nullptr) {
  auto wrapper = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  for (const auto& child : children) wrapper->addFileWrapper(child);
  if (name != nullptr) wrapper->setPreferredFilename(string(name));
  return wrapper;
}

// The code of the error, 0 for success.
NSInteger write(const NSRef<NSFileWrapper>& wrapper, const fs::path& path, NSUInteger options = 0) {
  NSRef<NSError> error;
  const bool isWritten = wrapper->writeToURL_options_originalContentsURL_error(
      fileURL(path), options, nullptr, &error);
  EXPECT_EQ(isWritten, !error);
  return error ? error->code() : 0;
}

NSRef<NSFileWrapper> read(const fs::path& path, NSInteger* code = nullptr) {
  NSRef<NSError> error;
  auto wrapper = NSFileWrapper::initWithURL_options_error(fileURL(path), 0, &error);
  EXPECT_EQ(!wrapper, error != nullptr);
  if (code != nullptr) *code = error ? error->code() : 0;
  return wrapper;
}

NSRef<NSFileWrapper> childOf(const NSRef<NSFileWrapper>& wrapper, const NSRef<NSString>& name) {
  return wrapper->fileWrappers()->objectForKey(name).as<NSFileWrapper>();
}

bool areSame(const NSRef<NSFileWrapper>& a, const NSRef<NSFileWrapper>& b) {
  if (a->isDirectory() != b->isDirectory()) return false;
  if (!a->isDirectory()) return a->regularFileContents()->isEqual(b->regularFileContents());
  const auto others = b->fileWrappers();
  if (a->fileWrappers()->count() != others->count()) return false;
  for (const auto& entry : a->fileWrappers()) {
    const auto other = others->objectForKey(entry.first).as<NSFileWrapper>();
    if (!other || !areSame(entry.second.as<NSFileWrapper>(), other)) return false;
  }
  return true;
}

TEST(NSFileWrapper, KeepsChildrenByName) {
  const auto folder = directory({});
  const auto notes = file("1", "notes.txt");
  EXPECT_EQ(folder->addFileWrapper(notes)->utf8(), "notes.txt");
  EXPECT_EQ(folder->addFileWrapper(file("2", "notes.txt"))->utf8(), "notes 2.txt");
  EXPECT_EQ(
      folder->addRegularFileWithContents_preferredFilename(NSMake<NSData>("3"), u"notes.txt"_ns)
          ->utf8(),
      "notes 2 3.txt");
  const auto nameless = file("4");
  EXPECT_EQ(folder->addFileWrapper(nameless)->utf8(), "Untitled");
  EXPECT_EQ(nameless->preferredFilename()->utf8(), "Untitled");
  EXPECT_EQ(folder->keyForFileWrapper(notes)->utf8(), "notes.txt");
  EXPECT_EQ(folder->addFileWrapper(notes)->utf8(), "notes 2 3 4.txt");
  notes->setPreferredFilename(u"other"_ns);
  folder->removeFileWrapper(notes);
  EXPECT_FALSE(folder->keyForFileWrapper(notes));
  EXPECT_EQ(folder->fileWrappers()->count(), 3U);
  EXPECT_EQ(folder->unusedFilename(u"Untitled.txt"_ns)->utf8(), "Untitled.txt");
  EXPECT_EQ(folder->description()->utf8(), "NSFileWrapper (directory of 3)");
  EXPECT_EQ(notes->description()->utf8(), "NSFileWrapper other (regular file of 1 bytes)");

  const auto outer = NSMake<NSFileWrapper>(NSMake<NSDictionary>({{u"inner"_ns, folder}}));
  EXPECT_EQ(folder->preferredFilename()->utf8(), "inner");
  for (const auto& child : {outer, folder}) {
    expectRaises(NSInvalidArgumentException,
                 "the child contains the directory (in 'addFileWrapper:')",
                 [&] { folder->addFileWrapper(child); });
  }
  expectRaises(NSInternalInconsistencyException,
               "the file wrapper is no directory (in 'addFileWrapper:')",
               [&] { notes->addFileWrapper(folder); });
  expectRaises(NSInternalInconsistencyException,
               "the file wrapper is no regular file (in 'regularFileContents')",
               [&] { (void)folder->regularFileContents(); });
  EXPECT_THROW((void)NSMake<NSFileWrapper>(NSMake<NSDictionary>({{u"a"_ns, u"b"_ns}})),
               NSException);
}

TEST(NSFileWrapper, SavesAndLoadsADocument) {
  const TestFolder folder;
  const auto document = directory({});
  for (int k = 0; k < 10; ++k) {
    const auto part = directory({}, ("part ü" + std::to_string(k)).c_str());
    for (int file = 0; file < 100; ++file) {
      part->addRegularFileWithContents_preferredFilename(
          NSMake<NSData>(std::string(static_cast<std::size_t>(k * file * 7), 'x') +
                         std::to_string(file)),
          NSMake<NSString>("page" + std::to_string(file) + ".txt"));
    }
    document->addFileWrapper(part);
  }
  const auto empty = directory({file("", "nothing")}, "empty");
  empty->setFileAttributes(permissions(number(0500)));
  document->addFileWrapper(empty);
  const fs::path place = folder / "document";
  EXPECT_EQ(write(document, place, NSFileWrapperWritingWithNameUpdating), 0);
  EXPECT_EQ(namesIn(place).size(), 1012U);
  EXPECT_EQ(empty->filename()->utf8(), "empty");
  EXPECT_EQ(document->filename()->utf8(), "document");
  const auto loaded = read(place);
  EXPECT_TRUE(areSame(document, loaded));
  EXPECT_EQ(loaded->preferredFilename()->utf8(), "document");
  EXPECT_TRUE(childOf(loaded, u"empty"_ns)->fileAttributes()->isEqual(empty->fileAttributes()));

  // In its own place, shorter and with a new file; nothing of the old one or of the saving is left.
  loaded->removeFileWrapper(childOf(loaded, u"part ü3"_ns));
  loaded->addFileWrapper(file("new", "cover"));
  EXPECT_EQ(write(loaded, place), 0);
  EXPECT_TRUE(areSame(loaded, read(place)));
  EXPECT_EQ(namesIn(folder.path()).size(), 913U);

  // Through a link, from directory to file and back.
  fs::create_symlink(place, folder / "link");
  fs::permissions(place, fs::perms{0705});
  EXPECT_EQ(write(directory({}), folder / "link"), 0);
  EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_empty(place));
  EXPECT_EQ(fs::status(place).permissions(), fs::perms{0705});
  const auto secret = file("all");
  secret->setFileAttributes(permissions(number(0600)));
  // Its own permissions, and then those of the file before.
  for (const auto& wrapper : {secret, file("all")}) {
    EXPECT_EQ(write(wrapper, place), 0);
    EXPECT_EQ(fs::status(place).permissions(), fs::perms{0600});
  }
  EXPECT_EQ(contentsOf(place), "all");
  EXPECT_EQ(write(document, place), 0);
  EXPECT_TRUE(areSame(document, read(folder / "link")));
}

TEST(NSFileWrapper, RefusesWhatNoFileCanBe) {
  const TestFolder folder;
  for (const auto& name :
       {u".."_ns, u"."_ns, u"a/b"_ns, NSMake<NSString>(std::u16string_view(u"a\0b", 3)),
        NSMake<NSString>(std::u16string_view(u"\xDC00"))}) {
    const auto bad = file("x");
    bad->setPreferredFilename(name);
    EXPECT_EQ(write(directory({directory({bad}, "in")}), folder / "a"),
              NSFileWriteInvalidFileNameError);
  }
  EXPECT_EQ(write(directory({file("", std::string(256, 'x').c_str())}), folder / "a"),
            NSFileWriteInvalidFileNameError);
  EXPECT_EQ(write(file("x"), folder / "no/a"), NSFileNoSuchFileError);
  EXPECT_EQ(write(file("x"), "/"), NSFileWriteUnknownError);
  EXPECT_TRUE(namesIn(folder.path()).empty());

  const auto refuses = [](const fs::path& path, NSInteger expected) {
    NSInteger code = 0;
    EXPECT_FALSE(read(path, &code));
    EXPECT_EQ(code, expected);
  };
  refuses(folder / "none", NSFileReadNoSuchFileError);
  for (const char* const name : {"pipe", "link", "\xFF", "empty"})
    fs::create_directory(folder / name);
  mkfifo((folder / "pipe/in").c_str(), 0600);
  fs::create_symlink(".", folder / "link/in");
  writeFile(folder / "\xFF" / "in", "");
  refuses(folder / "pipe", NSFileReadUnknownError);
  refuses(folder / "link", NSFileReadUnknownError);
  refuses(folder / "\xFF", NSFileReadInvalidFileNameError);
  EXPECT_EQ(read("/proc/version")->regularFileContents()->view(), contentsOf("/proc/version"));
  EXPECT_EQ(read("/proc/self/../version")->filename()->utf8(), "version");
  EXPECT_EQ(read(folder / "empty/.")->filename()->utf8(), "empty");
}

TEST(NSFileWrapper, RefusesWhatDoesNotFitIntoMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers end the program when memory runs out";
#endif
  const TestFolder folder;
  NSInteger code = 0;
  writeFile(folder / "huge", "");
  fs::resize_file(folder / "huge", std::uintmax_t{1} << 43U);
  EXPECT_FALSE(read(folder / "huge", &code));
  EXPECT_EQ(code, NSFileReadTooLargeError);
}

TEST(NSFileWrapper, LeavesTheOldDocumentWhenTheNewOneCannotBeWritten) {
  const TestFolder folder;
  const auto old = directory({file("old", "a"), directory({file("older", "c")}, "b")});
  const auto large = directory({file("new", "a"), file(std::string(1 << 20U, 'x'), "d")});
  const fs::path place = folder / "document";
  const auto expectOld = [&](NSInteger code) {
    EXPECT_EQ(write(large, place), code);
    EXPECT_TRUE(areSame(old, read(place)));
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
      EXPECT_TRUE(areSame(isSaved ? large : old, read(place))) << few;
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
    EXPECT_TRUE(areSame(large, read(place)));
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
    EXPECT_TRUE(areSame(document, read(folder / "document")));
    EXPECT_EQ(write(directory({}), folder / "document"), 0);
    EXPECT_EQ(namesIn(folder.path()),
              (std::set<std::string>{"copy", "copy/in", "copy/in/a", "document"}));
  });
  EXPECT_TRUE(isTested);
}

TEST(NSFileWrapper, ReplacesADocumentWithoutExchange) {
  const TestFolder folder;
  const auto document = directory({file("x", "a"), directory({file("y", "c")}, "b")});
  const bool isTested = inChild([&] {
    std::array<sock_filter, 4> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    sock_fprog program{filter.size(), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
      std::_Exit(cannotTest);
    }
    for (const auto& wrapper : {document, file("all"), file("more"), document, directory({})}) {
      EXPECT_EQ(write(wrapper, folder / "document"), 0);
      EXPECT_TRUE(areSame(wrapper, read(folder / "document")));
    }
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"document"});
  });
  if (!isTested) GTEST_SKIP() << "may not forbid system calls";
}

TEST(NSFileWrapper, TakesAwayWhatAKilledProcessHasLeft) {
  const Rows<const char*, fs::perms, bool, bool, bool> rows = {
      {"new", fs::perms{0700}, false, false, false},
      {"new/deep", fs::perms{0700}, false, false, false},
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
    for (int k = 0; k < 2; ++k) EXPECT_EQ(write(file("all"), folder / "document"), 0);
    close(user);
    EXPECT_EQ(fs::exists(hidden / left), stays) << left << isInUse;
    EXPECT_EQ(namesIn(folder.path()).size(), stays ? 3U : 1U) << left << isInUse;
  }
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
      EXPECT_TRUE(areSame(found, version(number)));
    }
  });
  EXPECT_EQ(namesIn(folder.path()).size(), 5U);
}

}  // namespace
