#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

struct Chapter : NSObject {
  NSRef<NSString> heading;
};

int main() {
  auto chapter = NSMake<Chapter>();
  chapter->heading = u"# Lord of the rings"_ns;
  auto title = stringByAppendingEllipsis(stringByRemovingPrefix(chapter->heading, u"# "_ns));
  std::cout << title << " in " << bundle(chapter)->bundlePath() << '\n';
}
