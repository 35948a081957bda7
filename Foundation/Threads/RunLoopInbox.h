#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include <poll.h>

#include <Foundation/NSArray.h>
#include <Foundation/Threads/ChunkedQueue.h>
#include <Foundation/detail/OnceClosure.h>

/// Takes work for a run loop from any thread, and wakes the run loop's thread.
class NSRunLoopInbox {
 public:
  struct Request {
    NSOnceClosure work;
    /// Counts the requests in the order in which they came.
    std::uint64_t turn;
  };
  using Requests = NSChunkedQueue<Request>;
  struct RequestInModes {
    NSOnceClosure work;
    std::uint64_t turn;
    NSRef<NSArray> modes;
  };

  NSRunLoopInbox() = default;
  NSRunLoopInbox(const NSRunLoopInbox&) = delete;
  ~NSRunLoopInbox();

  /// Adds a request for those modes, nil being the common ones; drops it when the inbox is closed.
  void post(NSOnceClosure&& work, NSRef<NSArray> modes);
  /// Moves all requests to the end of these queues, and makes the descriptor unreadable. Gives the
  /// turn of the next request.
  std::uint64_t takeInto(Requests& common, NSChunkedQueue<RequestInModes>& others);
  /// Returns when there are requests, after `wake` or after that time; at once for a time that is
  /// not positive.
  void wait(std::chrono::nanoseconds longest);
  /// Waits like that, and returns also when one of these descriptors is ready. The inbox must have
  /// a descriptor itself.
  void wait(std::chrono::nanoseconds longest, std::vector<pollfd> watched);
  /// Ends a wait, or the next one before it begins; tells a host. From any thread.
  void wake();
  /// Makes the descriptor readable, if somebody has asked for it.
  void signal();
  /// Gives an eventfd. Raises `NSGenericException` when the system gives none.
  [[nodiscard]] int descriptor();
  /// Takes no more requests.
  void close();

 private:
  void signalLocked();

  std::mutex _mutex;
  std::condition_variable _hasRequests;
  Requests _common;
  NSChunkedQueue<RequestInModes> _others;
  std::uint64_t _nextTurn = 0;
  int _descriptor = -1;
  bool _isSignalled = false;
  bool _isWaiting = false;
  bool _isWoken = false;
  bool _isClosed = false;
};
