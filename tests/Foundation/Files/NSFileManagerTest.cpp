#include "tests/Files.h"

#include <latch>

#include <sys/stat.h>

namespace {

// Code, number behind it and the name that failed: "516 17 file"; "none" for success.
std::string expected(NSInteger code, NSInteger number, const std::string& name) {
  return std::to_string(code) + ' ' + std::to_string(number) + ' ' + name;
}

std::string shown(const NSRef<NSError>& error) {
  if (!error) return "none";
  const auto info = error->userInfo();
  const auto underlying = info->objectForKey(NSUnderlyingErrorKey()).as<NSError>();
  const auto path = info->objectForKey(NSFilePathErrorKey()).as<NSString>();
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain());
  EXPECT_TRUE(!underlying || underlying->domain() == NSPOSIXErrorDomain());
  return expected(error->code(), underlying ? underlying->code() : 0,
                  path->lastPathComponent()->utf8());
}

// Makes a directory and gives the error.
std::string make(const NSRef<NSURL>& url, bool createIntermediates = true,
                 const NSRef<NSDictionary>& attributes = nullptr) {
  NSRef<NSError> error;
  const bool isMade = NSFileManager::defaultManager()
                          ->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
                              url, createIntermediates, attributes, &error);
  EXPECT_EQ(isMade, !error);
  return shown(error);
}
std::string make(const fs::path& path, bool createIntermediates = true,
                 const NSRef<NSDictionary>& attributes = nullptr) {
  return make(NSURL::fileURLWithPath_isDirectory(path, true), createIntermediates, attributes);
}

TEST(NSFileManager, MakesDirectories) {
  const TestFolder folder;
  EXPECT_EQ(make(folder / "a/b/../c"), "none");
  EXPECT_EQ(make(folder / "a/c"), "none");
  EXPECT_EQ(make(folder / "a/c", false), expected(NSFileWriteFileExistsError, EEXIST, "c"));
  EXPECT_EQ(make(folder / "x/y", false), expected(NSFileNoSuchFileError, ENOENT, "y"));
  EXPECT_EQ(make(folder / "d", false), "none");
  EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"a", "a/b", "a/c", "d"}));
  const auto made =
      NSFileManager::defaultManager()->URLForDirectory_inDomain_appropriateForURL_create_error(
          NSUserDirectory, NSLocalDomainMask, nullptr, true, nullptr);
  EXPECT_TRUE(fs::is_directory(made->fileSystemPath()));
}

TEST(NSFileManager, TellsAttributes) {
  const TestFolder folder;
  const mode_t former = umask(027);
  const auto wanted = permissions(number(0702));
  EXPECT_EQ(make(folder / "m/n/./", true, wanted), "none");
  EXPECT_EQ(make(folder / "m", true, wanted), "none");  // One that exists keeps its permissions.
  umask(former);
  NSRef<NSError> error;
  const auto ask = [&](const NSRef<NSString>& path, const NSRef<NSString>& key) {
    const auto attributes =
        NSFileManager::defaultManager()->attributesOfItemAtPath_error(path, &error);
    return attributes ? attributes->objectForKey(key)->description()->utf8() : shown(error);
  };
  const auto tell = [&](const fs::path& path, const NSRef<NSString>& key) {
    return ask(NSMake<NSString>(path.native()), key);
  };
  fs::create_symlink("nowhere", folder / "link");
  EXPECT_EQ(tell(folder / "m/n", NSFileType()), NSFileTypeDirectory()->utf8());
  EXPECT_EQ(tell("/dev/null", NSFileType()), NSFileTypeUnknown()->utf8());
  EXPECT_EQ(tell(folder / "link", NSFileType()), NSFileTypeSymbolicLink()->utf8());
  EXPECT_EQ(tell(folder / "m", NSFilePosixPermissions()), std::to_string(0750));
  EXPECT_EQ(tell(folder / "m/n", NSFilePosixPermissions()), std::to_string(0702));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(ask(NSMake<NSString>(std::u16string_view(u"/\xD800")), NSFileType()),
            expected(NSFileReadInvalidFileNameError, 0, "\uFFFD"));
  EXPECT_EQ(tell(folder / "none", NSFileType()),
            expected(NSFileReadNoSuchFileError, ENOENT, "none"));
  EXPECT_EQ(error->description()->utf8(), "NSCocoaErrorDomain 260: No such file or directory (" +
                                              (folder / "none").native() + ")");
}

TEST(NSFileManager, LeavesNothingOfADirectoryThatCannotBeMade) {
  const TestFolder folder;
  writeFile(folder / "file", "");
  fs::create_symlink("nowhere", folder / "link");
  const std::string longName(300, 'x');
  const auto before = namesIn(folder.path());
  fs::path longPath = folder.path();
  for (int k = 0; k < 1000; ++k) longPath /= "abcdef";
  for (const auto& [path, code, number, name] : Rows<fs::path, NSCocoaErrorCode, int, std::string>{
           {folder / "file", NSFileWriteFileExistsError, EEXIST, "file"},
           {folder / "file/a/b", NSFileWriteUnknownError, ENOTDIR, "b"},
           {folder / "link", NSFileWriteFileExistsError, EEXIST, "link"},
           {folder / "link/a/b", NSFileWriteFileExistsError, EEXIST, "link"},
           {folder / "a/b" / longName / "c", NSFileWriteInvalidFileNameError, ENAMETOOLONG,
            longName},
           {longPath, NSFileWriteInvalidFileNameError, ENAMETOOLONG, "abcdef"},
           {"/proc/a/b", NSFileNoSuchFileError, ENOENT, "a"},
       }) {
    EXPECT_EQ(make(path), expected(code, number, name));
  }
  EXPECT_EQ(make(folder / "a", true, permissions(u"rwx"_ns)),
            expected(NSFileWriteUnknownError, EINVAL, "a"));
  for (const auto& [url, code] : {std::pair(u"http://a/b"_ns, NSFileWriteUnsupportedSchemeError),
                                  std::pair(u"file:///tmp/%00"_ns, NSFileWriteInvalidFileNameError),
                                  std::pair(u"file:a"_ns, NSFileWriteInvalidFileNameError)}) {
    EXPECT_EQ(make(NSURL::URLWithString(url)), expected(code, 0, url->lastPathComponent()->utf8()));
  }
  EXPECT_EQ(namesIn(folder.path()), before);
}

TEST(NSFileManager, TellsWhyADiskTakesNothing) {
  const TestFolder folder;
  fs::create_directory(folder / "closed");
  fs::permissions(folder / "closed", fs::perms{0555});
  EXPECT_TRUE(asNobody([&] {
    EXPECT_EQ(make(folder / "closed/a"), expected(NSFileWriteNoPermissionError, EACCES, "a"));
    EXPECT_EQ(make(folder / "closed"), "none");
  }));
  const bool isMounted = onDisk(folder.path(), "nr_inodes=3", [&] {
    EXPECT_EQ(make(folder / "a/b/c/d"), expected(NSFileWriteOutOfSpaceError, ENOSPC, "c"));
    EXPECT_TRUE(namesIn(folder.path()).empty());
    EXPECT_EQ(make(folder / "a/b"), "none");
  });
  if (!isMounted) GTEST_SKIP() << "may not mount file systems";
  EXPECT_TRUE(onDisk(folder.path(), "mode=0777", [&] {
    fs::create_directory(folder / "a");
    mount(nullptr, folder.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
    EXPECT_EQ(make(folder / "a/b/c"), expected(NSFileWriteVolumeReadOnlyError, EROFS, "b"));
    EXPECT_EQ(make(folder / "a"), "none");
  }));
}

TEST(NSFileManager, MakesOneDirectoryForMany) {
  const TestFolder folder;
  for (int round = 0; round < 40; ++round) {
    const fs::path path = folder / std::to_string(round) / "a/b/c";
    constexpr int count = 8;
    std::latch gate(count);
    onThreads(count, [&] {
      gate.arrive_and_wait();
      EXPECT_EQ(make(path), "none");
      EXPECT_TRUE(fs::is_directory(path));
    });
  }
}

TEST(NSFileManager, KnowsTheStandardDirectories) {
  const TestFolder folder;
  fs::create_directory(folder / "settings");
  writeFile(folder / "settings/user-dirs.dirs",
            "XDG_PUBLICSHARE_DIR=\"/all\"\n# comment\nXDG_DOCUMENTS_DIR=\"/first\"\n "
            "XDG_DOCUMENTS_DIR = \"$HOME/My \\\"Files\"\n"
            "XDG_MUSIC_DIR=\"Music here\"\nXDG_VIDEOS_DIR=\"/videos\nXDG_DESKTOP_DIR=\"$HOMER/a\"\n"
            "XDG_DOWNLOAD_DIR=\"$HOME\"\nXDG_PICTURES_DIR=\"/\xFF\"");
  const auto path = [](NSUInteger directory, NSUInteger domain) {
    NSRef<NSError> error;
    const auto url =
        NSFileManager::defaultManager()->URLForDirectory_inDomain_appropriateForURL_create_error(
            directory, domain, nullptr, false, &error);
    EXPECT_EQ(!url, error && error->code() == NSFileReadUnknownError);
    EXPECT_TRUE(!url || url->hasDirectoryPath());
    return url ? url->fileSystemPath().native() : "";
  };
  const bool isTested = inChild([&] {
    const auto set = [](const char* name, const std::string& value) {
      setenv(name, value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): one thread
    };
    set("HOME", "/h");
    set("XDG_CONFIG_HOME", folder / "settings");
    set("XDG_DATA_HOME", "");
    set("XDG_CACHE_HOME", "relative");
    for (const auto& [directory, expected] : Rows<NSUInteger, const char*>{
             {NSDocumentDirectory, "/h/My \"Files/"},
             {NSMusicDirectory, "/h/Music/"},
             {NSMoviesDirectory, "/h/Videos/"},
             {NSDesktopDirectory, "/h/Desktop/"},
             {NSDownloadsDirectory, "/h/"},
             {NSSharedPublicDirectory, "/all/"},
             {NSPicturesDirectory, "/\xFF/"},
             {NSCachesDirectory, "/h/.cache/"},
             {NSApplicationSupportDirectory, "/h/.local/share/"},
             {NSUserDirectory, ""},
             {4711, ""},
         }) {
      EXPECT_EQ(path(directory, NSUserDomainMask), expected);
    }
    EXPECT_EQ(path(NSDocumentDirectory, NSUserDomainMask | NSLocalDomainMask), "");
    EXPECT_EQ(path(NSCachesDirectory, NSLocalDomainMask), "/var/cache/");
    EXPECT_EQ(path(NSApplicationSupportDirectory, NSLocalDomainMask), "/usr/local/share/");
    EXPECT_EQ(path(NSDocumentDirectory, NSLocalDomainMask), "");
    set("XDG_DATA_HOME", "/data");
    EXPECT_EQ(path(NSApplicationSupportDirectory, NSUserDomainMask), "/data/");
    set("HOME", "/");
    EXPECT_EQ(path(NSDocumentDirectory, NSUserDomainMask), "/My \"Files/");
    set("HOME", "/h");
    fs::remove(folder / "settings/user-dirs.dirs");
    mkfifo((folder / "settings/user-dirs.dirs").c_str(), 0600);
    EXPECT_EQ(path(NSSharedPublicDirectory, NSUserDomainMask), "/h/Public/");
    fs::remove(folder / "settings/user-dirs.dirs");
    fs::create_directory(folder / "settings/user-dirs.dirs");
    EXPECT_EQ(path(NSDocumentDirectory, NSUserDomainMask), "/h/Documents/");
    for (const auto& [value, expected] : Rows<const char*, const char*>{
             {"relative", "/tmp"}, {"/\xFF", "/tmp"}, {"/elsewhere", "/elsewhere"}}) {
      set("TMPDIR", value);
      EXPECT_EQ(NSTemporaryDirectory()->utf8(), expected);
    }
    EXPECT_EQ(NSHomeDirectory()->utf8(), "/h");
    set("HOME", "relative");
    EXPECT_TRUE(NSHomeDirectory()->isAbsolutePath());
  });
  EXPECT_TRUE(isTested);
}

TEST(NSError, IsAValue) {
  const auto error = [](NSInteger code, const NSRef<NSDictionary>& info) {
    return NSError::errorWithDomain_code_userInfo(u"mine"_ns, code, info);
  };
  const auto info = NSMake<NSDictionary>({{NSLocalizedDescriptionKey(), u"broken"_ns}});
  EXPECT_TRUE(error(1, info)->isEqual(error(1, info)));
  EXPECT_EQ(error(1, info)->hash(), error(1, info)->hash());
  EXPECT_FALSE(error(1, info)->isEqual(error(2, info)));
  EXPECT_FALSE(error(1, info)->isEqual(error(1, nullptr)));
  EXPECT_EQ(error(1, info)->description()->utf8(), "mine 1: broken");
  EXPECT_EQ(error(1, info), NSError::errorWithDomain_code_description(u"mine"_ns, 1, u"broken"_ns));
  EXPECT_EQ(error(1, nullptr), NSError::errorWithDomain_code_description(u"mine"_ns, 1, nullptr));
  EXPECT_EQ(error(7, nullptr)->localizedDescription()->utf8(), "mine 7");
  EXPECT_EQ(NSMake<NSError>(NSPOSIXErrorDomain(), NSInteger{1} << 32U, nullptr)
                ->localizedDescription()
                ->utf8(),
            "NSPOSIXErrorDomain 4294967296");
  refusesNil("domain", "initWithDomain:code:userInfo:", [] { NSError(nullptr, 0, nullptr); });
}

}  // namespace
