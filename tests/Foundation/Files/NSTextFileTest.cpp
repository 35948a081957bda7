#include "tests/Files.h"

#include <sys/stat.h>

namespace {

using namespace std::string_literals;

constexpr std::array encodings = {NSUTF8StringEncoding, NSUTF16BigEndianStringEncoding,
                                  NSUTF16LittleEndianStringEncoding, NSUTF32BigEndianStringEncoding,
                                  NSUTF32LittleEndianStringEncoding};

std::string codeAndReason(const NSRef<NSError>& error) {
  return error ? std::to_string(error->code()) + ' ' + error->localizedDescription()->utf8() : "";
}

// The encoding and the text, or the error.
std::string read(const fs::path& path) {
  NSRef<NSError> error;
  NSStringEncoding used{};
  const auto text =
      NSString::stringWithContentsOfURL_usedEncoding_error(fileURL(path), &used, &error);
  EXPECT_EQ(!text, error != nullptr);
  return text ? std::string(NSNameOfEncoding(used)) + ' ' + text->utf8() : codeAndReason(error);
}

NSRef<NSString> path(const fs::path& path) { return NSMake<NSString>(path.native()); }

std::string write(const NSRef<NSString>& text, const fs::path& place,
                  NSStringEncoding encoding = NSUTF8StringEncoding) {
  NSRef<NSError> error;
  const bool isWritten =
      text->writeToFile_atomically_encoding_error(path(place), true, encoding, &error);
  EXPECT_EQ(isWritten, !error);
  return codeAndReason(error);
}

TEST(NSTextFile, DetectsEncodingsAndNamesTheFirstBadByte) {
  const TestFolder folder;
  const std::string block(1000, 'x');
  for (const auto& [bytes, expected] : Rows<std::string, std::string>{
           {"", "UTF-8 "},
           {"a\u00E4\U0001F600", "UTF-8 a\u00E4\U0001F600"},
           {"\xEF\xBB\xBF\xEF\xBB\xBFz", "UTF-8 \uFEFFz"},
           {"\xFF\xFE"s + "a\0\x3D\xD8\0\xDE"s, "UTF-16LE a\U0001F600"},
           {"\xFE\xFF"s + "\0a\xD8\x3D\xDE\0"s, "UTF-16BE a\U0001F600"},
           {"\xFF\xFE\0\0a\0\0\0\0\xF6\1\0"s, "UTF-32LE a\U0001F600"},
           {"\0\0\xFE\xFF\0\0\0a\0\1\xF6\0"s, "UTF-32BE a\U0001F600"},
           // Damaged: each kind at its start, in the middle and at the end.
           {"\x80", "261 Not UTF-8 at byte 0"},
           {"\xEF\xBB\xBF"
            "ab\xC3(",
            "261 Not UTF-8 at byte 5"},
           {block + "\xED\xA0\x80z\xFF", "261 Not UTF-8 at byte 1000"},
           {block + "\xE2\x82", "261 Not UTF-8 at byte 1000"},
           {"\xFF\xFE"s + "a\0\x3D\xD8z\0"s, "261 Not UTF-16LE at byte 4"},
           {"\xFF\xFE"s + "\0\xDE"s, "261 Not UTF-16LE at byte 2"},
           {"\xFF\xFE"s + "a\0b"s, "261 Not UTF-16LE at byte 4"},
           {"\xFE\xFF"s + "\0a\xD8\x3D"s, "261 Not UTF-16BE at byte 4"},
           {"\xFF\xFE\0\0a\0\0\0\0\0\x11\0"s, "261 Not UTF-32LE at byte 8"},
           {"\xFF\xFE\0\0\0\xD8\0\0a\0\0\0"s, "261 Not UTF-32LE at byte 4"},
           {"\0\0\xFE\xFF\0\0\0a\0\0\0"s, "261 Not UTF-32BE at byte 8"},
       }) {
    writeFile(folder / "text", bytes);
    EXPECT_EQ(read(folder / "text"), expected);
    NSRef<NSError> error;
    const auto text =
        NSString::stringWithData_usedEncoding_error(NSMake<NSData>(bytes), nullptr, &error);
    EXPECT_TRUE(text ? expected.ends_with(' ' + text->utf8()) : codeAndReason(error) == expected);
  }
}

TEST(NSTextFile, ReadsInAGivenEncoding) {
  const TestFolder folder;
  NSRef<NSError> error;
  const auto readAs = [&](NSStringEncoding encoding) {
    return NSString::stringWithContentsOfFile_encoding_error(path(folder / "text"), encoding,
                                                             &error);
  };
  writeFile(folder / "text", "\0a"s);
  EXPECT_EQ(readAs(NSUTF16BigEndianStringEncoding), u"a");
  EXPECT_EQ(readAs(NSUTF16LittleEndianStringEncoding), u"\u6100");
  writeFile(folder / "text", "\xFE\xFF\0a"s);
  EXPECT_EQ(readAs(NSUTF16BigEndianStringEncoding), u"a");
  EXPECT_EQ(readAs(NSUTF8StringEncoding), nullptr);
  EXPECT_EQ(error->description()->utf8(),
            "NSCocoaErrorDomain 261: Not UTF-8 at byte 0 (" + (folder / "text").native() + ")");
  fs::remove(folder / "text");
  expectRaises(NSInvalidArgumentException, "7 is no known encoding",
               [&] { (void)readAs(static_cast<NSStringEncoding>(7)); });
}

TEST(NSTextFile, KeepsTextAndEncoding) {
  const TestFolder folder;
  expectProperty("reading gives what was written", [] {
    auto units = *rc::gen::oneOf(textOver(u"ab\uFEFF\uFFFE\uD7FF\uE000"),
                                 rc::gen::arbitrary<std::u16string>());
    // A text that begins with U+0000 looks like UTF-32.
    if (units.starts_with(u'\0')) units[0] = u'0';
    const auto encoding = *rc::gen::elementOf(encodings);
    const auto bytes = NSEncodedText(units, encoding);
    NSStringEncoding used{};
    const auto text =
        NSString::stringWithData_usedEncoding_error(NSMake<NSData>(bytes), &used, nullptr);
    RC_ASSERT(!NSIsWellFormed(units) || text == units);
    RC_ASSERT(text && used == encoding);
  });
  for (const auto encoding : encodings) {
    const auto written = u"\uFEFFa\u00E9\u65E5\U0001F600\n"_ns;
    EXPECT_TRUE(written->writeToURL_atomically_encoding_error(fileURL(folder / "text"), true,
                                                              encoding, nullptr));
    NSStringEncoding used{};
    EXPECT_EQ(NSString::stringWithContentsOfFile_usedEncoding_error(path(folder / "text"), &used,
                                                                    nullptr),
              written);
    EXPECT_EQ(used, encoding);
    const auto data =
        NSData::dataWithContentsOfFile_options_error(path(folder / "text"), 0, nullptr);
    EXPECT_EQ(data->view(), NSEncodedText(written->view(), encoding));
  }
  std::u16string half(704, u'x');
  half[700] = half[702] = u'\xD83D';
  half[701] = u'\xDE00';
  EXPECT_EQ(write(NSMake<NSString>(half), folder / "text"),
            "517 Half of a surrogate pair at unit 702");
}

TEST(NSTextFile, TellsWhatCannotBeRead) {
  const TestFolder folder;
  fs::create_directory(folder / "directory");
  mkfifo((folder / "pipe").c_str(), 0600);
  writeFile(folder / "closed", "x");
  fs::permissions(folder / "closed", fs::perms::none);
  fs::create_symlink("nowhere", folder / "lost");
  writeFile(folder / "text", "text");
  fs::create_symlink("text", folder / "link");
  for (const auto& [name, expected] : Rows<const char*, std::string>{
           {"none", "260 No such file or directory"},
           {"lost", "260 No such file or directory"},
           {"directory", "256 Is a directory"},
           {"pipe", "256 Operation not supported"},
           {"text/in", "256 Not a directory"},
           {"link", "UTF-8 text"},
       }) {
    EXPECT_EQ(read(folder / name), expected);
  }
  EXPECT_TRUE(asNobody([&] { EXPECT_EQ(read(folder / "closed"), "257 Permission denied"); }));
  EXPECT_EQ(read("/proc/version"), "UTF-8 " + contentsOf("/proc/version"));
  NSRef<NSError> error;
  EXPECT_FALSE(NSData::dataWithContentsOfURL_options_error(NSURL::URLWithString(u"http://a/b"_ns),
                                                           0, &error));
  EXPECT_EQ(error->code(), NSFileReadUnsupportedSchemeError);
  EXPECT_FALSE(NSData::dataWithContentsOfFile_options_error(u""_ns, 0, &error));
  EXPECT_EQ(error->code(), NSFileReadInvalidFileNameError);
  refusesNil("path", "writeToFile:options:error:", [&] {
    NSMake<NSData>()->writeToFile_options_error(nullptr, 0, &error);
  });
}

TEST(NSTextFile, ReplacesFilesAsAWhole) {
  const TestFolder folder;
  fs::create_directory(folder / "in");
  writeFile(folder / "in/text", "a longer text");
  fs::permissions(folder / "in/text", fs::perms{0640});
  fs::create_symlink("in/text", folder / "link");
  fs::create_hard_link(folder / "in/text", folder / "old");
  EXPECT_EQ(write(u"new"_ns, folder / "link"), "");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(contentsOf(folder / "in/text"), "new");
  EXPECT_EQ(contentsOf(folder / "old"), "a longer text");  // It was not written to.
  EXPECT_EQ(fs::status(folder / "in/text").permissions(), fs::perms{0640});
  const mode_t former = umask(027);
  EXPECT_TRUE(
      NSMake<NSData>("\xFF")->writeToURL_options_error(fileURL(folder / "made"), 0, nullptr));
  umask(former);
  EXPECT_EQ(contentsOf(folder / "made"), "\xFF");
  EXPECT_EQ(fs::status(folder / "made").permissions(), fs::perms{0640});

  mkfifo((folder / "pipe").c_str(), 0600);
  const auto before = namesIn(folder.path());
  for (const auto& [name, expected] : Rows<const char*, std::string>{
           {"in", "512 Is a directory"},
           {"pipe", "512 Operation not supported"},
           {"none/text", "4 No such file or directory"},
       }) {
    EXPECT_EQ(write(u"x"_ns, folder / name), expected);
  }
  fs::permissions(folder / "in/text", fs::perms::all);
  fs::permissions(folder / "in", fs::perms{0555});
  EXPECT_TRUE(
      asNobody([&] { EXPECT_EQ(write(u"x"_ns, folder / "in/text"), "513 Permission denied"); }));
  EXPECT_EQ(contentsOf(folder / "in/text"), "new");
  EXPECT_EQ(namesIn(folder.path()), before);
}

TEST(NSTextFile, KeepsTheOldTextOnAFullDisk) {
  const TestFolder folder;
  const bool isMounted = onDisk(folder.path(), "size=64k", [&] {
    EXPECT_EQ(write(u"old"_ns, folder / "text"), "");
    EXPECT_EQ(write(NSMake<NSString>(std::u16string(100'000, u'x')), folder / "text"),
              "640 No space left on device");
    EXPECT_EQ(read(folder / "text"), "UTF-8 old");
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"text"});
  });
  if (!isMounted) GTEST_SKIP() << "may not mount file systems";
}

}  // namespace
