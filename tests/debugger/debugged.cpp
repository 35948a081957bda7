// What a debugger is asked about, where it stops in `look`.
#include <Foundation/Foundation.h>

struct Chapter : NSObject {
  explicit Chapter(NSRef<NSString> aHeading) : heading(std::move(aHeading)) {}
  NSRef<NSString> heading;
  int pages = 12;
};

namespace {

[[gnu::noinline]] void look(const NSRef<NSArray>& array) { (void)array->count(); }

}  // namespace

int main() {
  const NSRef<NSString> heading = NSMake<NSString>("Größe \"M\"\n\U0001F5A8");
  const NSRef<NSNumber> number = NSMake<NSNumber>(2.5);
  const NSRef<NSURL> url = NSURL::URLWithString(NSMake<NSString>("https://example.org/a%20b"));
  const NSRef<NSDate> date = NSMake<NSDate>(0.0);
  const NSPoint point{1.5, -2};
  const NSRect rect{{200.125, 1000000.5}, {100, 50}};
  const NSRef<NSValue> value = NSMake<NSValue>(rect);
  const NSRef<NSArray> array = NSMake<NSArray>({heading, number});
  const NSRef<NSObject> dictionary = NSMake<NSDictionary>({{heading, array}});
  const NSRef<NSSet> set = NSMake<NSSet>({number});
  NSRef<Chapter> chapter = NSMake<Chapter>(heading);
  const NSWeakRef<Chapter> weak = chapter;
  const NSRef<NSObject> nil;
  const NSSelector selector = NSMakeSelector<"addObject:", &NSMutableArray::addObject>();
  const NSException exception(NSMake<NSString>(NSRangeException), heading);
  const NSRef<NSBlock> block = NSMakeBlock<Chapter>([](Chapter& c) { c.pages += 1; });
  block->perform(chapter);
  look(array);
  chapter = nullptr;
  look(array);
  return weak.isNil() && nil == nullptr && point.x > 0 && url && date && value && dictionary &&
                 set && selector.hash() != 0 && exception.name()
             ? 0
             : 1;
}
