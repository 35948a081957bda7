#include <ZKFoundation/ZKFoundation.h>

// Programs that must not compile, and say why in a sentence.

struct Paragraph : NSObject {};
struct Plain {};

int main() {
#if MISTAKE == 1
  (void)ZKFoundationExtensions::performBlock_afterDelay(
      NSMake<Paragraph>(), [](NSString&) {}, 1.0);
#elif MISTAKE == 2
  (void)NSMake<Plain>();
#elif MISTAKE == 3
  (void)NSString::stringWithFormat(u"%@"_ns, Plain());
#endif
}
