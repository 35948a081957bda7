#include "tests/Files.h"

#include <ZKFoundation/ZKFoundation.h>

namespace {

struct Local : NSObject {};

template <class... Classes>
void expectBundle(std::string_view library) {
  for (const NSClass aClass : {NSClass::of<Classes>()...}) {
    const fs::path file = NSBundle::bundleForClass(aClass)->executablePath()->utf8();
    EXPECT_TRUE(file.filename().native().starts_with(library)) << aClass.name() << " in " << file;
  }
}

TEST(NSBundle, IsThatOfTheProgramOrLibraryThatDefinesTheClass) {
  const auto program = fs::canonical("/proc/self/exe");
  EXPECT_EQ(NSBundle::mainBundle()->executablePath()->utf8(), program);
  EXPECT_EQ(NSBundle::mainBundle()->bundlePath()->utf8(), program.parent_path());
  EXPECT_EQ(NSBundle::bundleForClass(NSClass::of<Local>()), NSBundle::mainBundle());
  expectBundle<NSArray, NSMutableArray, NSBlock, NSBundle, NSCharacterSet, NSMutableCharacterSet,
               NSCoder, NSCoding, NSData, NSDate, NSDictionary, NSMutableDictionary, NSError,
               NSException, NSFileManager, NSFileWrapper, NSFormatter, NSIndexSet,
               NSMutableIndexSet, NSKeyedArchiver, NSKeyedUnarchiver, NSLocale, NSMapTable,
               NSNotification, NSNotificationCenter, NSNotificationQueue, NSNull, NSNumber,
               NSNumberFormatter, NSObject, NSOperationQueue, NSOrderedSet, NSMutableOrderedSet,
               NSPointerArray, NSPredicate, NSRunLoop, NSSet, NSMutableSet, NSString,
               NSMutableString, NSThread, NSTimer, NSURL, NSValue, dispatch_queue>(
      "libzkplatform.so");
  expectBundle<ZKFoundation, ZKDeepObjectCopyingProtocol, ZKGenericVisitor, ZKLocaleEntity,
               ZKObjectVisitor, ZKUnitOfInformationFormatter, ZKURLFormatter>("libZKFoundation.so");
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
