#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <sys/types.h>

#include <Foundation/NSManualClock.h>
#include <Foundation/NSNotificationQueue.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/Threads/BlockedThread.h>
#include <Foundation/Threads/DelayedPerforms.h>
#include <Foundation/Threads/DescriptorSources.h>
#include <Foundation/Threads/RunLoopInbox.h>
#include <Foundation/Threads/RunLoopModes.h>
#include <Foundation/Threads/Schedule.h>

/// Does the work of a run loop, of which `NSRunLoop` is the public face: that one checks who asks
/// for what. The platform's other classes use this one directly. Modes to run in are never nil
/// here.
class NSRunLoopCore {
 public:
  using Time = NSRunLoop::Time;

  NSRunLoopCore() = default;
  NSRunLoopCore(const NSRunLoopCore&) = delete;

  /// Gives the calling thread's; null when that has ended.
  [[nodiscard]] static NSRunLoopCore* current();

  // From any thread.

  /// Performs the work in a pass in one of those modes; nil is the common ones. Work for no modes,
  /// or that comes after the end, is dropped.
  void post(NSOnceClosure&& work, const NSRef<NSArray>& modes);
  /// Posts the work and returns when it has run or been dropped. False, and nothing is posted, when
  /// it would never return: on the run loop's own thread, or when that waits for the calling one.
  [[nodiscard]] bool postAndWait(NSOnceClosure&& work, const NSRef<NSArray>& modes);
  /// Tells the number of its thread, 0 when that has not begun.
  void begin(pid_t thread) noexcept { _server.set(thread); }
  [[nodiscard]] bool isEnded() const noexcept { return _isEnded; }

  // From its own thread.

  [[nodiscard]] Time now() const;
  [[nodiscard]] Time timeAfter(std::chrono::nanoseconds delay) const {
    return NSTimeAfter(now(), delay);
  }
  void setClock(std::function<Time()> clock);
  void setClock(const NSRef<NSManualClock>& clock);

  void addCommonMode(const NSRef<NSString>& mode) { _commonModes.add(mode); }
  [[nodiscard]] const NSRef<NSString>& currentMode() const noexcept { return _currentMode; }

  void schedule(NSRef<NSScheduledEvent> event, const NSRef<NSArray>& modes, Time time);
  /// The delayed requests in the schedule.
  [[nodiscard]] NSDelayedPerforms& delayedPerforms() noexcept { return _delayedPerforms; }
  void addSource(const NSRef<NSDescriptorSource>& source, const NSRef<NSString>& mode);
  /// Gives the thread's queue, which is made when it is first asked for.
  [[nodiscard]] NSRef<NSNotificationQueue> notificationQueue();
  /// Tells a host, if there is one, that it should make a pass.
  void signal();
  /// Tells it so before somebody else's code runs in a pass, if anything else is left: that code
  /// may run the host's loop again, which has no result of this pass yet.
  void tellNestedHost();
  /// Gives an eventfd for a host.
  [[nodiscard]] int descriptor();

  /// Whether there can be passes in the mode.
  [[nodiscard]] bool canRunIn(const NSRef<NSString>& mode) const;
  /// Makes a pass without waiting and gives the time of the next timer or delayed request.
  std::optional<Time> makePass(const NSRef<NSString>& mode);
  /// Makes a pass and posts what waits for idle moments, if nothing else is left. Gives how long
  /// nothing will have to be done; none if that is for ever.
  std::optional<std::chrono::nanoseconds> makeHostedPass(const NSRef<NSString>& mode);
  /// Makes passes, and waits between them, until the time comes, if there is one, or
  /// `stop` is called; unless it `goesOn` also until a pass has performed a request.
  void run(const NSRef<NSString>& mode, std::optional<Time> limit, bool goesOn);
  /// Ends the innermost run after its current pass.
  void stop() noexcept;

  /// Tells what waits, a line each.
  [[nodiscard]] NSRef<NSArray> pendingWork();

  /// Drops all and takes no more.
  void end();

 private:
  // What waits for one list of modes.
  struct Waiting {
    bool empty() noexcept { return requests.empty() && schedule.isEmpty(); }

    NSSchedule schedule;
    NSRunLoopInbox::Requests requests;
  };
  using Groups = std::vector<Waiting*>;
  class Mode;
  class Run;

  Groups groupsIn(const NSRef<NSString>& mode) { return _waiting.in(mode, _commonModes); }
  void collect();
  void fireEvents(const Groups& groups, std::uint64_t limit, Time time);
  bool performRequests(const Groups& groups, std::uint64_t limit);
  bool pass(const NSRef<NSString>& mode);
  void runOnce(const Run& run, const NSRef<NSString>& mode, std::optional<Time> limit);
  bool hasNotifications(NSPostingStyle style, const NSRef<NSString>& mode);
  bool hasRequests(const NSRef<NSString>& mode);
  bool hasWork(const NSRef<NSString>& mode);
  std::optional<Time> nextTime(const NSRef<NSString>& mode);
  [[nodiscard]] std::optional<std::chrono::nanoseconds> until(std::optional<Time> time) const;
  std::optional<std::chrono::nanoseconds> idleTime(const NSRef<NSString>& mode);
  bool hasUnforeseenWork(const NSRef<NSString>& mode, Time foreseen);
  [[nodiscard]] bool hasCome(std::optional<Time> time) const;
  void wait(const NSRef<NSString>& mode, std::chrono::nanoseconds longest);
  bool postNotifications(NSPostingStyle style, const NSRef<NSString>& mode);

  NSRunLoopInbox _inbox;
  NSServingThread _server;
  // Outlives the requests, which stand in it.
  NSDelayedPerforms _delayedPerforms;
  NSModePartition<Waiting> _waiting;
  NSModeSet _commonModes{NSDefaultRunLoopMode()};
  NSRef<NSString> _currentMode;
  // Those of timers and delayed requests, and of what came out of the inbox: each count by itself.
  std::uint64_t _nextTurn = 0;
  std::uint64_t _nextRequestTurn = 0;
  std::function<Time()> _clock;
  // The one behind it, if it is moved by hand.
  NSRef<NSManualClock> _manualClock;
  NSDescriptorSources _sources;
  NSRef<NSNotificationQueue> _notifications;
  Run* _run = nullptr;
  bool _isHosted = false;
  // Whether the descriptor has been emptied since the last call of somebody else's code.
  bool _isUntold = false;
  // The next time in the default mode, as the host knows it.
  Time _foreseen = Time::max();
  std::atomic<bool> _isEnded = false;
};
