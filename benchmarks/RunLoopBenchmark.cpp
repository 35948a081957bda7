#include "benchmarks/HandWritten.h"
#include "benchmarks/Support.h"

#include <array>
#include <chrono>
#include <functional>
#include <latch>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <semaphore>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_ASIO
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#endif
#ifdef ZK_HAS_QT
#include <QCoreApplication>
#include <QThread>
#include <QTimer>
#endif

using namespace ZKFoundationExtensions;

namespace {

using Clock = std::chrono::steady_clock;

// A thread that runs its run loop.
class LoopThread {
 public:
  LoopThread() { _thread->start(); }
  LoopThread(const LoopThread&) = delete;
  ~LoopThread() {
    _thread->runLoop()->performBlock([] { NSRunLoop::currentRunLoop()->stop(); });
  }
  [[nodiscard]] const NSRef<NSThread>& get() const { return _thread; }

 private:
  NSRef<NSThread> _thread = NSMake<NSThread>([] { NSRunLoop::currentRunLoop()->run(); });
};

#ifdef ZK_HAS_ASIO
class AsioThread {
 public:
  AsioThread() = default;
  AsioThread(const AsioThread&) = delete;
  ~AsioThread() { _context.stop(); }
  boost::asio::io_context& context() { return _context; }

 private:
  boost::asio::io_context _context;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> _guard{
      _context.get_executor()};
  std::jthread _thread{[this] { _context.run(); }};
};
#endif

#ifdef ZK_HAS_QT
class QtThread {
 public:
  QtThread() {
    _receiver.moveToThread(&_thread);
    _thread.start();
  }
  QtThread(const QtThread&) = delete;
  ~QtThread() {
    _thread.quit();
    _thread.wait();
  }
  QObject* receiver() { return &_receiver; }

 private:
  QThread _thread;
  QObject _receiver;
};
#endif

// Everybody's blocks hold an object while they wait, as ours hold their receiver; Qt has its own
// way, by which a receiver that dies takes its blocks along.
using Held = std::shared_ptr<const int>;

// Blocks from this thread to another one, until the last has run.

constexpr std::size_t blockCount = 200'000;

template <class Post>
void addCrossing(const std::string& who, Post post) {
  const auto work = [=] {
    std::size_t count = 0;
    std::latch done(1);
    for (std::size_t k = 0; k < blockCount; ++k) {
      post([&count, &done] {
        if (++count == blockCount) done.count_down();
      });
    }
    done.wait();
    return count;
  };
  addRow("RunLoop/CrossThread/" + who, work, [](std::size_t count) { return count == blockCount; },
         {.calls = blockCount, .isElsewhere = true});
}

// One block after the other, each of which is waited for.

constexpr std::size_t tripCount = 1000;

template <class Trip>
void addTrips(const std::string& who, Trip trip) {
  const auto work = [=] {
    std::size_t count = 0;
    for (std::size_t k = 0; k < tripCount; ++k) {
      trip([&count] { ++count; });
    }
    return count;
  };
  addRow("RunLoop/RoundTrip/" + who, work, [](std::size_t count) { return count == tripCount; },
         {.calls = tripCount, .isElsewhere = true});
}

void addThreads() {
  const auto thread = std::make_shared<LoopThread>();
  const auto receiver = NSMake<NSString>();
  addCrossing("ZK", [=](auto block) {
    performBlock_onThread_waitUntilDone(receiver, block, thread->get(), false);
  });
  addTrips("ZK", [=](auto block) {
    performBlock_onThread_waitUntilDone(receiver, block, thread->get(), true);
  });

  const auto loop = std::make_shared<HandWritten>(1U);
  const Held held = std::make_shared<int>();
  addCrossing("Std", [=](auto block) { loop->post([held, block] { block(); }); });
  addTrips("Std", [=](auto block) {
    std::binary_semaphore done(0);
    loop->post([&] {
      block();
      done.release();
    });
    done.acquire();
  });

#ifdef ZK_HAS_ASIO
  const auto asio = std::make_shared<AsioThread>();
  addCrossing("Asio",
              [=](auto block) { boost::asio::post(asio->context(), [held, block] { block(); }); });
  addTrips("Asio", [=](auto block) {
    std::binary_semaphore done(0);
    boost::asio::post(asio->context(), [&] {
      block();
      done.release();
    });
    done.acquire();
  });
#endif
#ifdef ZK_HAS_QT
  const auto qt = std::make_shared<QtThread>();
  addCrossing("Qt", [=](auto block) {
    QMetaObject::invokeMethod(qt->receiver(), block, Qt::QueuedConnection);
  });
  addTrips("Qt", [=](auto block) {
    QMetaObject::invokeMethod(qt->receiver(), block, Qt::BlockingQueuedConnection);
  });
#endif
}

// Delayed blocks, of which none or all run.

constexpr std::size_t delayedCount = 100'000;

const std::vector<std::chrono::microseconds>& delays() {
  static const auto values = [] {
    std::mt19937 random(1);
    std::vector<std::chrono::microseconds> result(delayedCount);
    for (auto& delay : result) delay = std::chrono::microseconds(random() % 1000);
    return result;
  }();
  return values;
}
// What is cancelled is for later.
constexpr auto later = std::chrono::seconds(100);

// What an expert writes by hand: the blocks by their times, and places to cancel them.
class HandWrittenTimers {
 public:
  using Place = std::multimap<Clock::time_point, std::function<void()>>::iterator;
  Place add(Clock::duration delay, std::function<void()> block) {
    return _blocks.emplace(Clock::now() + delay, std::move(block));
  }
  void cancel(Place place) { _blocks.erase(place); }
  void run() {
    while (!_blocks.empty()) {
      if (_blocks.begin()->first > Clock::now()) {
        std::this_thread::sleep_until(_blocks.begin()->first);
      }
      const auto first = _blocks.extract(_blocks.begin());
      first.mapped()();
    }
  }

 private:
  std::multimap<Clock::time_point, std::function<void()>> _blocks;
};

void addDelayed(const std::string& row, std::function<std::size_t()> work, std::size_t expected) {
  addRow("Delayed/" + row, std::move(work), [=](std::size_t count) { return count == expected; },
         {.calls = delayedCount});
}

void addDelayedZK() {
  const auto receiver = NSMake<NSString>();
  addDelayed(
      "Cancelled/ZK",
      [=] {
        std::size_t count = 0;
        std::vector<NSRef<NSBlock>> blocks;
        for (const auto delay : delays()) {
          blocks.push_back(performBlock_afterDelay(
              receiver, [&count] { ++count; }, later + delay));
        }
        for (const auto& block : blocks)
          cancelPreviousPerformRequestsWithTarget_block(receiver, block);
        return count;
      },
      0);
  addDelayed(
      "Fired/ZK",
      [=] {
        std::size_t count = 0;
        for (const auto delay : delays()) {
          performBlock_afterDelay(
              receiver,
              [&count] {
                if (++count == delayedCount) NSRunLoop::currentRunLoop()->stop();
              },
              delay);
        }
        NSRunLoop::currentRunLoop()->run();
        return count;
      },
      delayedCount);
}

void addDelayedByHand(const Held& held) {
  addDelayed(
      "Cancelled/Std",
      [=] {
        std::size_t count = 0;
        HandWrittenTimers timers;
        std::vector<HandWrittenTimers::Place> places;
        for (const auto delay : delays()) {
          places.push_back(timers.add(later + delay, [held, &count] { ++count; }));
        }
        for (const auto& place : places) timers.cancel(place);
        return count;
      },
      0);
  addDelayed(
      "Fired/Std",
      [=] {
        std::size_t count = 0;
        HandWrittenTimers timers;
        for (const auto delay : delays()) timers.add(delay, [held, &count] { ++count; });
        timers.run();
        return count;
      },
      delayedCount);
}

#ifdef ZK_HAS_ASIO
void addDelayedAsio(const Held& held) {
  const auto add = [=](std::deque<boost::asio::steady_timer>& timers,
                       boost::asio::io_context& context, Clock::duration delay,
                       std::size_t& count) {
    timers.emplace_back(context, delay).async_wait([held, &count](const auto& error) {
      if (!error) ++count;
    });
  };
  addDelayed(
      "Cancelled/Asio",
      [=] {
        std::size_t count = 0;
        boost::asio::io_context context;
        std::deque<boost::asio::steady_timer> timers;
        for (const auto delay : delays()) add(timers, context, later + delay, count);
        for (auto& timer : timers) timer.cancel();
        context.run();
        return count;
      },
      0);
  addDelayed(
      "Fired/Asio",
      [=] {
        std::size_t count = 0;
        boost::asio::io_context context;
        std::deque<boost::asio::steady_timer> timers;
        for (const auto delay : delays()) add(timers, context, delay, count);
        context.run();
        return count;
      },
      delayedCount);
}
#endif

#ifdef ZK_HAS_QT
void addDelayedQt() {
  static int argumentCount = 0;
  static const QCoreApplication application(argumentCount, nullptr);
  const auto start = [](std::deque<QTimer>& timers, std::chrono::milliseconds delay, auto block) {
    QTimer& timer = timers.emplace_back();
    timer.setSingleShot(true);
    timer.callOnTimeout(block);
    timer.start(delay);
  };
  addDelayed(
      "Cancelled/Qt",
      [=] {
        std::size_t count = 0;
        std::deque<QTimer> timers;
        for (const auto delay : delays()) {
          start(timers, std::chrono::ceil<std::chrono::milliseconds>(later + delay),
                [&count] { ++count; });
        }
        for (auto& timer : timers) timer.stop();
        return count;
      },
      0);
  addDelayed(
      "Fired/Qt",
      [=] {
        std::size_t count = 0;
        std::deque<QTimer> timers;
        for (const auto delay : delays()) {
          start(timers, std::chrono::ceil<std::chrono::milliseconds>(delay), [&count] { ++count; });
        }
        while (count < delayedCount) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return count;
      },
      delayedCount);
}
#endif

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
           *count = 0;
           const auto queue = NSNotificationQueue::defaultQueue();
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

const bool isRegistered = [] {
  addThreads();
  addDelayedZK();
  const Held held = std::make_shared<int>();
  addDelayedByHand(held);
#ifdef ZK_HAS_ASIO
  addDelayedAsio(held);
#endif
#ifdef ZK_HAS_QT
  addDelayedQt();
#endif
  addNotifications();
  return true;
}();

}  // namespace
