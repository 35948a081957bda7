#include "tests/Files.h"

#include <map>

namespace {

// Collects the log of a test.
class Log {
 public:
  Log()
      : _former(
            NSSetLogSink([this](const NSRef<NSString>& line) { lines.push_back(line->utf8()); })) {}
  Log(const Log&) = delete;
  ~Log() { NSSetLogSink(_former); }
  std::vector<std::string> lines;

 private:
  NSLogSink _former;
};

using Entries = std::map<std::string, std::string>;

Entries entriesOf(std::u16string_view text) {
  Entries entries;
  for (const auto& [key, value] : NSMake<NSString>(text)->propertyListFromStringsFileFormat()) {
    entries[key->description()->utf8()] = value->description()->utf8();
  }
  return entries;
}

TEST(NSStringsFile, ReadsEntries) {
  const Log log;
  EXPECT_EQ(entriesOf(uR"(
    /* comment */ "a b" = "c // d"; // "x" = "y";
    key.1='it"s';"="="/* no comment */";
    word; "a b" /**/ = /* ; */ "last one counts" ;
    "" = "empty";
    "ü" = "ä😀";)"),
            (Entries{{"a b", "last one counts"},
                     {"key.1", "it\"s"},
                     {"=", "/* no comment */"},
                     {"word", "word"},
                     {"", "empty"},
                     {"ü", "ä😀"}}));
  EXPECT_EQ(entriesOf(uR"(a = "\n\t\"\\\'\U00e4\u263Ax\101\7\q\x41\
";)")["a"],
            "\n\t\"\\'ä☺xA\aqx41\n");
  EXPECT_TRUE(entriesOf(u"").empty());
  EXPECT_TRUE(log.lines.empty());
}

TEST(NSStringsFile, KeepsWhatCanBeReadOfABrokenTable) {
  for (const auto& [text, entries, fault] : Rows<const char16_t*, Entries, const char*>{
           {u"a = b;\nc = ;\nd = e;\n f g;\nh;",
            {{"a", "b"}, {"d", "e"}, {"h", "h"}},
            "line 2: text expected"},
           {u"a = b\nc = d;\ne = f;", {{"e", "f"}}, "line 2: \";\" expected"},
           {u"a = \"b;\nc = d;", {{"c", "d"}}, "line 1: the text has no end"},
           {u"a = b; /* c = d;\ne = f;", {{"a", "b"}}, "line 1: the comment has no end"},
           {u"a = b;\nc = /* d;\ne = f;", {{"a", "b"}}, "line 2: the comment has no end"},
           {u"a = b; c /* = d;\ne = f;", {{"a", "b"}}, "line 1: the comment has no end"},
           {u"a = \"b\\", {}, "line 1: the text has no end"},
           {u"a", {}, "line 1: \";\" expected"},
           {u"{ a = b; }\nc = d;", {{"c", "d"}}, "line 1: text expected"},
       }) {
    const Log log;
    EXPECT_EQ(entriesOf(text), entries);
    EXPECT_EQ(log.lines,
              std::vector{std::string("Localized strings cannot all be read: ").append(fault)});
  }
}

TEST(NSStringsFile, ComesBackHoweverItIsQuoted) {
  expectProperty("a quoted text", [](const std::u16string& text) {
    std::u16string table = u"key = \"";
    for (const char16_t unit : text) {
      if (unit == u'"' || unit == u'\\') table.push_back(u'\\');
      table.push_back(unit);
    }
    const auto entries =
        NSMake<NSString>(table.append(u"\";"))->propertyListFromStringsFileFormat();
    RC_ASSERT(entries->objectForKey(u"key"_ns).as<NSString>() == text);
  });
}

// A table of the test program that no other process uses.
class Tables : public testing::Test {
 protected:
  Tables() : _name("Test" + std::to_string(getpid())) {}
  ~Tables() override {
    for (const auto& file : _files) {
      fs::remove(file);
      // Another process's table may be in the folder.
      std::error_code error;
      fs::remove(file.parent_path(), error);
    }
    NSLocale::setPreferredLanguages(nullptr);
  }

  void write(const std::string& folder, std::string_view bytes) {
    const fs::path resources = NSBundle::mainBundle()->resourcePath()->utf8();
    _files.push_back(resources / folder / (_name + ".strings"));
    std::ofstream stream;
    // Another process may remove the folder before the file is in it.
    for (; !stream.is_open(); stream.open(_files.back(), std::ios::binary)) {
      fs::create_directories(resources / folder);
    }
    stream << bytes;
  }
  static void setLanguages(std::initializer_list<NSRef<NSObject>> languages) {
    NSLocale::setPreferredLanguages(NSMake<NSArray>(languages));
  }
  std::string find(const char* key, const NSRef<NSString>& value = nullptr) const {
    return NSBundle::mainBundle()
        ->localizedStringForKey_value_table(NSMake<NSString>(key), value, NSMake<NSString>(_name))
        ->utf8();
  }

 private:
  std::string _name;
  std::vector<fs::path> _files;
};

TEST_F(Tables, AreFoundInTheUsersLanguages) {
  write("de_CH.lproj", "a = schweizerisch;");
  write("de.lproj", "a = deutsch; b = \"nur deutsch\";");
  write("zh-Hant.lproj", "a = 中;\n\"a\" = \"漢\";");
  write("", "a = plain;");
  const Log log;
  setLanguages({u"de-CH"_ns, u"de"_ns});
  EXPECT_EQ(find("a"), "schweizerisch");
  EXPECT_EQ(find("b"), "b");
  setLanguages({u"gsw"_ns, u"de-AT"_ns, u"zh-Hant-TW"_ns});
  EXPECT_EQ(find("a"), "deutsch");
  EXPECT_EQ(find("b"), "nur deutsch");
  EXPECT_EQ(log.lines, std::vector<std::string>{});
  setLanguages({u"zh-Hant-TW"_ns});
  EXPECT_EQ(find("a"), "漢");
  EXPECT_EQ(log.lines.size(), 1);
  EXPECT_EQ(find("a"), "漢");
  EXPECT_EQ(log.lines.size(), 1);
  setLanguages({u"it"_ns});
  EXPECT_EQ(find("a"), "plain");
}

TEST_F(Tables, MayBeUTF16OrHaveAMark) {
  using namespace std::string_literals;
  const std::array<std::pair<const char*, std::string>, 5> spellings = {{
      {"aa", "\xEF\xBB\xBFk = \"\xC3\xA4\";"},
      {"bb", "\xFF\xFEk\0=\0\"\0\xE4\0\"\0;\0"s},
      {"cc", "\xFE\xFF\0k\0=\0\"\0\xE4\0\"\0;"s},
      {"dd", "k\0=\0\"\0\xE4\0\"\0;\0"s},
      {"ee", "\0k\0=\0\"\0\xE4\0\"\0;"s},
  }};
  for (const auto& [language, bytes] : spellings) {
    write(std::string(language).append(".lproj"), bytes);
    setLanguages({NSMake<NSString>(language)});
    EXPECT_EQ(find("k"), "ä") << language;
  }
  const Log log;
  write("ff.lproj", "k = \"\xE4\"; l = m;");
  setLanguages({u"ff"_ns});
  EXPECT_EQ(find("k"), "\uFFFD");
  EXPECT_EQ(find("l"), "m");
  EXPECT_EQ(log.lines.size(), 1);
}

TEST_F(Tables, FallBackToTheValueOrTheKey) {
  const auto bundle = NSBundle::mainBundle();
  EXPECT_EQ(find("missing"), "missing");
  EXPECT_EQ(find("missing", u""_ns), "missing");
  EXPECT_EQ(find("missing", u"value"_ns), "value");
  const auto find = [&](const NSRef<NSString>& key, const NSRef<NSString>& value) {
    return bundle->localizedStringForKey_value_table(key, value, nullptr);
  };
  EXPECT_TRUE(find(nullptr, u"value"_ns) == u"value");
  EXPECT_TRUE(find(nullptr, nullptr) == u"");
  EXPECT_TRUE(find(u"key"_ns, nullptr) == u"key");
}

TEST_F(Tables, MayBeReadByManyThreads) {
  write("de.lproj", "a = deutsch;");
  write("fr.lproj", "a = \"français\";");
  onThreads(4, [&] {
    for (int k = 0; k < 200; ++k) {
      setLanguages({k % 2 == 0 ? u"de"_ns : u"fr"_ns});
      const std::string text = find("a");
      EXPECT_TRUE(text == "deutsch" || text == "a" || text == "français") << text;
    }
  });
}

}  // namespace
