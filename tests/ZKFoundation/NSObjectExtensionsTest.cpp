#include "tests/Support.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

struct Page : NSObject {};
struct Stubborn : NSObject {
  NSRef<NSObject> valueForUndefinedKey(const NSRef<NSString>& key) const override { return key; }
};

TEST(NSObjectExtensions, EveryObjectAndItsClassHaveOneBundle) {
  EXPECT_EQ(bundle(NSMake<Page>()), bundle<Page>());
  EXPECT_EQ(bundle<Page>(), NSBundle::mainBundle());
  EXPECT_EQ(NSMake<Page>()->valueForKey(u"bundle"_ns), NSBundle::mainBundle());
  EXPECT_EQ(bundle(NSMake<ZKFoundation>()), NSBundle::bundleForClass(NSClass::of<ZKFoundation>()));
}

TEST(NSObjectExtensions, AnUndefinedKeyIsLoggedAndGivesNil) {
  std::vector<std::string> lines;
  const auto former =
      NSSetLogSink([&](const NSRef<NSString>& text) { lines.push_back(text->utf8()); });
  const auto page = NSMake<Page>();
  EXPECT_EQ(page->valueForKey(u"%@ %s %n"_ns), nullptr);
  EXPECT_EQ(valueForUndefinedKey(u"x"_ns, nullptr), nullptr);
  EXPECT_EQ(NSMake<NSDictionary>()->valueForKey(u"missing"_ns), nullptr);
  const auto key = u"own"_ns;
  EXPECT_EQ(NSMake<Stubborn>()->valueForKey(key), key);
  NSSetLogSink(former);
  const std::string className = NSClass::of<Page>().name()->utf8();
  EXPECT_EQ(lines, (std::vector<std::string>{"KVO/Undefined Key: %@ %s %n class:" + className,
                                             "KVO/Undefined Key: (null) class:NSString"}));
}

TEST(NSArrayExtensions, PerformsABlockWithEachElement) {
  std::string text;
  const auto append = [&](const NSRef<NSObject>& object) { text += shown(object); };
  auto array = NSMake<NSArray>({u"a"_ns, u"b"_ns, u"c"_ns});
  makeObjectsPerformBlock(array, append);
  makeObjectsPerformBlock(NSMake<NSSet>({u"d"_ns}), append);
  makeObjectsPerformBlock(NSMake<NSOrderedSet>({u"f"_ns, u"e"_ns, u"f"_ns}), append);
  // With the index, until it stops; the array may go meanwhile.
  makeObjectsPerformBlock(array, [&](const auto&, NSUInteger index, bool& stop) {
    text += std::to_string(index);
    array = nullptr;
    stop = index == 1;
  });
  const auto set = NSMake<NSSet>({u"a"_ns, u"b"_ns, u"c"_ns});
  makeObjectsPerformBlock(set, [&](const auto&, bool& stop) {
    text += '.';
    stop = text.ends_with("..");
  });
  EXPECT_EQ(text, "abcdfe01..");
}

void countCall(const NSRef<NSObject>& object) { object.as<NSMutableString>()->appendUnits(u"!"); }

TEST(NSArrayExtensions, TakesEveryCallableAndRaisesForNoBlock) {
  const auto string = NSMake<NSMutableString>();
  const auto array = NSMake<NSArray>({string});
  std::function<void(NSRef<NSObject>)> function = countCall;
  int calls = 0;
  makeObjectsPerformBlock(array, [&](const auto&) { return ++calls; });
  EXPECT_EQ(calls, 1);
  makeObjectsPerformBlock(array, countCall);
  makeObjectsPerformBlock(array, &countCall);
  makeObjectsPerformBlock(array, function);
  EXPECT_EQ(string->description(), u"!!!");

  void (*const noFunction)(const NSRef<NSObject>&) = nullptr;
  function = nullptr;
  const auto expectRefusal = [](const auto& objects, const auto& block) {
    refusesNil("aBlock",
               "makeObjectsPerformBlock:", [&] { makeObjectsPerformBlock(objects, block); });
  };
  expectRefusal(array, nullptr);
  expectRefusal(array, noFunction);
  expectRefusal(NSMake<NSSet>(), function);
  expectRefusal(NSMake<NSOrderedSet>(), noFunction);
}

}  // namespace
