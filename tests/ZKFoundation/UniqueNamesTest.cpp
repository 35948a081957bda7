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

// Tries one name after the other, as the rule tells it.
std::u16string uniqueByTrying(const std::u16string& name, const NSRef<NSArray>& taken) {
  if (!taken->containsObject(NSMake<NSString>(name))) return name;
  std::size_t start = name.size();
  while (start > 1 && name[start - 1] >= u'0' && name[start - 1] <= u'9') --start;
  const std::string digits(name.begin() + static_cast<std::ptrdiff_t>(start), name.end());
  for (auto number = digits.empty() ? 0 : std::stoll(digits);;) {
    const std::string text = std::to_string(++number);
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

}  // namespace
