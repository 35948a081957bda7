#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

const NSRef<NSString>& TextDidChange() { return NSConstantString<u"TextDidChange">(); }

// Shows how long a text is. Nobody but its window holds it.
struct Counter : NSObject {
  void show() { std::cout << "counter: " << ++updates << '\n'; }
  int updates = 0;
};

struct Window : NSObject {
  Window() {
    const auto center = NSNotificationCenter::defaultCenter();
    center->addObserverForTarget_name_object_queue_usingBlock(NSWeakRef(counter), TextDidChange(),
                                                              nullptr, nullptr, &Counter::show);
    // The block has our `this`, so the observation must not outlive us.
    observation = {TextDidChange(), nullptr, [this] { std::cout << "window: " << title << '\n'; }};
  }

  NSRef<NSString> title = u"letter.txt"_ns;
  NSRef<Counter> counter = NSMake<Counter>();
  NSObservation observation;
};

int main() {
  NSObject::setCountsLiveObjects(true);
  auto window = NSMake<Window>();
  const NSWeakRef weak = window;

  const auto post = [] {
    NSNotificationCenter::defaultCenter()->postNotificationName_object(TextDidChange(), nullptr);
  };
  post();
  performBlock_afterDelay(
      weak, [](Window& self) { std::cout << "saved " << self.title << '\n'; }, 0);
  const auto counts = NSObject::liveObjectCounts();
  std::cout << counts->objectForKey(u"Window"_ns) << " window is open\n";

  window = nullptr;
  std::cout << "closed: " << weak.isNil() << '\n';
  post();
  NSRunLoop::mainRunLoop()->performPass();
  std::cout << "left: " << NSObject::liveObjectCounts()->objectForKey(u"Counter"_ns) << '\n';
}
