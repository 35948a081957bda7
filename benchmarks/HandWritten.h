#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

// Everybody's blocks hold an object while they wait, as ours hold their receiver; Qt has its own
// way, by which a receiver that dies takes its blocks along.
using Held = std::shared_ptr<const int>;

// Makes a block that holds the object, and moves with it.
template <class Object, class F>
auto holding(Object object, F block) {
  return [object = std::move(object), block] { block(); };
}

// What an expert writes by hand: blocks in a queue under a lock, and threads that take them.
class HandWritten {
 public:
  explicit HandWritten(unsigned threads) {
    for (unsigned k = 0; k < threads; ++k) _threads.emplace_back([this] { run(); });
  }
  HandWritten(const HandWritten&) = delete;
  ~HandWritten() {
    {
      const std::lock_guard lock(_mutex);
      _isEnded = true;
    }
    _changed.notify_all();
  }

  void post(std::function<void()> block) {
    {
      const std::lock_guard lock(_mutex);
      _blocks.push_back(std::move(block));
    }
    _changed.notify_one();
  }

 private:
  void run() {
    std::unique_lock lock(_mutex);
    for (;;) {
      _changed.wait(lock, [this] { return _isEnded || !_blocks.empty(); });
      if (_blocks.empty()) return;
      const auto block = std::move(_blocks.front());
      _blocks.pop_front();
      lock.unlock();
      block();
      lock.lock();
    }
  }

  std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<std::function<void()>> _blocks;
  bool _isEnded = false;
  std::vector<std::jthread> _threads;
};

// What an expert writes by hand for one thread: it takes all blocks at once, and is only woken when
// it waits.
class HandWrittenLoop {
 public:
  HandWrittenLoop() = default;
  HandWrittenLoop(const HandWrittenLoop&) = delete;
  ~HandWrittenLoop() {
    post([this] { _isEnded = true; });
  }

  void post(std::function<void()> block) {
    {
      const std::lock_guard lock(_mutex);
      _blocks.push_back(std::move(block));
      if (!std::exchange(_isWaiting, false)) return;
    }
    _hasBlocks.notify_one();
  }

 private:
  void run() {
    std::vector<std::function<void()>> taken;
    while (!_isEnded) {
      std::unique_lock lock(_mutex);
      _hasBlocks.wait(lock, [this] {
        _isWaiting = _blocks.empty();
        return !_isWaiting;
      });
      taken.swap(_blocks);
      lock.unlock();
      for (const auto& block : taken) block();
      taken.clear();
    }
  }

  std::mutex _mutex;
  std::condition_variable _hasBlocks;
  std::vector<std::function<void()>> _blocks;
  bool _isWaiting = false;
  bool _isEnded = false;
  std::jthread _thread{[this] { run(); }};
};
