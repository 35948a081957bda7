#pragma once

#include <cstdint>
#include <list>

#include <Foundation/NSBlock.h>
#include <Foundation/NSNotificationQueue.h>
#include <Foundation/Threads/IntrusiveHashTable.h>
#include <Foundation/Threads/RunLoopModes.h>

/// The notifications that wait in a thread's queue: a line for each posting style and list of
/// modes. They are also found by what makes them the same as others: name, sender, or both.
class NSQueuedNotifications {
 public:
  explicit NSQueuedNotifications(NSRunLoopCore& runLoop);
  NSQueuedNotifications(const NSQueuedNotifications&) = delete;
  ~NSQueuedNotifications();

  /// Removes those that are the same by the mask's bits.
  void remove(const NSNotification& notification, std::uint32_t mask);
  /// Removes those that are the same, then adds this one; nothing when the queue is closed.
  void add(const NSRef<NSNotification>& notification, NSPostingStyle style, std::uint32_t mask,
           const NSRef<NSArray>& modes);

  // What the run loop calls.

  /// Whether something waits for such a moment.
  [[nodiscard]] bool has(NSPostingStyle style, const NSRef<NSString>& mode,
                         const NSModeSet& commonModes);
  /// Posts what waits for such a moment, in the order in which it came, but nothing that comes
  /// meanwhile. Whether there was anything.
  bool post(NSPostingStyle style, const NSRef<NSString>& mode,
            const NSModeSet& commonModes) noexcept;
  /// Forgets lines without notifications. Not while something is posted.
  void tidy();
  /// Calls the function with each notification, its style and its modes.
  void forEach(NSBlockRef<void(const NSNotification&, NSPostingStyle, const NSRef<NSArray>&)> use);
  /// Drops all and takes no more.
  void close();

 private:
  struct Queued;
  struct Hashes;
  using Line = std::list<Queued>;
  struct ByName {};
  struct BySender {};
  struct ByBoth {};

  NSModePartition<Line>& lines(NSPostingStyle style) { return style == NSPostASAP ? _soon : _idle; }
  Queued& make(Line& line);
  NSRef<NSNotification> put(NSRef<NSNotification> notification, const Hashes& hashes, Queued& place,
                            Line& line);
  void take(Queued& queued, Line& taken);
  [[nodiscard]] bool isLikeLatest(const NSNotification& notification, const Line& line,
                                  std::uint32_t mask) const;
  template <class F>
  void forEachSame(const NSNotification& notification, const Hashes& hashes, std::uint32_t mask,
                   F function);

  // Null when the thread has ended.
  NSRunLoopCore* _runLoop;
  std::uint64_t _nextTurn = 0;
  // The one that came last, null when it has gone, and how it came.
  Queued* _latest = nullptr;
  std::uint32_t _latestMask = 0;
  NSModePartition<Line> _soon;
  NSModePartition<Line> _idle;
  NSIntrusiveHashTable<Queued, ByName> _names;
  NSIntrusiveHashTable<Queued, BySender> _senders;
  NSIntrusiveHashTable<Queued, ByBoth> _both;
};
