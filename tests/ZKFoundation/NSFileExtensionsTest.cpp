#include "tests/Files.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

TEST(NSFileManagerExtensions, KnowTheDirectories) {
  const TestFolder folder;
  const bool isTested = inChild([&] {
    setenv("HOME", folder.path().c_str(), 1);
    for (const char* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) unsetenv(name);
    EXPECT_EQ(documentsDirectory()->fileSystemPath(), folder / "Documents/");
    EXPECT_EQ(usersDirectory()->fileSystemPath(), "/home/");
    EXPECT_EQ(applicationSupportDirectory()->fileSystemPath(), "/usr/local/share/");
    EXPECT_EQ(userApplicationSupportDirectory()->fileSystemPath(), folder / ".local/share/");
    setenv("TMPDIR", "/no such", 1);
    EXPECT_EQ(shown(temporaryFolder()), "file:///no%20such/");
    EXPECT_TRUE(namesIn(folder.path()).empty());  // Naming makes nothing.

    const auto find = [](NSUInteger directory, const NSRef<NSString>& component,
                         NSRef<NSError>* error) {
      const auto url = findOrCreateDirectory_inDomain_appendPathComponent_error(
          NSFileManager::defaultManager(), directory, NSUserDomainMask, component, error);
      return url ? url->fileSystemPath() : fs::path();
    };
    auto error = NSMake<NSError>(NSPOSIXErrorDomain(), 1, nullptr);
    EXPECT_EQ(find(NSDocumentDirectory, nullptr, &error), folder / "Documents/");
    EXPECT_FALSE(error);
    for (int k = 0; k < 2; ++k) {
      EXPECT_EQ(find(NSApplicationSupportDirectory, u"ü b"_ns, &error),
                folder / ".local/share/ü b/");
    }
    EXPECT_EQ(namesIn(folder.path()),
              (std::set<std::string>{"Documents", ".local", ".local/share", ".local/share/ü b"}));
    EXPECT_EQ(find(4711, nullptr, &error), "");
    EXPECT_EQ(error->code(), NSFileReadUnknownError);
    EXPECT_EQ(find(4711, nullptr, nullptr), "");
    writeFile(folder / "Documents/file", "");
    EXPECT_EQ(find(NSDocumentDirectory, u"file"_ns, &error), "");
    EXPECT_EQ(error->code(), NSFileWriteFileExistsError);
    EXPECT_EQ(find(NSDocumentDirectory, NSMake<NSString>(std::u16string_view(u"\xD800")), &error),
              "");
    EXPECT_EQ(error->code(), NSFileWriteInvalidFileNameError);
  });
  EXPECT_TRUE(isTested);
}

TEST(NSErrorExtensions, RecogniseFilesThatAreNotThere) {
  const auto lookAlike = NSMake<NSString>(NSPOSIXErrorDomain()->view());
  for (const NSInteger code : {0, 2, 4, 260, 258}) {
    const auto isNotFound = [&](const NSRef<NSString>& domain) {
      return isFileNotFoundError(NSMake<NSError>(domain, code, nullptr));
    };
    EXPECT_EQ(isNotFound(NSPOSIXErrorDomain()), code == ENOENT);
    EXPECT_EQ(isNotFound(NSCocoaErrorDomain()), code == 4 || code == 260);
    EXPECT_FALSE(isNotFound(lookAlike));
  }
}

TEST(NSURLExtensions, StripTheSecurityScope) {
  for (const auto& [text, isScoped, stripped] : Rows<NSRef<NSString>, bool, const char*>{
           {u"file:///no/b?applesecurityscope=abc#f"_ns, true, "file:///no/b"},
           {u"file:///no/b?x=1&applesecurityscope="_ns, true, "file:///no/b"},
           {u"file:///no/b?x=1"_ns, false, "file:///no/b?x=1"},
           {u"file:///no/b?applesecurityscope"_ns, false, "file:///no/b?applesecurityscope"},
           {u"file:///no/b?APPLESECURITYSCOPE=1"_ns, false, "file:///no/b?APPLESECURITYSCOPE=1"},
           {u"http://h/no/b%20c"_ns, true, "file:///no/b%20c"},
           {u"file:///no/%FF"_ns, true, "nil"},
           {u"file:///no/%00"_ns, true, "nil"},
           {u"http://h"_ns, true, "nil"},
           {u"mailto:a"_ns, true, "nil"},
           {u"http://h?"_ns, false, "http://h?"},
       }) {
    const auto url = NSURL::URLWithString(text);
    EXPECT_EQ(isSecurityScoped(url), isScoped) << text;
    EXPECT_EQ(shown(strippedSecurityScopedURL(url)), stripped) << text;
    EXPECT_EQ(strippedSecurityScopedURL(url).is(url), !isScoped) << text;
  }
}

TEST(NSURLExtensions, KnowWhatMayBeOpened) {
  for (const char* const text :
       {"http://a.b", "HTTPS://a.b/c?d", "mailto:someone@a.b", "MailTo:a?subject=b", "file:///tmp",
        "file:/tmp", "FILE://LocalHost/tmp"}) {
    EXPECT_TRUE(isSafeToOpen(NSURL::URLWithString(string(text)))) << text;
  }
  for (const char* const text : {"a.b", "//a.b/c", "http:", "http:///a", "mailto:", "mailto:?cc=a",
                                 "mailto://a", "file:tmp", "file://server/tmp", "javascript:a",
                                 "ssh://-oProxyCommand=a/b", "ftp://a.b", "httpx://a"}) {
    EXPECT_FALSE(isSafeToOpen(NSURL::URLWithString(string(text)))) << text;
  }
  EXPECT_FALSE(isSafeToOpen(nullptr));
}

}  // namespace
