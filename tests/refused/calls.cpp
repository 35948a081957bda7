// Calls that are refused, one at a time: CALL is a row of the list of tests.
#include <algorithm>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

struct Note : NSObject {};
struct Draft : private NSObject {};

void call(const NSRef<Note>& note, const NSRef<NSMutableArray>& array) {
  const NSWeakRef weak = note;
  const auto center = NSNotificationCenter::defaultCenter();
  const auto order = [](const auto& a, const auto& b) { return a->hash() < b->hash(); };
  const auto block = [](int) {};
  CALL;
}
