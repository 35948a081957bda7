#include "Foundation/NSNotificationQueue.h"

#include <array>
#include <list>
#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>
#include <Foundation/Threads/IntrusiveHashTable.h>
#include <Foundation/Threads/RunLoopModes.h>
#include <Foundation/detail/OnceClosure.h>

namespace {

struct Queued;
using Line = std::list<Queued>;

// A notification that waits, in its line and in a chain for each way to be the same as another.
struct ByName {};
struct BySender {};
struct ByBoth {};
struct Queued : NSIntrusiveHashLink<Queued, ByName>,
                NSIntrusiveHashLink<Queued, BySender>,
                NSIntrusiveHashLink<Queued, ByBoth> {
  Queued(NSRef<NSNotification> what, std::uint64_t itsTurn, Line& itsLine)
      : notification(std::move(what)), turn(itsTurn), line(&itsLine) {}

  NSRef<NSNotification> notification;
  std::uint64_t turn;
  Line* line;
  Line::iterator self;
};

// What a notification is found by.
struct Hashes {
  explicit Hashes(const NSNotification& notification)
      : name(notification.name()->hash()),
        sender(std::hash<NSRef<NSObject>>()(notification.object())),
        both(name * 31 + sender) {}
  NSUInteger name;
  NSUInteger sender;
  NSUInteger both;
};

bool isSame(const NSNotification& a, const NSNotification& b, std::uint32_t mask) {
  const bool minds = (mask & NSNotificationCoalescingOnName) != 0;
  const bool mindsSender = (mask & NSNotificationCoalescingOnSender) != 0;
  return (!minds || a.name() == b.name() || a.name()->isEqualToString(b.name())) &&
         (!mindsSender || a.object() == b.object());
}

}  // namespace

struct NSNotificationQueue::Core {
  explicit Core(NSRunLoop& loop) : runLoop(&loop) {}

  // All that may run out of memory, for `put`; until then nothing finds it.
  Queued& make(const NSRef<NSNotification>& notification, Line& line) {
    names.makeRoom();
    senders.makeRoom();
    both.makeRoom();
    Queued& queued = line.emplace_back(notification, nextTurn++, line);
    queued.self = std::prev(line.end());
    return queued;
  }

  void put(Queued& queued, const Hashes& hashes) {
    names.add(queued, hashes.name);
    senders.add(queued, hashes.sender);
    both.add(queued, hashes.both);
  }

  // What goes dies with the result, when all is in order again.
  void take(Queued& queued, Line& taken) {
    names.remove(queued);
    senders.remove(queued);
    both.remove(queued);
    taken.splice(taken.end(), *queued.line, queued.self);
  }

  // Those that are the same; they die with the result.
  Line takeSame(const NSNotification& notification, const Hashes& hashes, std::uint32_t mask) {
    Line taken;
    const auto takeIt = [&](Queued& queued) {
      if (isSame(*queued.notification, notification, mask)) take(queued, taken);
    };
    switch (mask & (NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender)) {
      case NSNotificationNoCoalescing:
        break;
      case NSNotificationCoalescingOnName:
        names.forEach(hashes.name, takeIt);
        break;
      case NSNotificationCoalescingOnSender:
        senders.forEach(hashes.sender, takeIt);
        break;
      default:
        both.forEach(hashes.both, takeIt);
    }
    return taken;
  }

  // Posts what those lines hold, in the order of the turns. Whether there was anything.
  bool post(const std::vector<Line*>& lines) {
    const std::uint64_t limit = nextTurn;
    for (bool hasPosted = false;; hasPosted = true) {
      Line* first = nullptr;
      for (Line* const line : lines) {
        if (line->empty() || (first != nullptr && first->front().turn < line->front().turn)) {
          continue;
        }
        first = line;
      }
      if (first == nullptr || first->front().turn >= limit) return hasPosted;
      Line taken;
      take(first->front(), taken);
      NSNotificationCenter::defaultCenter()->postNotification(taken.front().notification);
    }
  }

  // Null when the thread has ended.
  NSRunLoop* runLoop;
  std::uint64_t nextTurn = 0;
  NSModePartition<Line> soon;
  NSModePartition<Line> idle;
  NSIntrusiveHashTable<Queued, ByName> names;
  NSIntrusiveHashTable<Queued, BySender> senders;
  NSIntrusiveHashTable<Queued, ByBoth> both;
};

NSNotificationQueue::NSNotificationQueue(NSRunLoop& runLoop)
    : _core(std::make_unique<Core>(runLoop)) {}

NSNotificationQueue::~NSNotificationQueue() = default;

NSRef<NSNotificationQueue> NSNotificationQueue::defaultQueue() {
  return NSRunLoop::currentRunLoop()->notificationQueue();
}

void NSNotificationQueue::enqueueNotification_postingStyle(
    const NSRef<NSNotification>& notification, NSUInteger postingStyle) {
  enqueueNotification_postingStyle_coalesceMask_forModes(
      notification, postingStyle, NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender,
      nullptr);
}

void NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes(
    const NSRef<NSNotification>& notification, NSUInteger postingStyle, std::uint32_t coalesceMask,
    const NSRef<NSArray>& modes) {
  constexpr auto operation = "enqueueNotification:postingStyle:coalesceMask:forModes:";
  if (!notification) NSRaiseNilArgument("notification", operation);
  if (postingStyle < NSPostWhenIdle || postingStyle > NSPostNow) {
    NSException::raise(NSInvalidArgumentException,
                       "there is no posting style " +
                           std::to_string(static_cast<NSInteger>(postingStyle)) + " (in '" +
                           operation + "')");
  }
  // What is removed may change the caller's own reference.
  const auto held = NSRef<NSNotification>::share(notification.get());
  const Hashes hashes(*held);
  if (postingStyle == NSPostNow) {
    _core->takeSame(*held, hashes, coalesceMask);
    NSNotificationCenter::defaultCenter()->postNotification(held);
  } else if (_core->runLoop != nullptr) {
    const bool hasModes = modes && modes->count() > 0;
    auto& groups = postingStyle == NSPostASAP ? _core->soon : _core->idle;
    Queued& queued = _core->make(held, groups.of(hasModes ? modes : NSDefaultRunLoopModes()));
    const Line former = _core->takeSame(*held, hashes, coalesceMask);
    _core->put(queued, hashes);
    _core->runLoop->signal();
  }
}

void NSNotificationQueue::dequeueNotificationsMatching_coalesceMask(
    const NSRef<NSNotification>& notification, std::uint32_t coalesceMask) {
  if (!notification) {
    NSRaiseNilArgument("notification", "dequeueNotificationsMatching:coalesceMask:");
  }
  _core->takeSame(*notification, Hashes(*notification), coalesceMask);
}

bool NSNotificationQueue::hasSoon(const NSRef<NSString>& mode, const NSModeSet& commonModes) {
  for (const Line* const line : _core->soon.in(mode, commonModes)) {
    if (!line->empty()) return true;
  }
  return false;
}

void NSNotificationQueue::postSoon(const NSRef<NSString>& mode,
                                   const NSModeSet& commonModes) noexcept {
  NSCallOrTerminate([&] { _core->post(_core->soon.in(mode, commonModes)); });
}

bool NSNotificationQueue::postIdle(const NSRef<NSString>& mode,
                                   const NSModeSet& commonModes) noexcept {
  bool hasPosted = false;
  NSCallOrTerminate([&] { hasPosted = _core->post(_core->idle.in(mode, commonModes)); });
  return hasPosted;
}

void NSNotificationQueue::tidy() {
  _core->soon.tidy();
  _core->idle.tidy();
}

void NSNotificationQueue::close() {
  _core->runLoop = nullptr;
  Line removed;
  const auto takeAll = [&](Line& line) {
    while (!line.empty()) _core->take(line.front(), removed);
  };
  _core->soon.forEach(takeAll);
  _core->idle.forEach(takeAll);
}
