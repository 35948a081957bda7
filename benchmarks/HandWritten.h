#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

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
