#include "tests/Support.h"

namespace {

enum Style : std::uint8_t { plain, bold };

struct Section : NSObject {
  explicit Section(NSRef<NSString> aHeading = nullptr) : heading(std::move(aHeading)) {}

  NSRef<NSString> heading;
  int pages = 0;
  Style style = bold;

  NSRange range() const { return {2, 5}; }

  const NSPropertyTable& propertyTable() const override {
    static const NSPropertyTable table({{u"heading", &Section::heading},
                                        {u"pages", &Section::pages},
                                        {u"style", &Section::style},
                                        {u"range", &Section::range}},
                                       NSObject::propertyTable());
    return table;
  }
};

struct Chapter : Section {
  std::string author = "Ada";
  NSRef<NSArray> sections;

  const NSPropertyTable& propertyTable() const override {
    static const NSPropertyTable table(
        {{u"author", &Chapter::author}, {u"sections", &Chapter::sections}},
        Section::propertyTable());
    return table;
  }
};

TEST(NSKeyValueCoding, ReadsPublishedMembersAndBoxesThem) {
  auto chapter = NSMake<Chapter>();
  chapter->heading = u"One"_ns;
  chapter->pages = 12;
  const auto value = [&](const char* key) { return chapter->valueForKey(string(key)); };
  EXPECT_EQ(value("heading"), chapter->heading);
  EXPECT_EQ(value("pages"), number(12));
  EXPECT_EQ(value("style"), number(1));
  EXPECT_EQ(value("range"), NSMake<NSValue>(NSRange{2, 5}));
  EXPECT_EQ(value("author"), u"Ada"_ns);
  EXPECT_EQ(value("sections"), nullptr);
  EXPECT_EQ(value("self"), chapter);
  EXPECT_EQ(value("hash"), NSMake<NSNumber>(chapter->hash()));
  EXPECT_EQ(NSMake<NSData>("two")->valueForKey(u"length"_ns), number(3));
}

TEST(NSKeyValueCoding, FollowsPathsThroughCollections) {
  auto chapter = NSMake<Chapter>();
  EXPECT_EQ(chapter->valueForKeyPath(u"sections.heading"_ns), nullptr);
  chapter->sections = NSMake<NSArray>({NSMake<Section>(u"A"_ns), NSMake<Section>()});
  const auto book = NSMake<NSDictionary>({{u"first"_ns, chapter}});
  const auto path = [&](const char* keys) { return shown(book->valueForKeyPath(string(keys))); };
  EXPECT_EQ(path("first.sections.heading"), "(A, <null>)");
  EXPECT_EQ(path("first.sections.pages"), "(0, 0)");
  EXPECT_EQ(path("first.author.length"), "3");
  EXPECT_EQ(path("second.author"), "nil");
  const auto set = NSMake<NSSet>({NSMake<Section>(u"B"_ns), NSMake<Section>()});
  EXPECT_EQ(set->valueForKey(u"heading"_ns)->description(), u"{(B)}");
}

TEST(NSKeyValueCoding, RaisesForUndefinedKeysWithoutAHandler) {
  const auto former = NSSetUndefinedKeyHandler(nullptr);
  expectRaises(NSUndefinedKeyException, "NSString publishes no property 'colour'",
               [] { (void)u"x"_ns->valueForKey(u"colour"_ns); });
  NSSetUndefinedKeyHandler([](const NSObject& object, const NSRef<NSString>& key) {
    EXPECT_TRUE(object.isMemberOfClass(NSClass::of<NSString>()));
    return NSRef<NSObject>(key);
  });
  EXPECT_EQ(u"x"_ns->valueForKey(u"colour"_ns)->description(), u"colour");
  NSSetUndefinedKeyHandler(former);
  expectRaises(NSInvalidArgumentException, "NSString is nil where an object is needed",
               [] { (void)u"x"_ns->valueForKey(nullptr); });
}

}  // namespace
