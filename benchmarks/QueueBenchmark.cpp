#include "benchmarks/HandWritten.h"
#include "benchmarks/Support.h"

#include <atomic>
#include <latch>
#include <memory>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_ASIO
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#endif
#ifdef ZK_HAS_QT
#include <QThreadPool>
#endif

using namespace ZKFoundationExtensions;

namespace {

constexpr std::size_t blockCount = 1'000'000;
constexpr int threadCount = 2;

// Posts tiny blocks and waits for the last to have run; the answer is how many have. On a serial
// queue only one counts at a time, yet all count in the same way.
template <class Post>
auto countWith(Post post) {
  return [=] {
    std::atomic<std::size_t> count = 0;
    std::latch done(1);
    for (std::size_t k = 0; k < blockCount; ++k) {
      post([&count, &done] {
        if (count.fetch_add(1, std::memory_order_relaxed) + 1 == blockCount) done.count_down();
      });
    }
    done.wait();
    return count.load();
  };
}

template <class Post>
void addPosting(const std::string& name, Post post) {
  addRow(name, countWith(post), [](std::size_t count) { return count == blockCount; },
         {.calls = blockCount, .isElsewhere = true});
}

void addQueues(const std::string& row, dispatch_queue_attr_t kind) {
  const auto receiver = NSMake<NSString>();
  const auto queue = dispatch_queue_create("benchmark", kind);
  addPosting(row + "ZK", [=](auto block) { dispatch_async(queue, holding(receiver, block)); });
  addPosting(row + "ZKPerform", [=](auto block) {
    performBlock_onQueue_waitUntilDone(receiver, block, queue, false);
  });
  const Held held = std::make_shared<int>();
#ifdef ZK_HAS_ASIO
  const auto pool = std::make_shared<boost::asio::thread_pool>(threadCount);
  if (kind == DISPATCH_QUEUE_SERIAL) {
    const auto strand = boost::asio::make_strand(*pool);
    addPosting(row + "Asio", [=](auto block) {
      (void)pool;
      boost::asio::post(strand, holding(held, block));
    });
  } else {
    addPosting(row + "Asio", [=](auto block) { boost::asio::post(*pool, holding(held, block)); });
  }
#endif
#ifdef ZK_HAS_QT
  const auto qtPool = std::make_shared<QThreadPool>();
  qtPool->setMaxThreadCount(kind == DISPATCH_QUEUE_SERIAL ? 1 : threadCount);
  addPosting(row + "Qt", [=](auto block) { qtPool->start(holding(held, block)); });
#endif
}

// By hand: one thread, or as many as everybody's pool.
template <class Loop>
void addByHand(const std::string& row, std::shared_ptr<Loop> loop) {
  const Held held = std::make_shared<int>();
  addPosting(row + "Std", [=](auto block) { loop->post(holding(held, block)); });
}

const bool isRegistered = [] {
  addQueues("Queue/SerialBlocks/", DISPATCH_QUEUE_SERIAL);
  addByHand("Queue/SerialBlocks/", std::make_shared<HandWrittenLoop>());
  addQueues("Queue/ConcurrentBlocks/", DISPATCH_QUEUE_CONCURRENT);
  addByHand("Queue/ConcurrentBlocks/", std::make_shared<HandWritten>(threadCount));
  return true;
}();

}  // namespace
