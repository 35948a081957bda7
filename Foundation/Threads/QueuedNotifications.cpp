#include "Foundation/Threads/QueuedNotifications.h"

#include <optional>
#include <utility>

#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSString.h>
#include <Foundation/Threads/RunLoopCore.h>
#include <Foundation/detail/OnceClosure.h>

// A notification that waits, in its line and in the table of each way to be the same as another.
struct NSQueuedNotifications::Queued : NSIntrusiveHashLink<Queued, ByName>,
                                       NSIntrusiveHashLink<Queued, BySender>,
                                       NSIntrusiveHashLink<Queued, ByBoth> {
  Queued(NSRef<NSNotification> what, std::uint64_t itsTurn, Line& itsLine)
      : notification(std::move(what)), turn(itsTurn), line(&itsLine) {}

  NSRef<NSNotification> notification;
  std::uint64_t turn;
  Line* line;
  Line::iterator self;
};

struct NSQueuedNotifications::Hashes {
  explicit Hashes(const NSNotification& notification)
      : name(notification.name()->hash()),
        sender(std::hash<NSRef<NSObject>>()(notification.object())),
        both(name * 31 + sender) {}
  NSUInteger name;
  NSUInteger sender;
  NSUInteger both;
};

namespace {

bool isSame(const NSNotification& a, const NSNotification& b, std::uint32_t mask) {
  const bool mindsName = (mask & NSNotificationCoalescingOnName) != 0;
  const bool mindsSender = (mask & NSNotificationCoalescingOnSender) != 0;
  return (!mindsName || a.name() == b.name() || a.name()->isEqualToString(b.name())) &&
         (!mindsSender || a.object() == b.object());
}

constexpr auto firstTurn = [](const auto& line) -> std::optional<std::uint64_t> {
  if (line.empty()) return std::nullopt;
  return line.front().turn;
};

}  // namespace

NSQueuedNotifications::NSQueuedNotifications(NSRunLoopCore& runLoop) : _runLoop(&runLoop) {}

NSQueuedNotifications::~NSQueuedNotifications() = default;

// All that may run out of memory, for `put`; until then nothing finds it.
NSQueuedNotifications::Queued& NSQueuedNotifications::make(
    const NSRef<NSNotification>& notification, Line& line) {
  _names.makeRoom();
  _senders.makeRoom();
  _both.makeRoom();
  Queued& queued = line.emplace_back(notification, _nextTurn++, line);
  queued.self = std::prev(line.end());
  return queued;
}

void NSQueuedNotifications::put(Queued& queued, const Hashes& hashes) {
  _names.add(queued, hashes.name);
  _senders.add(queued, hashes.sender);
  _both.add(queued, hashes.both);
}

// What goes dies with the result, when all is in order again.
void NSQueuedNotifications::take(Queued& queued, Line& taken) {
  _names.remove(queued);
  _senders.remove(queued);
  _both.remove(queued);
  taken.splice(taken.end(), *queued.line, queued.self);
}

// Those that are the same; they die with the result.
NSQueuedNotifications::Line NSQueuedNotifications::takeSame(const NSNotification& notification,
                                                            const Hashes& hashes,
                                                            std::uint32_t mask) {
  Line taken;
  const auto takeIt = [&](Queued& queued) {
    if (isSame(*queued.notification, notification, mask)) take(queued, taken);
  };
  switch (mask & (NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender)) {
    case NSNotificationNoCoalescing:
      break;
    case NSNotificationCoalescingOnName:
      _names.forEach(hashes.name, takeIt);
      break;
    case NSNotificationCoalescingOnSender:
      _senders.forEach(hashes.sender, takeIt);
      break;
    default:
      _both.forEach(hashes.both, takeIt);
  }
  return taken;
}

void NSQueuedNotifications::remove(const NSNotification& notification, std::uint32_t mask) {
  takeSame(notification, Hashes(notification), mask);
}

void NSQueuedNotifications::add(const NSRef<NSNotification>& notification, NSPostingStyle style,
                                std::uint32_t mask, const NSRef<NSArray>& modes) {
  if (_runLoop == nullptr) return;
  const Hashes hashes(*notification);
  Queued& queued = make(notification, lines(style).of(modes));
  const Line former = takeSame(*notification, hashes, mask);
  put(queued, hashes);
  _runLoop->signal();
}

bool NSQueuedNotifications::hasSoon(const NSRef<NSString>& mode, const NSModeSet& commonModes) {
  return NSFirstOf(_soon.in(mode, commonModes), firstTurn) != nullptr;
}

bool NSQueuedNotifications::post(NSPostingStyle style, const NSRef<NSString>& mode,
                                 const NSModeSet& commonModes) noexcept {
  bool hasPosted = false;
  NSCallOrTerminate([&] {
    const auto waiting = lines(style).in(mode, commonModes);
    const std::uint64_t limit = _nextTurn;
    while (Line* const line = NSFirstOf(waiting, firstTurn)) {
      if (line->front().turn >= limit) break;
      Line taken;
      take(line->front(), taken);
      NSNotificationCenter::defaultCenter()->postNotification(taken.front().notification);
      hasPosted = true;
    }
  });
  return hasPosted;
}

void NSQueuedNotifications::tidy() {
  _soon.tidy();
  _idle.tidy();
}

void NSQueuedNotifications::close() {
  _runLoop = nullptr;
  Line removed;
  const auto takeAll = [&](Line& line) {
    while (!line.empty()) take(line.front(), removed);
  };
  _soon.forEach(takeAll);
  _idle.forEach(takeAll);
}
