#include "benchmarks/HandWritten.h"
#include "benchmarks/Support.h"

#include <latch>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_ASIO
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#endif
#ifdef ZK_HAS_QT
#include <QObject>
#include <QThread>
#endif

using namespace ZKFoundationExtensions;

namespace {

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
  addCrossing(
      "ZK", [=](auto block) { thread->get()->runLoop()->performBlock(holding(receiver, block)); });
  addCrossing("ZKPerform", [=](auto block) {
    performBlock_onThread_waitUntilDone(receiver, block, thread->get(), false);
  });
  addTrips("ZK", [=](auto block) {
    performBlock_onThread_waitUntilDone(receiver, block, thread->get(), true);
  });

  const auto loop = std::make_shared<HandWrittenLoop>();
  const Held held = std::make_shared<int>();
  addCrossing("Std", [=](auto block) { loop->post(holding(held, block)); });
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
              [=](auto block) { boost::asio::post(asio->context(), holding(held, block)); });
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
    QMetaObject::invokeMethod(qt->receiver(), holding(held, block), Qt::QueuedConnection);
  });
  addTrips("Qt", [=](auto block) {
    QMetaObject::invokeMethod(qt->receiver(), block, Qt::BlockingQueuedConnection);
  });
#endif
}
const bool isRegistered = [] {
  addThreads();
  return true;
}();

}  // namespace
