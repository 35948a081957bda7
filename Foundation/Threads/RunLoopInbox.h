#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/detail/OnceClosure.h>

/// Takes work for a run loop from any thread, and wakes the run loop's thread.
class NSRunLoopInbox {
 public:
  struct Item {
    NSOnceClosure work;
    /// Nil is the common modes.
    NSRef<NSArray> modes;
  };

  NSRunLoopInbox() = default;
  NSRunLoopInbox(const NSRunLoopInbox&) = delete;
  ~NSRunLoopInbox();

  /// Adds an item, or drops it when the inbox is closed.
  void post(Item&& item);
  /// Moves all items into the vector, which must be empty, and makes the descriptor unreadable.
  void takeInto(std::vector<Item>& items);
  /// Returns when there are items, or after that time; at once for a time that is not positive.
  void wait(std::chrono::nanoseconds longest);
  /// Makes the descriptor readable, if somebody has asked for it.
  void signal();
  /// Gives an eventfd. Raises `NSGenericException` when the system gives none.
  [[nodiscard]] int descriptor();
  /// Drops all items and takes no more.
  void close();

 private:
  void signalLocked();

  std::mutex _mutex;
  std::condition_variable _hasItems;
  std::vector<Item> _items;
  int _descriptor = -1;
  bool _isSignalled = false;
  bool _isWaiting = false;
  bool _isClosed = false;
};
