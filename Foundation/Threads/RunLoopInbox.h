#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/detail/OnceClosure.h>

/// What any thread puts in for a run loop, and how it wakes the run loop's thread.
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

  /// Drops the item when the inbox is closed.
  void post(Item&& item);
  /// Moves all items into the vector, which must be empty, and begins to wait for a signal anew.
  void takeInto(std::vector<Item>& items);
  bool isEmpty();
  /// Returns when there are items, or after that time; at once when there is none.
  void wait(std::chrono::nanoseconds longest);
  /// Makes the descriptor readable, if somebody has asked for it.
  void signal();
  /// An eventfd. Raises `NSGenericException` when the system gives none.
  int descriptor();
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
