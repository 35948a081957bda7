#include "Foundation/Threads/QueuedNotifications.h"

#include <optional>
#include <utility>

#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/RunLoopCore.h>
#include <Foundation/detail/OnceClosure.h>

// A notification that waits, in its line and in the table of each way to be the same as another.
struct NSQueuedNotifications::Queued : NSIntrusiveHashLink<Queued, ByName>,
                                       NSIntrusiveHashLink<Queued, BySender>,
                                       NSIntrusiveHashLink<Queued, ByBoth> {
  explicit Queued(Line& itsLine) : line(&itsLine) {}

  NSRef<NSNotification> notification;
  std::uint64_t turn = 0;
  Line* line;
  Line::iterator self;
};

struct NSQueuedNotifications::Hashes {
  explicit Hashes(const NSNotification& notification)
      : name(NSAccess::name(notification)->hash()),
        sender(std::hash<const NSObject*>()(NSAccess::object(notification).get())),
        both(name * 31 + sender) {}
  NSUInteger name;
  NSUInteger sender;
  NSUInteger both;
};

namespace {

constexpr std::uint32_t onNameAndSender =
    NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender;

bool isSame(const NSNotification& a, const NSNotification& b, std::uint32_t mask) {
  const bool mindsName = (mask & NSNotificationCoalescingOnName) != 0;
  const bool mindsSender = (mask & NSNotificationCoalescingOnSender) != 0;
  const auto& name = NSAccess::name(a);
  const auto& other = NSAccess::name(b);
  return (!mindsSender || NSAccess::object(a).is(NSAccess::object(b))) &&
         (!mindsName || name.is(other) || name->isEqualToString(other));
}

constexpr auto firstTurn = [](const auto& line) -> std::optional<std::uint64_t> {
  if (line.empty()) return std::nullopt;
  return line.front().turn;
};

}  // namespace

NSQueuedNotifications::NSQueuedNotifications(NSRunLoopCore& runLoop) : _runLoop(&runLoop) {}

NSQueuedNotifications::~NSQueuedNotifications() = default;

// All that may run out of memory; nothing finds the place yet.
NSQueuedNotifications::Queued& NSQueuedNotifications::make(Line& line) {
  _names.makeRoom();
  _senders.makeRoom();
  _both.makeRoom();
  Queued& queued = line.emplace_back(line);
  queued.self = std::prev(line.end());
  return queued;
}

// To the end of the line. Gives the notification that stood in this place.
NSRef<NSNotification> NSQueuedNotifications::put(NSRef<NSNotification> notification,
                                                 const Hashes& hashes, Queued& place, Line& line) {
  _names.put(place, hashes.name);
  _senders.put(place, hashes.sender);
  _both.put(place, hashes.both);
  line.splice(line.end(), *place.line, place.self);
  place.line = &line;
  place.turn = _nextTurn++;
  return std::exchange(place.notification, std::move(notification));
}

// What goes dies with the result, when all is in order again.
void NSQueuedNotifications::take(Queued& queued, Line& taken) {
  if (_latest == &queued) _latest = nullptr;
  _names.remove(queued);
  _senders.remove(queued);
  _both.remove(queued);
  taken.splice(taken.end(), *queued.line, queued.self);
}

// The function may take what it gets.
template <class F>
void NSQueuedNotifications::forEachSame(const NSNotification& notification, const Hashes& hashes,
                                        std::uint32_t mask, F function) {
  const auto visit = [&](Queued& queued) {
    if (isSame(*queued.notification, notification, mask)) function(queued);
  };
  switch (mask & onNameAndSender) {
    case NSNotificationNoCoalescing:
      break;
    case NSNotificationCoalescingOnName:
      _names.forEach(hashes.name, visit);
      break;
    case NSNotificationCoalescingOnSender:
      _senders.forEach(hashes.sender, visit);
      break;
    default:
      _both.forEach(hashes.both, visit);
  }
}

void NSQueuedNotifications::remove(const NSNotification& notification, std::uint32_t mask) {
  Line removed;
  forEachSame(notification, Hashes(notification), mask,
              [&](Queued& queued) { take(queued, removed); });
}

// Whether the latest one stands at the end of this line, and is the only one that is the same:
// those before it went when it came.
bool NSQueuedNotifications::isLikeLatest(const NSNotification& notification, const Line& line,
                                         std::uint32_t mask) const {
  return _latest != nullptr && _latest->line == &line && _latestMask == mask &&
         (mask & onNameAndSender) != 0 &&
         isSame(*_latest->notification, notification, onNameAndSender);
}

void NSQueuedNotifications::add(const NSRef<NSNotification>& notification, NSPostingStyle style,
                                std::uint32_t mask, const NSRef<NSArray>& modes) {
  if (_runLoop == nullptr) return;
  Line& line = lines(style).of(modes);
  if (isLikeLatest(*notification, line, mask)) {
    _latest->turn = _nextTurn++;
    _runLoop->signal();
    if (!_latest->notification.is(notification)) _latest->notification = notification;
    return;
  }
  // What is removed may change the caller's own reference.
  auto held = NSRef<NSNotification>::share(notification.get());
  const Hashes hashes(*held);
  // One of those that are the same leaves its place to this one.
  Queued* place = nullptr;
  Line removed;
  forEachSame(*held, hashes, mask, [&](Queued& queued) {
    if (place == nullptr) {
      place = &queued;
    } else {
      take(queued, removed);
    }
  });
  if (place == nullptr) place = &make(line);
  _latest = place;
  _latestMask = mask;
  const auto former = put(std::move(held), hashes, *place, line);
  _runLoop->signal();
}

bool NSQueuedNotifications::has(NSPostingStyle style, const NSRef<NSString>& mode,
                                const NSModeSet& commonModes) {
  return NSFirstOf(lines(style).in(mode, commonModes), firstTurn) != nullptr;
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
      _runLoop->tellNestedHost();
      NSNotificationCenter::defaultCenter()->postNotification(taken.front().notification);
      hasPosted = true;
    }
  });
  return hasPosted;
}

void NSQueuedNotifications::forEach(
    NSBlockRef<void(const NSNotification&, NSPostingStyle, const NSRef<NSArray>&)> use) {
  for (const auto style : {NSPostASAP, NSPostWhenIdle}) {
    lines(style).forEachWithModes([&](const Line& line, const NSRef<NSArray>& modes) {
      for (const Queued& queued : line) use(*queued.notification.get(), style, modes);
    });
  }
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
