#include <chrono>
#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace std::chrono_literals;

struct Document : NSObject {
  void save() { std::cout << "saved\n"; }
};

int main() {
  const auto clock = NSMake<NSManualClock>();
  const auto loop = NSRunLoop::currentRunLoop();
  loop->setClock(clock);
  const auto document = NSMake<Document>();
  document->performSelector_withObject_afterDelay(NSMakeSelector<"save", &Document::save>(),
                                                  nullptr, 1min);
  for (const auto& line : loop->pendingWork()) std::cout << line << '\n';

  const auto queue = dispatch_queue_create("org.example.cleaning", DISPATCH_QUEUE_SERIAL);
  const auto group = dispatch_group_create();
  dispatch_group_enter(group);
  const auto clean = [group] {
    std::cout << "cleaned\n";
    dispatch_group_leave(group);
  };
  dispatch_after(3min, queue, clean, clock);

  clock->advance(1min);
  (void)loop->performPass();
  clock->advance(2min);
  dispatch_group_wait(group);
  std::cout << loop->pendingWork()->count() << " waiting\n";
}
