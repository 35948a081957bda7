#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

namespace {

constexpr const char* wrongScheme = "URL protocol must be %@http, https, file, ssh";

// "URL …", "text …" or "nil", and the error, empty for none.
using Outcome = std::pair<std::string, std::string>;

Outcome parse(const NSRef<ZKURLFormatter>& formatter, const NSRef<NSString>& text) {
  NSRef<NSObject> object = u"former"_ns, again;
  NSRef<NSString> error = u"former"_ns;
  const bool isAccepted =
      formatter->getObjectValue_forString_errorDescription(object, text, &error);
  EXPECT_EQ(isAccepted, !error) << text;
  EXPECT_EQ(isAccepted, formatter->getObjectValue_forString_errorDescription(again, text, nullptr));
  const std::string kind = object.as<NSURL>() ? "URL " : object ? "text " : "";
  return {kind + shown(object), error ? error->utf8() : ""};
}

TEST(ZKURLFormatter, ReadsWhatIsTyped) {
  const auto formatter = NSMake<ZKURLFormatter>();
  for (const auto& [text, object, error] : Rows<const char*, const char*, const char*>{
           {"", "nil", ""},
           {"/Users/a b", "URL file:///Users/a%20b", ""},
           {"/", "URL file:///", ""},
           {"../x/./y", "text ../x/y", ""},
           {"..", "text ..", ""},
           {"...x//", "text ...x", ""},
           {"a.b", "URL http://a.b", ""},
           {"a.b/page?q=1#top", "URL http://a.b/page?q=1#top", ""},
           {"localhost", "nil", "Invalid URL"},
           {"//a.b/c", "URL file:////a.b/c", ""},
           {"./a", "URL http://./a", ""},
           {"?a.b", "URL http://?a.b", "Invalid URL"},
           {"https://a.b/c", "URL https://a.b/c", ""},
           {"ssh://me@a.b:22", "URL ssh://me@a.b:22", ""},
           {"http://[::1]", "URL http://[::1]", ""},
           {"http://localhost", "URL http://localhost", ""},
           {"ftp://a.b", "URL ftp://a.b", wrongScheme},
           {"HTTP://a.b", "URL HTTP://a.b", wrongScheme},
           {"file:///tmp", "URL file:///tmp", "Invalid URL"},
           {"file://localhost/tmp", "URL file://localhost/tmp", ""},
           {"mailto:someone", "URL mailto:someone", "Invalid URL"},
           {"a.b:8080", "URL a.b:8080", "Invalid URL"},
           {"http:", "URL http:", "Invalid URL"},
           {"http://", "URL http://", "Invalid URL"},
           {"http://:80/", "URL http://:80/", "Invalid URL"},
           {"a.b/c d", "nil", "Invalid URL"},
       }) {
    EXPECT_EQ(parse(formatter, string(text)), Outcome(object, error)) << text;
  }
  EXPECT_EQ(parse(formatter, nullptr), Outcome("nil", ""));
  EXPECT_EQ(parse(formatter, NSMake<NSString>(std::u16string_view(u"/a\0b", 4))),
            Outcome("nil", "Invalid filesystem path"));
}

TEST(ZKURLFormatter, RefusesSchemesThatAreNotAllowed) {
  const auto formatter = NSMake<ZKURLFormatter>();
  const auto schemes = NSMake<NSMutableArray>({u"ftp"_ns});
  formatter->setAllowedSchemes(schemes);
  schemes->addObject(u"http"_ns);
  EXPECT_EQ(parse(formatter, string("ftp://a.b")).second, "");
  EXPECT_EQ(parse(formatter, string("a.b")).second, "URL protocol must be %@ftp");
  formatter->setAllowedSchemes(NSMake<NSArray>());
  EXPECT_EQ(parse(formatter, string("ftp://a.b")).second, "URL protocol must be %@");
  formatter->setAllowedSchemes(nullptr);
  EXPECT_EQ(parse(formatter, string("ftp://a.b")).second, "");
  EXPECT_EQ(parse(formatter, string("mailto:someone")).second, "Invalid URL");
}

TEST(ZKURLFormatter, TellsWhyItRefuses) {
  const auto formatter = NSMake<ZKURLFormatter>();
  for (const auto& [text, refusal] : Rows<NSRef<NSString>, ZKURLRefusal>{
           {nullptr, ZKURLAccepted},
           {u"a.b"_ns, ZKURLAccepted},
           {NSMake<NSString>(std::u16string_view(u"/a\0b", 4)), ZKURLInvalidPath},
           {u"a.b/c d"_ns, ZKURLInvalidSyntax},
           {u"localhost"_ns, ZKURLWithoutScheme},
           {u"mailto:someone"_ns, ZKURLWithoutHost},
           {u"file:///tmp"_ns, ZKURLWithoutHost},
           {u"ftp://a.b"_ns, ZKURLSchemeNotAllowed},
       }) {
    EXPECT_EQ(formatter->refusalOfString(text), refusal) << text;
  }
  NSRef<NSObject> object = u"ftp://a.b"_ns;
  EXPECT_EQ(formatter->refusalOfString_objectValue(object.as<NSString>(), object),
            ZKURLSchemeNotAllowed);
  EXPECT_EQ(shown(object), "ftp://a.b");
}

TEST(ZKURLFormatter, MayGetItsTextFromWhereItsAnswersGo) {
  const auto formatter = NSMake<ZKURLFormatter>();
  NSRef<NSString> text = u"ftp://a.b"_ns;
  NSRef<NSObject> object = text;
  EXPECT_FALSE(formatter->getObjectValue_forString_errorDescription(object, text, &text));
  EXPECT_EQ(text, u"URL protocol must be %@http, https, file, ssh");
  EXPECT_EQ(object->description(), u"ftp://a.b");
}

TEST(ZKURLFormatter, WritesURLs) {
  const auto written = [](const NSRef<NSObject>& object) {
    return NSMake<ZKURLFormatter>()->stringForObjectValue(object);
  };
  const auto url = [](const char* text) { return NSURL::URLWithString(string(text)); };
  EXPECT_EQ(written(u"a b"_ns), u"a b");
  EXPECT_EQ(written(url("http://a.b/c%20d")), u"http://a.b/c%20d");
  EXPECT_EQ(written(url("file:///c%20d/")), u"/c d");
  EXPECT_EQ(written(number(1)), u"");
  EXPECT_EQ(written(nullptr), u"");
  // A file URL without hierarchy has no path.
  EXPECT_EQ(written(url("file:c")), u"");
}

TEST(ZKURLFormatter, ReadsBackThePathsThatItWrites) {
  const auto formatter = NSMake<ZKURLFormatter>();
  expectProperty("a path comes back", [&](const std::string& name) {
    const auto path = NSMake<NSString>("/no such folder/x" + name)->stringByStandardizingPath();
    RC_PRE(path->view().find(u'\0') == std::u16string_view::npos);
    NSRef<NSObject> object;
    RC_ASSERT(formatter->getObjectValue_forString_errorDescription(object, path, nullptr));
    RC_ASSERT(formatter->stringForObjectValue(object)->isEqualToString(path));
    RC_ASSERT(object.as<NSURL>()->fileSystemPath() == path->utf8());
  });
}

TEST(ZKURLFormatter, IsArchivedWithItsSchemes) {
  const auto formatter = NSMake<ZKURLFormatter>();
  // What a getter gives outlives its object.
  std::string schemes;
  for (const auto& scheme : NSMake<ZKURLFormatter>()->allowedSchemes()) {
    schemes += scheme->description()->utf8() + ' ';
  }
  EXPECT_EQ(schemes, "http https file ssh ");
  formatter->setAllowedSchemes(NSMake<NSArray>({u"ftp"_ns}));
  const auto copy = unarchived<ZKURLFormatter>(formatter);
  EXPECT_TRUE(copy->allowedSchemes()->isEqual(formatter->allowedSchemes()));
}

}  // namespace
