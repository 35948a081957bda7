#include "tests/Support.h"

namespace {

enum Style : std::uint8_t { plain, bold };

struct Section : NSObject {
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

NSRef<Section> makeSection(const NSRef<NSString>& heading) {
  auto section = NSMake<Section>();
  section->heading = heading;
  return section;
}

TEST(NSKeyValueCoding, ReadsPublishedMembersAndBoxesThem) {
  auto chapter = NSMake<Chapter>();
  chapter->heading = u"One"_ns;
  chapter->pages = 12;
  const auto value = [&](const char16_t* key) {
    return chapter->valueForKey(NSMake<NSString>(key));
  };
  EXPECT_EQ(value(u"heading"), chapter->heading);
  EXPECT_PRED2(NSEqualObjects{}, value(u"pages"), NSMake<NSNumber>(12));
  EXPECT_PRED2(NSEqualObjects{}, value(u"style"), NSMake<NSNumber>(1));
  EXPECT_PRED2(NSEqualObjects{}, value(u"range"), NSMake<NSValue>(NSRange{2, 5}));
  EXPECT_PRED2(NSEqualObjects{}, value(u"author"), u"Ada"_ns);
  EXPECT_EQ(value(u"sections"), nullptr);
  EXPECT_EQ(value(u"self"), chapter);
  EXPECT_PRED2(NSEqualObjects{}, value(u"hash"), NSMake<NSNumber>(chapter->hash()));
}

TEST(NSKeyValueCoding, FollowsPathsThroughCollections) {
  auto chapter = NSMake<Chapter>();
  EXPECT_EQ(chapter->valueForKeyPath(u"sections.heading"_ns), nullptr);
  chapter->sections = NSMake<NSArray>({makeSection(u"A"_ns), makeSection(nullptr)});
  const auto book = NSMake<NSDictionary>({{u"first"_ns, chapter}});
  const auto path = [&](const char16_t* keys) {
    return testing::PrintToString(book->valueForKeyPath(NSMake<NSString>(keys)));
  };
  EXPECT_EQ(path(u"first.sections.heading"), "(A, <null>)");
  EXPECT_EQ(path(u"first.sections.pages"), "(0, 0)");
  EXPECT_EQ(path(u"first.author.length"), "3");
  EXPECT_EQ(path(u"second.author"), "(null)");
  const auto set = NSMake<NSSet>({makeSection(u"B"_ns), makeSection(nullptr)});
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
