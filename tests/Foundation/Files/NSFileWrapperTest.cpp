#include "tests/FileWrappers.h"

#include <sys/stat.h>

namespace {

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
  EXPECT_TRUE(haveSameContents(document, loaded));
  EXPECT_EQ(loaded->preferredFilename()->utf8(), "document");
  EXPECT_TRUE(childOf(loaded, u"empty"_ns)->fileAttributes()->isEqual(empty->fileAttributes()));

  // In its own place, shorter and with a new file; nothing of the old one or of the saving is left.
  loaded->removeFileWrapper(childOf(loaded, u"part ü3"_ns));
  loaded->addFileWrapper(file("new", "cover"));
  EXPECT_EQ(write(loaded, place), 0);
  EXPECT_TRUE(haveSameContents(loaded, read(place)));
  EXPECT_EQ(namesIn(folder.path()).size(), 913U);

  // Through a link, and a directory in the place of a file.
  fs::create_symlink(place, folder / "link");
  fs::permissions(place, fs::perms{0705});
  const auto other = directory({});
  EXPECT_EQ(write(other, folder / "link", NSFileWrapperWritingWithNameUpdating), 0);
  EXPECT_EQ(other->filename()->utf8(), "document");
  EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_empty(place));
  EXPECT_EQ(fs::status(place).permissions(), fs::perms{0705});
  fs::remove(place);
  const auto secret = file("all");
  secret->setFileAttributes(permissions(number(0600)));
  // Its own permissions, and then those of the file before.
  for (const auto& wrapper : {secret, file("all")}) {
    EXPECT_EQ(write(wrapper, place), 0);
    EXPECT_EQ(fs::status(place).permissions(), fs::perms{0600});
  }
  EXPECT_EQ(contentsOf(place), "all");
  EXPECT_EQ(write(document, place), 0);
  EXPECT_TRUE(haveSameContents(document, read(folder / "link")));
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
  EXPECT_EQ(write(file("x"), folder / "\xFF"), NSFileWriteInvalidFileNameError);
  EXPECT_EQ(write(file("x"), folder / "no/a"), NSFileNoSuchFileError);
  EXPECT_EQ(write(file("x"), "/"), NSFileWriteUnknownError);
  EXPECT_TRUE(namesIn(folder.path()).empty());

  const auto refuses = [](const fs::path& path, const char* expected) {
    NSRef<NSError> error;
    EXPECT_FALSE(NSFileWrapper::initWithURL_options_error(fileURL(path), 0, &error));
    EXPECT_EQ(shownFailure(error), expected);
  };
  refuses(folder / "none", "260 No such file or directory: none");
  for (const char* const name : {"pipe", "link", "\xFF", "empty"})
    fs::create_directory(folder / name);
  mkfifo((folder / "pipe/in").c_str(), 0600);
  fs::create_symlink(".", folder / "link/in");
  writeFile(folder / "\xFF" / "in", "");
  refuses(folder / "pipe", "256 Operation not supported: in");
  refuses(folder / "link", "256 A document cannot hold a symbolic link: in");
  refuses(folder / "\xFF", "258 Invalid or incomplete multibyte or wide character: \uFFFD");
  EXPECT_EQ(read("/proc/version")->regularFileContents()->view(), contentsOf("/proc/version"));
  EXPECT_EQ(read("/proc/self/../version")->filename()->utf8(), "version");
  EXPECT_EQ(read(folder / "empty/.")->filename()->utf8(), "empty");
}

TEST(NSFileWrapper, RefusesToReplaceWhatItCannotBe) {
  const TestFolder folder;
  fs::create_directories(folder / "folder/in");
  mkfifo((folder / "pipe").c_str(), 0600);
  fs::create_symlink("pipe", folder / "link");
  const auto before = namesIn(folder.path());
  EXPECT_EQ(shownFailure(errorOfWriting(file("x"), folder / "folder")),
            "512 Is a directory: folder");
  for (const auto& wrapper : {file("x"), directory({})}) {
    for (const std::string name : {"pipe", "link"}) {
      EXPECT_EQ(shownFailure(errorOfWriting(wrapper, folder / name)),
                "512 Operation not supported: " + name);
    }
    for (const std::string name : {"folder/.", "folder/in/..", "folder/in/../"}) {
      EXPECT_EQ(errorOfWriting(wrapper, folder / name)->code(), NSFileWriteUnknownError);
    }
  }
  EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
  EXPECT_EQ(namesIn(folder.path()), before);
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

}  // namespace
