#include "Foundation/Threads/RunLoopCore.h"

#include <algorithm>
#include <memory>
#include <typeinfo>
#include <utility>

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/ManualTime.h>
#include <Foundation/Threads/QueuedNotifications.h>

namespace {

constexpr auto nothing = std::chrono::nanoseconds::zero();

constexpr auto firstMoment = [](auto& group) -> std::optional<NSSchedule::Moment> {
  if (group.schedule.isEmpty()) return std::nullopt;
  return group.schedule.first();
};

constexpr auto firstTurn = [](const auto& group) -> std::optional<std::uint64_t> {
  if (group.requests.empty()) return std::nullopt;
  return group.requests.front().turn;
};

// Work of a caller who waits, and who goes on when it has been performed or dropped.
struct AwaitedWork {
  struct Wake {
    void operator()(NSBlockedThread* thread) const { thread->wake(); }
  };
  using Caller = std::unique_ptr<NSBlockedThread, Wake>;

  void operator()() const { work->perform(); }

  NSOnceClosure* work;
  Caller caller;
};

template <class Request>
void dropAwaited(NSChunkedQueue<Request>& requests) {
  NSChunkedQueue<Request> others;
  for (; !requests.empty(); requests.pop_front()) {
    Request& request = requests.front();
    if (request.work.type() != typeid(AwaitedWork)) others.emplace_back(std::move(request));
  }
  requests.append(others);
}

}  // namespace

// The mode of some passes, which may lie within another one.
class NSRunLoopCore::Mode {
 public:
  Mode(NSRunLoopCore& core, const NSRef<NSString>& mode)
      : _core(&core), _former(std::exchange(core._currentMode, mode)) {}
  Mode(const Mode&) = delete;
  ~Mode() {
    _core->_currentMode = std::move(_former);
    if (_core->_currentMode) return;
    // Between passes nobody walks over the groups.
    _core->_waiting.tidy();
    if (_core->_notifications) NSAccess::core(*_core->_notifications).tidy();
  }

 private:
  NSRunLoopCore* _core;
  NSRef<NSString> _former;
};

// A run, which may lie within another one and is stopped by itself.
class NSRunLoopCore::Run {
 public:
  explicit Run(NSRunLoopCore& core) : _core(&core), _former(std::exchange(core._run, this)) {}
  Run(const Run&) = delete;
  ~Run() {
    _core->_run = _former;
    // What it found and left is news to a host.
    _core->signal();
  }

  bool isStopped = false;

 private:
  NSRunLoopCore* _core;
  Run* _former;
};

void NSRunLoopCore::post(NSOnceClosure&& work, const NSRef<NSArray>& modes) {
  if (modes && modes->count() == 0) return;
  _inbox.post(std::move(work), modes ? NSCopiedModes(modes) : nullptr);
}

bool NSRunLoopCore::postAndWait(NSOnceClosure&& work, const NSRef<NSArray>& modes) {
  NSBlockedThread caller(_server);
  if (caller.isEndless()) return false;
  post(NSOnceClosure(AwaitedWork{&work, AwaitedWork::Caller(&caller)}), modes);
  caller.wait();
  return true;
}

NSRunLoopCore::Time NSRunLoopCore::now() const {
  return _clock ? _clock() : std::chrono::steady_clock::now();
}

void NSRunLoopCore::setClock(std::function<Time()> clock) {
  if (_manualClock) NSAccess::core(*_manualClock).remove(_inbox);
  _manualClock = nullptr;
  const auto former = std::exchange(_clock, std::move(clock));
  // The host has been told a time by that one.
  _foreseen = Time::max();
  signal();
}

void NSRunLoopCore::setClock(const NSRef<NSManualClock>& clock) {
  if (!clock || _isEnded) return setClock(std::function<Time()>());
  auto& time = NSAccess::core(*clock);
  setClock([&time] { return time.now(); });
  time.add(_inbox);
  _manualClock = clock;
}

void NSRunLoopCore::schedule(NSRef<NSScheduledEvent> event, const NSRef<NSArray>& modes,
                             Time time) {
  if (_isEnded) return;
  _waiting.of(modes).schedule.add(std::move(event), {time, _nextTurn++});
  signal();
}

void NSRunLoopCore::addSource(const NSRef<NSDescriptorSource>& source,
                              const NSRef<NSString>& mode) {
  if (_isEnded) return;
  // By which other threads end a wait for descriptors.
  (void)_inbox.descriptor();
  _sources.add(source, mode);
}

NSRef<NSNotificationQueue> NSRunLoopCore::notificationQueue() {
  if (!_notifications) {
    _notifications = NSMake<NSNotificationQueue>(NSPasskey<NSRunLoopCore>(), *this);
    if (_isEnded) NSAccess::core(*_notifications).close();
  }
  return _notifications;
}

int NSRunLoopCore::descriptor() {
  const int descriptor = _inbox.descriptor();
  // There may be work from before.
  if (!std::exchange(_isHosted, true)) signal();
  return descriptor;
}

void NSRunLoopCore::signal() {
  if (_isHosted) _inbox.signal();
}

bool NSRunLoopCore::canRunIn(const NSRef<NSString>& mode) const {
  return !mode->isEqualToString(NSRunLoopCommonModes()) && !_isEnded;
}

// Puts everything that has come into its group, and takes what the descriptor has told.
void NSRunLoopCore::collect() {
  _isUntold = _isHosted;
  NSChunkedQueue<NSRunLoopInbox::RequestInModes> others;
  _nextRequestTurn = _inbox.takeInto(_waiting.of(nullptr).requests, others);
  for (; !others.empty(); others.pop_front()) {
    auto& other = others.front();
    _waiting.of(other.modes).requests.emplace_back(std::move(other.work), other.turn);
  }
}

void NSRunLoopCore::fireEvents(const Groups& groups, std::uint64_t limit, Time time) {
  while (Waiting* const group = NSFirstOf(groups, firstMoment)) {
    // What has been scheduled in this pass is not earlier than its time.
    const auto first = group->schedule.first();
    if (first.time > time || first.turn >= limit) return;
    const auto event = group->schedule.takeFirst();
    tellNestedHost();
    event->happen();
  }
}

// Whether there were any.
bool NSRunLoopCore::performRequests(const Groups& groups, std::uint64_t limit) {
  bool hasPerformed = false;
  while (Waiting* const group = NSFirstOf(groups, firstTurn)) {
    if (group->requests.front().turn >= limit) break;
    NSOnceClosure work = std::move(group->requests.front().work);
    group->requests.pop_front();
    tellNestedHost();
    work.perform();
    hasPerformed = true;
  }
  return hasPerformed;
}

// Whether there were any.
bool NSRunLoopCore::postNotifications(NSPostingStyle style, const NSRef<NSString>& mode) {
  return _notifications && NSAccess::core(*_notifications).post(style, mode, _commonModes);
}

// Whether it has performed a request or found a descriptor ready.
bool NSRunLoopCore::pass(const NSRef<NSString>& mode) {
  const NSAutoreleasePool pool;
  collect();
  const Groups groups = groupsIn(mode);
  const std::uint64_t limit = _nextRequestTurn;
  fireEvents(groups, _nextTurn, now());
  bool hasPerformed = performRequests(groups, limit);
  if (!_sources.isEmpty()) {
    tellNestedHost();
    if (_sources.fire(mode, _commonModes)) hasPerformed = true;
  }
  postNotifications(NSPostASAP, mode);
  return hasPerformed;
}

bool NSRunLoopCore::hasNotifications(NSPostingStyle style, const NSRef<NSString>& mode) {
  return _notifications && NSAccess::core(*_notifications).has(style, mode, _commonModes);
}

// Whether a pass in the mode would have something to do at once, timers and sources aside, among
// what has been collected.
bool NSRunLoopCore::hasRequests(const NSRef<NSString>& mode) {
  return NSFirstOf(groupsIn(mode), firstTurn) != nullptr || hasNotifications(NSPostASAP, mode);
}

// Whether a pass in the mode would have something to do at once, timers aside.
bool NSRunLoopCore::hasWork(const NSRef<NSString>& mode) {
  collect();
  return hasRequests(mode) || (!_sources.isEmpty() && _sources.isReady(mode, _commonModes));
}

std::optional<NSRunLoopCore::Time> NSRunLoopCore::nextTime(const NSRef<NSString>& mode) {
  const Waiting* const group = NSFirstOf(groupsIn(mode), firstMoment);
  return group != nullptr ? std::optional(group->schedule.first().time) : std::nullopt;
}

// None if there is no time.
std::optional<std::chrono::nanoseconds> NSRunLoopCore::until(std::optional<Time> time) const {
  if (!time) return std::nullopt;
  return NSTimeUntil(*time, now());
}

std::optional<NSRunLoopCore::Time> NSRunLoopCore::makePass(const NSRef<NSString>& mode) {
  {
    const Mode current(*this, mode);
    pass(mode);
  }
  // What it found and left is news to a host.
  signal();
  return nextTime(mode);
}

// How long nothing will have to be done; none if that is for ever. Uses the time for what waits for
// an idle moment.
std::optional<std::chrono::nanoseconds> NSRunLoopCore::idleTime(const NSRef<NSString>& mode) {
  if (hasWork(mode)) return nothing;
  const auto left = until(nextTime(mode));
  if (left == nothing) return nothing;
  const NSAutoreleasePool pool;
  return postNotifications(NSPostWhenIdle, mode) ? nothing : left;
}

std::optional<std::chrono::nanoseconds> NSRunLoopCore::makeHostedPass(const NSRef<NSString>& mode) {
  const Mode current(*this, mode);
  pass(mode);
  const bool isIdle = idleTime(mode) != nothing;
  // Looks once more: what the descriptor has told meanwhile, also that the clock has moved, must be
  // in the result.
  const bool hasNews = hasWork(mode);
  const auto next = nextTime(mode);
  if (NSIsSameMode(mode, NSDefaultRunLoopMode())) {
    // By a clock that somebody moves no host knows when to come.
    _foreseen = next && !_manualClock ? *next : Time::max();
  } else if (hasUnforeseenWork(NSDefaultRunLoopMode(), _foreseen)) {
    signal();
  }
  return isIdle && !hasNews ? until(next) : nothing;
}

// Whether the mode has work of which a host does not know that comes at that time.
bool NSRunLoopCore::hasUnforeseenWork(const NSRef<NSString>& mode, Time foreseen) {
  const auto next = nextTime(mode);
  return (next && *next < foreseen) || hasRequests(mode) || hasNotifications(NSPostWhenIdle, mode);
}

void NSRunLoopCore::tellNestedHost() {
  if (!std::exchange(_isUntold, false)) return;
  const auto& usual = NSDefaultRunLoopMode();
  if (hasUnforeseenWork(_currentMode, Time::max()) ||
      (!NSIsSameMode(_currentMode, usual) && hasUnforeseenWork(usual, _foreseen))) {
    signal();
  }
}

void NSRunLoopCore::wait(const NSRef<NSString>& mode, std::chrono::nanoseconds longest) {
  // Such a clock tells itself when it has moved.
  if (_manualClock && longest > nothing) longest = NSDelay::longest;
  if (_sources.isEmpty()) {
    _inbox.wait(longest);
  } else {
    _inbox.wait(longest, _sources.polls(mode, _commonModes));
  }
}

bool NSRunLoopCore::hasCome(std::optional<Time> time) const { return time && now() >= *time; }

// Passes until a request has been performed, or that time.
void NSRunLoopCore::runOnce(const Run& run, const NSRef<NSString>& mode,
                            std::optional<Time> limit) {
  const Mode current(*this, mode);
  while (!pass(mode) && !run.isStopped && !hasCome(limit)) {
    const auto idle = idleTime(mode);
    if (run.isStopped) break;
    const auto left = until(limit).value_or(NSDelay::longest);
    wait(mode, idle ? std::min(*idle, left) : left);
  }
}

void NSRunLoopCore::run(const NSRef<NSString>& mode, std::optional<Time> limit, bool goesOn) {
  Run run(*this);
  do {
    runOnce(run, mode, limit);
  } while (goesOn && !run.isStopped && !hasCome(limit));
}

void NSRunLoopCore::stop() noexcept {
  if (_run != nullptr) _run->isStopped = true;
}

void NSRunLoopCore::end() {
  _isEnded = true;
  _server.clear();
  _inbox.close();
  NSRunLoopInbox::Requests common;
  NSChunkedQueue<NSRunLoopInbox::RequestInModes> others;
  _inbox.takeInto(common, others);
  _waiting.forEach([&](Waiting& group) { common.append(group.requests); });
  // First of all, as what dies may wait for those callers.
  dropAwaited(common);
  dropAwaited(others);
  if (_manualClock) setClock(std::function<Time()>());
  _sources.end();
  if (_notifications) NSAccess::core(*_notifications).close();
  _waiting.forEach([](Waiting& group) {
    // One by one: what dies may come back here.
    while (!group.schedule.isEmpty()) group.schedule.takeFirst()->drop();
  });
}
