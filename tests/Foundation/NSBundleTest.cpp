#include "tests/Support.h"

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

struct Local : NSObject {};

TEST(NSBundle, IsThatOfTheProgramOrLibraryThatDefinesTheClass) {
  const auto program = fs::canonical("/proc/self/exe");
  EXPECT_EQ(NSBundle::mainBundle()->executablePath()->utf8(), program);
  EXPECT_EQ(NSBundle::mainBundle()->bundlePath()->utf8(), program.parent_path());
  EXPECT_EQ(NSBundle::bundleForClass(NSClass::of<Local>()), NSBundle::mainBundle());

  const auto platform = NSBundle::bundleForClass(NSClass::of<NSString>());
  EXPECT_TRUE(fs::path(platform->executablePath()->utf8())
                  .filename()
                  .native()
                  .starts_with("libzkplatform.so"));
  EXPECT_EQ(NSBundle::bundleForClass(NSClass::of<NSObject>()), platform);
}

TEST(NSBundle, HasAFolderOfResources) {
  const auto bundle = NSBundle::mainBundle();
  const fs::path folder = fs::path(bundle->bundlePath()->utf8()) / "zk_tests.resources";
  EXPECT_EQ(bundle->resourcePath()->utf8(), folder);
  EXPECT_EQ(bundle->valueForKey(u"resourcePath"_ns).as<NSString>()->utf8(), folder);
  const auto platform = NSBundle::bundleForClass(NSClass::of<NSString>());
  EXPECT_TRUE(platform->resourcePath()->isEqualToString(platform->bundlePath()));
}

}  // namespace
