#include "benchmarks/HandWritten.h"
#include "benchmarks/Support.h"

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_ASIO
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#endif
#ifdef ZK_HAS_QT
#include <QCoreApplication>
#include <QTimer>
#endif

using namespace ZKFoundationExtensions;

namespace {

using Clock = std::chrono::steady_clock;

// Delayed blocks, of which none or all run.

constexpr std::size_t delayedCount = 100'000;
using Delays = std::vector<std::chrono::microseconds>;

const Delays& randomDelays() {
  static const auto values = [] {
    std::mt19937 random(1);
    Delays result(delayedCount);
    for (auto& delay : result) delay = std::chrono::microseconds(random() % 1000);
    return result;
  }();
  return values;
}
const Delays& equalDelays() {
  static const Delays values(delayedCount, std::chrono::microseconds(500));
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

// Adds a row for random delays and one for equal ones; the work takes the delays.
template <class Work>
void addDelayed(const std::string& row, const std::string& who, Work work, std::size_t expected) {
  const auto add = [&](const char* kind, const Delays& delays) {
    addRow(
        "Delayed/" + row + kind + who, [work, &delays] { return work(delays); },
        [=](std::size_t count) { return count == expected; }, {.calls = delayedCount});
  };
  add("/", randomDelays());
  add("Equal/", equalDelays());
}

void addDelayedZK() {
  const auto receiver = NSMake<NSString>();
  addDelayed(
      "Cancelled", "ZK",
      [=](const Delays& delays) {
        std::size_t count = 0;
        std::vector<NSRef<NSBlock>> blocks;
        for (const auto delay : delays) {
          blocks.push_back(performBlock_afterDelay(
              receiver, [&count] { ++count; }, later + delay));
        }
        for (const auto& block : blocks)
          cancelPreviousPerformRequestsWithTarget_block(receiver, block);
        return count;
      },
      0);
  addDelayed(
      "Cancelled", "ZKTimer",
      [=](const Delays& delays) {
        std::size_t count = 0;
        std::vector<NSRef<NSTimer>> timers;
        for (const auto delay : delays) {
          timers.push_back(NSTimer::scheduledTimerWithTimeInterval_repeats_block(
              later + delay, false, holding(receiver, [&count] { ++count; })));
        }
        for (const auto& timer : timers) timer->invalidate();
        return count;
      },
      0);
  addDelayed(
      "Fired", "ZK",
      [=](const Delays& delays) {
        std::size_t count = 0;
        for (const auto delay : delays) {
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
      "Cancelled", "Std",
      [=](const Delays& delays) {
        std::size_t count = 0;
        HandWrittenTimers timers;
        std::vector<HandWrittenTimers::Place> places;
        for (const auto delay : delays) {
          places.push_back(timers.add(later + delay, holding(held, [&count] { ++count; })));
        }
        for (const auto& place : places) timers.cancel(place);
        return count;
      },
      0);
  addDelayed(
      "Fired", "Std",
      [=](const Delays& delays) {
        std::size_t count = 0;
        HandWrittenTimers timers;
        for (const auto delay : delays) timers.add(delay, holding(held, [&count] { ++count; }));
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
      "Cancelled", "Asio",
      [=](const Delays& delays) {
        std::size_t count = 0;
        boost::asio::io_context context;
        std::deque<boost::asio::steady_timer> timers;
        for (const auto delay : delays) add(timers, context, later + delay, count);
        for (auto& timer : timers) timer.cancel();
        context.run();
        return count;
      },
      0);
  addDelayed(
      "Fired", "Asio",
      [=](const Delays& delays) {
        std::size_t count = 0;
        boost::asio::io_context context;
        std::deque<boost::asio::steady_timer> timers;
        for (const auto delay : delays) add(timers, context, delay, count);
        context.run();
        return count;
      },
      delayedCount);
}
#endif

#ifdef ZK_HAS_QT
// Its timers are for few at a time: a thousand times slower when all fire.
void addDelayedQt(const Held& held) {
  static int argumentCount = 0;
  static const QCoreApplication application(argumentCount, nullptr);
  addDelayed(
      "Cancelled", "Qt",
      [=](const Delays& delays) {
        std::size_t count = 0;
        std::deque<QTimer> timers;
        for (const auto delay : delays) {
          QTimer& timer = timers.emplace_back();
          timer.setSingleShot(true);
          timer.callOnTimeout(holding(held, [&count] { ++count; }));
          timer.start(std::chrono::ceil<std::chrono::milliseconds>(later + delay));
        }
        for (auto& timer : timers) timer.stop();
        return count;
      },
      0);
}
#endif

const bool isRegistered = [] {
  addDelayedZK();
  const Held held = std::make_shared<int>();
  addDelayedByHand(held);
#ifdef ZK_HAS_ASIO
  addDelayedAsio(held);
#endif
#ifdef ZK_HAS_QT
  addDelayedQt(held);
#endif
  return true;
}();

}  // namespace
