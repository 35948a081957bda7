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

namespace {

constexpr std::size_t blockCount = 1'000'000;

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

void addQueues(const std::string& row, dispatch_queue_attr_t kind, unsigned threads) {
  const auto queue = dispatch_queue_create("benchmark", kind);
  addPosting(row + "ZK", [=](auto block) { dispatch_async(queue, block); });
  const auto loop = std::make_shared<HandWritten>(threads);
  addPosting(row + "Std", [=](auto block) { loop->post(block); });
#ifdef ZK_HAS_ASIO
  const auto pool = std::make_shared<boost::asio::thread_pool>(2);
  if (kind == DISPATCH_QUEUE_SERIAL) {
    const auto strand = boost::asio::make_strand(*pool);
    addPosting(row + "Asio", [=](auto block) {
      (void)pool;
      boost::asio::post(strand, block);
    });
  } else {
    addPosting(row + "Asio", [=](auto block) { boost::asio::post(*pool, block); });
  }
#endif
#ifdef ZK_HAS_QT
  const auto qtPool = std::make_shared<QThreadPool>();
  qtPool->setMaxThreadCount(static_cast<int>(threads));
  addPosting(row + "Qt", [=](auto block) { qtPool->start(block); });
#endif
}

const bool isRegistered = [] {
  addQueues("Queue/SerialBlocks/", DISPATCH_QUEUE_SERIAL, 1);
  addQueues("Queue/ConcurrentBlocks/", DISPATCH_QUEUE_CONCURRENT, 2);
  return true;
}();

}  // namespace
