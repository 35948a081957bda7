#include "benchmarks/HandWritten.h"
#include "benchmarks/Support.h"

#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <semaphore>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// Notifications of few names, the latest of which is posted.

constexpr std::size_t notificationCount = 200'000;
constexpr std::size_t nameCount = 100;

void addNotifications() {
  std::vector<NSRef<NSString>> names;
  for (std::size_t k = 0; k < nameCount; ++k) {
    names.push_back(NSMake<NSString>("Document" + std::to_string(k) + "DidChange"));
  }
  const auto count = std::make_shared<std::size_t>(0);
  NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
      nullptr, nullptr, nullptr, [=] { ++*count; });
  const auto isRight = [](std::size_t posted) { return posted == nameCount; };
  addRow("Notifications/Coalesced/ZK",
         [=] {
           const auto queue = NSNotificationQueue::defaultQueue();
           // What other rows have left.
           firePendingNotifications(queue);
           *count = 0;
           for (std::size_t k = 0; k < notificationCount; ++k) {
             enqueueNotificationName_object_postingStyle(queue, names[k * 7 % nameCount], nullptr,
                                                         NSPostASAP);
           }
           firePendingNotifications(queue);
           return *count;
         },
         isRight, {.calls = notificationCount});

  // By hand: a list of what waits, and its places by name.
  struct Waiting {
    std::string name;
    std::shared_ptr<void> object;
  };
  std::vector<std::string> texts;
  texts.reserve(names.size());
  for (const auto& name : names) texts.push_back(name->utf8());
  addRow("Notifications/Coalesced/Std",
         [=] {
           std::list<Waiting> waiting;
           std::unordered_map<std::string_view, std::list<Waiting>::iterator> places;
           for (std::size_t k = 0; k < notificationCount; ++k) {
             waiting.push_back({texts[k * 7 % nameCount], nullptr});
             const auto latest = std::prev(waiting.end());
             const auto found = places.find(latest->name);
             if (found != places.end()) {
               waiting.erase(found->second);
               places.erase(found);
             }
             places.emplace(latest->name, latest);
           }
           std::size_t posted = 0;
           for (const auto& notification : waiting) posted += notification.name.empty() ? 0U : 1U;
           return posted;
         },
         isRight, {.calls = notificationCount});
}

// Notifications of one name, of which one is posted, or few if they come from another thread.

void addOneName() {
  const auto count = std::make_shared<std::size_t>(0);
  const auto object = NSMake<NSString>();
  const auto notification =
      NSNotification::notificationWithName_object(u"DocumentDidChange"_ns, object);
  NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
      notification->name(), object, nullptr, [=] { ++*count; });
  const auto isOne = [](std::size_t posted) { return posted == 1; };
  const RowDetails details{.calls = notificationCount};
  const auto addDirect = [=](const std::string& who, auto enqueue) {
    addRow(
        "Notifications/OneName/" + who,
        [=] {
          *count = 0;
          const auto queue = NSNotificationQueue::defaultQueue();
          for (std::size_t k = 0; k < notificationCount; ++k) enqueue(queue);
          firePendingNotifications(queue);
          return *count;
        },
        isOne, details);
  };
  addDirect("ZK", [=](const auto& queue) {
    queue->enqueueNotification_postingStyle(notification, NSPostASAP);
  });
  addDirect("ZKByName", [=](const auto& queue) {
    enqueueNotificationName_object_postingStyle(queue, notification->name(), object, NSPostASAP);
  });

  // By hand: the latest of each name, which has one event.
  const Held held = std::make_shared<int>();
  const std::string name = "DocumentDidChange";
  addRow(
      "Notifications/OneName/Std",
      [=] {
        std::unordered_map<std::string, Held> waiting;
        std::vector<std::string> events;
        for (std::size_t k = 0; k < notificationCount; ++k) {
          if (waiting.insert_or_assign(name, held).second) events.push_back(name);
        }
        std::size_t posted = 0;
        for (const auto& event : events) posted += waiting.erase(event);
        return posted;
      },
      isOne, details);
}

void addOneNameFromElsewhere() {
  const auto isFew = [](std::size_t posted) { return posted > 0 && posted <= notificationCount; };
  const RowDetails details{.calls = notificationCount, .isElsewhere = true};
  const auto notification =
      NSNotification::notificationWithName_object(u"LibraryDidChange"_ns, NSMake<NSString>());
  const auto count = std::make_shared<std::size_t>(0);
  NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
      notification->name(), nullptr, nullptr, [=] { ++*count; });
  addRow(
      "Notifications/OneNameFromThread/ZK",
      [=] {
        *count = 0;
        const std::jthread sender([=] {
          for (std::size_t k = 0; k < notificationCount; ++k) {
            enqueueNotificationInMainThread_postingStyle(notification, NSPostASAP);
          }
          NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
        });
        NSRunLoop::mainRunLoop()->run();
        return *count;
      },
      isFew, details);

  const Held held = std::make_shared<int>();
  const std::string name = "LibraryDidChange";
  addRow(
      "Notifications/OneNameFromThread/Std",
      [=] {
        std::mutex mutex;
        std::unordered_map<std::string, Held> waiting;
        std::size_t posted = 0;
        HandWrittenLoop loop;
        for (std::size_t k = 0; k < notificationCount; ++k) {
          const std::lock_guard lock(mutex);
          if (!waiting.insert_or_assign(name, held).second) continue;
          loop.post([&] {
            const std::lock_guard ownLock(mutex);
            posted += waiting.erase(name);
          });
        }
        std::binary_semaphore done(0);
        loop.post([&] { done.release(); });
        done.acquire();
        return posted;
      },
      isFew, details);
}
const bool isRegistered = [] {
  addNotifications();
  addOneName();
  addOneNameFromElsewhere();
  return true;
}();

}  // namespace
