#include <chrono>
#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace std::chrono_literals;
using namespace ZKFoundationExtensions;

struct Index : NSObject {
  void add(const NSRef<NSString>& word) { words.push_back(word); }
  std::vector<NSRef<NSString>> words;
};

int main() {
  const auto index = NSMake<Index>();
  const auto note = performBlock_afterDelay(
      index, [] { std::cout << "still reading\n"; }, 60s);

  // The latest of many notifications is enough, when there is nothing else to do.
  const auto growth = NSNotification::notificationWithName_object(u"IndexDidGrow"_ns, index);
  const auto center = NSNotificationCenter::defaultCenter();
  const auto observer =
      center->addObserverForName_object_queue_usingBlock(growth->name(), index, nullptr, [=] {
        if (index->words.size() < 1000) return;
        cancelPreviousPerformRequestsWithTarget_block(index, note);
        std::cout << index->words.size() << " words\n";
        NSRunLoop::mainRunLoop()->stop();
      });

  performBlockInBackground(index, [=] {
    for (int k = 1; k <= 1000; ++k) {
      const auto word = NSString::stringWithFormat(u"word %d"_ns, k);
      performBlockOnMainThread_waitUntilDone(
          index, [=](Index& self) { self.add(word); }, false);
      enqueueNotificationInMainThread_postingStyle(growth, NSPostWhenIdle);
    }
  });
  NSRunLoop::mainRunLoop()->run();
  center->removeObserver(observer);

  const auto queue = dispatch_queue_create("org.example.words", DISPATCH_QUEUE_SERIAL);
  performBlock_onQueue_waitUntilDone(
      index, [](Index& self) { self.words.clear(); }, queue, true);
  std::cout << index->words.size() << " words\n";
}
