#include "tests/Files.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

NSRef<NSArray> arrayOf(const std::vector<std::u16string>& texts) {
  auto array = NSMake<NSMutableArray>();
  for (const auto& text : texts) array->addObject(NSMake<NSString>(text));
  return array;
}

std::string uniqueName(const std::u16string& name, const std::vector<std::u16string>& taken) {
  return uniqueStringWithString_forStringArray(NSMake<NSString>(name), arrayOf(taken))->utf8();
}

// Tries one name after the other, as the rule tells it; or as that of the joined style does.
std::u16string uniqueByTrying(const std::u16string& name, const NSRef<NSArray>& taken,
                              bool isJoined = false) {
  if (!taken->containsObject(NSMake<NSString>(name))) return name;
  std::size_t start = name.size();
  const std::size_t first = isJoined ? 0 : 1;
  while (start > first && name[start - 1] >= u'0' && name[start - 1] <= u'9') --start;
  const std::string digits(name.begin() + static_cast<std::ptrdiff_t>(start), name.end());
  const std::size_t width = isJoined && digits.starts_with('0') ? digits.size() : 0;
  for (auto number = digits.empty() ? (isJoined ? 1 : 0) : std::stoll(digits);;) {
    std::string text = std::to_string(++number);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    auto candidate = name.substr(0, start).append(text.begin(), text.end());
    if (!taken->containsObject(NSMake<NSString>(candidate))) return candidate;
  }
}

TEST(UniqueNames, OfStrings) {
  // Names that are taken themselves.
  for (const auto& [name, result] : Rows<std::u16string, const char*>{
           {u"Untitled", "Untitled1"},
           {u"Copy 9", "Copy 10"},
           {u"7", "71"},
           {u"12", "13"},
           {u"", "1"},
           {u"a\u0661\u0669", "a20"},
           {u"a\u096F", "a10"},
           {u"\U0001D7D7", "𝟗1"},
           {u"a\U0001D7D7", "a𝟗1"},
           {u"a9223372036854775806", "a9223372036854775807"},
           {u"a9223372036854775807", "a92233720368547758071"},
           {u"a99999999999999999999999", "a999999999999999999999991"},
           {u"a000000000000000000000001", "a2"},
       }) {
    EXPECT_EQ(uniqueName(name, {name}), result);
  }
  EXPECT_EQ(uniqueName(u"x", {}), "x");
  EXPECT_EQ(uniqueName(u"Name", {u"name"}), "Name");
  EXPECT_EQ(uniqueName(u"x", {u"x1", u"x"}), "x2");
  EXPECT_EQ(uniqueName(u"r2", {u"r2", u"r3"}), "r4");
  EXPECT_EQ(uniqueName(u"a007", {u"a007", u"a8", u"a008", u"a09"}), "a9");
  EXPECT_EQ(uniqueName(u"a9223372036854775806", {u"a9223372036854775806", u"a9223372036854775807"}),
            "a9223372036854775808");
  const auto original = NSMake<NSMutableString>(u"a");
  const auto copy = uniqueStringWithString_forStringArray(original, nullptr);
  original->setString(u"b"_ns);
  EXPECT_EQ(copy, u"a");
  EXPECT_EQ(uniqueStringWithString_forStringArray(
                u"a"_ns, NSMake<NSArray>({NSMake<NSMutableString>(u"a"), number(1)})),
            u"a1");
  expectProperty("as trying does", [] {
    // Names over two letters and few digits, so that many are taken.
    const auto names =
        *rc::gen::container<std::vector<std::u16string>>(rc::gen::resize(4, textOver(u"a018")));
    const auto name = *rc::gen::resize(4, textOver(u"a018"));
    const auto array = arrayOf(names);
    RC_ASSERT(NSMake<NSString>(uniqueByTrying(name, array))
                  ->isEqual(uniqueStringWithString_forStringArray(NSMake<NSString>(name), array)));
  });
}

constexpr ZKNamingOptions spaced;
constexpr ZKNamingOptions parenthesized = {.style = ZKNamingParenthesized};
constexpr ZKNamingOptions joined = {.style = ZKNamingJoined};
constexpr ZKNamingOptions anyCase = {.ignoresCase = true};
constexpr ZKNamingOptions ofFile = {.isFileName = true};

std::string uniqueName(const std::u16string& name, const std::vector<std::u16string>& taken,
                       const ZKNamingOptions& options) {
  return uniqueStringWithString_forStringArray_options(NSMake<NSString>(name), arrayOf(taken),
                                                       options)
      ->utf8();
}

TEST(UniqueNames, OfStringsInAStyle) {
  // Names that are taken themselves, each with its result.
  using Names = std::vector<std::u16string>;
  for (const auto& [options, names] : Rows<ZKNamingOptions, Names>{
           {spaced, {u"name", u"name 2", u"name 2", u"name 3", u"name2", u"name2 2", u"2", u"2 2"}},
           {spaced, {u"shot 009", u"shot 010", u"shot 099", u"shot 100", u"shot 000", u"shot 001"}},
           {spaced, {u"9 99", u"9 100", u" 2", u" 2 2", u"a.txt", u"a.txt 2"}},
           {spaced, {u"a 999999999999999999", u"a 1000000000000000000"}},
           {spaced, {u"a 1000000000000000000", u"a 1000000000000000000 2"}},
           {parenthesized, {u"a", u"a (2)", u"a (9)", u"a (10)", u"a (09)", u"a (10)"}},
           {parenthesized, {u"a 2", u"a 2 (2)", u"a()", u"a() (2)", u" (2)", u" (2) (2)"}},
           {joined, {u"name", u"name2", u"IMG_0009", u"IMG_0010", u"5", u"6"}},
           {{.style = ZKNamingStyle(7)}, {u"a", u"a 2"}},
           {ofFile, {u"a.txt", u"a 2.txt", u"a 007.b", u"a 008.b", u"a.b.txt", u"a.b 2.txt"}},
           {ofFile, {u"a.tar.gz", u"a 2.tar.gz", u"a.v1.txt.xz", u"a.v1 2.txt.xz"}},
           {ofFile, {u"1.5.gz", u"1.5 2.gz", u"mr.secretary.gz", u"mr.secretary 2.gz"}},
           {ofFile, {u"v1.5", u"v1.5 2", u"Mr. X", u"Mr. X 2", u".a", u".a 2", u".gz", u".gz 2"}},
           {ofFile, {u"a.", u"a. 2", u"", u" 2"}},
           {{.style = ZKNamingParenthesized, .isFileName = true}, {u"a (2).7z", u"a (3).7z"}},
       }) {
    for (std::size_t k = 0; k < names.size(); k += 2) {
      EXPECT_EQ(uniqueName(names[k], {names[k]}, options), NSUTF8FromUnits(names[k + 1]));
    }
  }
  EXPECT_EQ(uniqueName(u"a 2", {u"z"}, spaced), "a 2");
  EXPECT_EQ(uniqueName(u"a", {u"a", u"a 3", u"a 2", u"a 04"}, spaced), "a 4");
  EXPECT_EQ(uniqueName(u"a 07", {u"a 07", u"a 8", u"a 09"}, spaced), "a 08");
  EXPECT_EQ(uniqueName(u"a 999999999999999999", {u"a 999999999999999999", u"a 1000000000000000000"},
                       spaced),
            "a 1000000000000000001");
  EXPECT_EQ(uniqueName(u"a.b", {u"a.b", u"a 2.c", u"a 3.b"}, ofFile), "a 2.b");
  EXPECT_EQ(uniqueName(u"Name", {u"nAME", u"name 2", u"NAME 3"}, anyCase), "Name 4");
  EXPECT_EQ(uniqueName(u"STRASSE", {u"stra\u00DFe"}, anyCase), "STRASSE 2");
  EXPECT_EQ(uniqueName(u"\u00C9", {u"e\u0301", u"E\u0301 2"}, anyCase), "\u00C9 3");
  expectProperty("as trying does", [] {
    const auto names =
        *rc::gen::container<std::vector<std::u16string>>(rc::gen::resize(4, textOver(u"aA 0128")));
    const auto name = *rc::gen::resize(4, textOver(u"aA 0128"));
    RC_ASSERT(uniqueName(name, names, joined) ==
              NSUTF8FromUnits(uniqueByTrying(name, arrayOf(names), /*isJoined=*/true)));
  });
}

TEST(UniqueNames, OfURLs) {
  for (const auto& [text, taken, result] : Rows<const char*, std::vector<const char*>, const char*>{
           {"file:///no/report.txt", {"file:///no/report.pdf"}, "file:///no/report1.txt"},
           {"file:///no/x", {"file:///no/x"}, "file:///no/x1"},
           {"file:///no/x", {"file:///no/y", "file:///n/x"}, "file:///no/x"},
           {"file:///no/x?q#f", {}, "file:///no/x"},
           {"file:///no/archive.tar.gz",
            {"file:///no/archive.tar.gz", "file:///no/archive.tar1.x"},
            "file:///no/archive.tar2.gz"},
           {"file:///no/a%20b.c", {"http://h/no/a%20b?q"}, "file:///no/a%20b1.c"},
           {"file:///no/a%20b.c", {"http://h/no/a b?q", "mailto:a"}, "file:///no/a%20b.c"},
           {"file:///no/.a", {"file:///no/.a"}, "file:///no/.a1"},
           {"file:///no/a.", {"file:///no/a.", "file:///no/a"}, "file:///no/a.1"},
           {"file:///no/d9.app/", {"file:///no/d9"}, "file:///no/d10.app"},
           {"http://h/a", {"http://h/a"}, "http://h/a"},
           {"file:///%00", {}, "nil"},
           {"file:///%FF.txt", {}, "nil"},
       }) {
    auto array = NSMake<NSMutableArray>();
    for (const char* const other : taken) {
      if (const auto url = NSURL::URLWithString(string(other))) array->addObject(url);
    }
    const auto url = NSURL::URLWithString(string(text));
    const auto found = uniqueURLWithURL_forURLArray(url, array);
    EXPECT_EQ(shown(found), result);
    EXPECT_EQ(found.is(url), !url->isFileURL());
  }
}

TEST(UniqueNames, OfFileWrappers) {
  const auto folder = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  const auto add = [&](const char* name) {
    const auto child = NSMake<NSFileWrapper>(NSMake<NSData>());
    if (name != nullptr) child->setPreferredFilename(string(name));
    const auto key = addFileWrapperWithUniqueFileName(folder, child);
    EXPECT_PRED2(areSame, folder->fileWrappers()->objectForKey(key), child);
    EXPECT_TRUE(child->preferredFilename()->isEqualToString(key));
    return key->utf8();
  };
  for (const auto& [name, results] : Rows<const char*, std::vector<const char*>>{
           {"a.txt", {"a.txt", "a 2.txt", "a 2 3.txt", "a 2 3 4.txt"}},
           {"a 2.txt", {"a 2 2.txt"}},
           {"A.txt", {"A.txt"}},
           {"a", {"a", "a 2", "a 2 3"}},
           {".a", {".a", ".a 2"}},
           {nullptr, {"Untitled"}},
           {"", {"Untitled 2"}},
           {nullptr, {"Untitled 2 3"}},
       }) {
    for (const char* const result : results) EXPECT_EQ(add(name), result);
  }
}

TEST(UniqueNames, OfNewFiles) {
  const TestFolder folder;
  const auto manager = NSFileManager::defaultManager();
  NSRef<NSError> error;
  const auto make = [&](const fs::path& path, const ZKNamingOptions& options) -> std::string {
    const auto url = createFileWithUniqueNameAtURL_contents_options_error(
        manager, fileURL(path), NSMake<NSData>("new"), options, &error);
    EXPECT_EQ(!url, static_cast<bool>(error));
    return url ? url->fileSystemPath().filename().native() : std::to_string(error->code());
  };
  writeFile(folder / "a.tar.gz", "old");
  fs::create_symlink("nowhere", folder / "link");
  EXPECT_EQ(make(folder / "b", spaced), "b");
  EXPECT_EQ(make(folder / "a.tar.gz", spaced), "a 2.tar.gz");
  EXPECT_EQ(make(folder / "a.tar.gz", parenthesized), "a (2).tar.gz");
  EXPECT_EQ(make(folder / "link", spaced), "link 2");
  EXPECT_EQ(make(folder / "B", anyCase), "B 2");
  EXPECT_EQ(make(folder / "B", spaced), "B");
  EXPECT_EQ(make(folder / "no/b", spaced), std::to_string(NSFileNoSuchFileError));
  EXPECT_EQ(make(folder / ".", spaced), std::to_string(NSFileWriteFileExistsError));
  // No file has such a path, but a directory does.
  for (const auto& options : {spaced, anyCase}) {
    EXPECT_EQ(make(folder / "c/", options), std::to_string(NSFileWriteUnknownError));
  }
  writeFile(folder / "\xFF", "");
  EXPECT_EQ(make(folder / "\xFF", spaced), std::to_string(NSFileWriteFileExistsError));
  EXPECT_EQ(contentsOf(folder / "a.tar.gz"), "old");
  EXPECT_EQ(contentsOf(folder / "a 2.tar.gz"), "new");
  const auto place = NSURL::fileURLWithPath_isDirectory(folder / "d.app", true);
  for (const char* const name : {"d.app/", "d 2.app/", "d 3.app/"}) {
    const auto url =
        createDirectoryWithUniqueNameAtURL_options_error(manager, place, spaced, nullptr);
    EXPECT_EQ(url->fileSystemPath(), folder / name);
    EXPECT_TRUE(fs::is_directory(url->fileSystemPath()));
  }
}

TEST(UniqueNames, OfNewFilesAreRefusedWhereAURLNamesNone) {
  for (const auto& [text, code] : Rows<NSRef<NSString>, NSInteger>{
           {u"file:///tmp/a%00b"_ns, NSFileWriteInvalidFileNameError},
           {u"file:relative"_ns, NSFileWriteInvalidFileNameError},
           {u"http://h/tmp/a"_ns, NSFileWriteUnsupportedSchemeError},
       }) {
    const auto url = NSURL::URLWithString(text);
    const auto manager = NSFileManager::defaultManager();
    for (const auto& options : {spaced, anyCase}) {
      NSRef<NSError> error;
      EXPECT_FALSE(createFileWithUniqueNameAtURL_contents_options_error(manager, url, nullptr,
                                                                        options, &error));
      EXPECT_EQ(error->code(), code) << text;
      EXPECT_FALSE(createDirectoryWithUniqueNameAtURL_options_error(manager, url, options, &error));
      EXPECT_EQ(error->code(), code) << text;
    }
  }
}

TEST(UniqueNames, OfNewFilesOnManyThreads) {
  const TestFolder folder;
  onThreads(4, [&] {
    for (int k = 0; k < 20; ++k) {
      createFileWithUniqueNameAtURL_contents_options_error(
          NSFileManager::defaultManager(), fileURL(folder / "a"), nullptr, spaced, nullptr);
    }
  });
  std::set<std::string> names = {"a"};
  for (int k = 2; k <= 80; ++k) names.insert("a " + std::to_string(k));
  EXPECT_EQ(namesIn(folder.path()), names);
}

TEST(UniqueNames, OfNewFilesInAFolderThatCannotBeRead) {
  const TestFolder folder;
  for (const char* const name : {"a", "a 2"}) writeFile(folder / name, "");
  fs::permissions(folder.path(), fs::perms(0333));
  if (!asNobody([&] {
        const auto url = createFileWithUniqueNameAtURL_contents_options_error(
            NSFileManager::defaultManager(), fileURL(folder / "a"), nullptr, spaced, nullptr);
        EXPECT_EQ(url->fileSystemPath(), folder / "a 3");
      })) {
    GTEST_SKIP() << "the system keeps its users";
  }
}

TEST(NSFileManager, LeavesNoHalfOfANewFile) {
  const TestFolder folder;
  if (!onDisk(folder.path(), "size=64k", [&] {
        NSRef<NSError> error;
        EXPECT_FALSE(NSFileManager::defaultManager()->createNewFileAtURL_contents_error(
            fileURL(folder / "a"), NSMake<NSData>(std::string(1 << 20, 'a')), &error));
        EXPECT_EQ(error->code(), NSFileWriteOutOfSpaceError);
        EXPECT_TRUE(namesIn(folder.path()).empty());
      })) {
    GTEST_SKIP() << "the system mounts no disks";
  }
}

}  // namespace
