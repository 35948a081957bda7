#include "Foundation/NSRunLoop.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSAutoreleasePool.h"
#include "Foundation/NSChains.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSDelay.h"
#include "Foundation/NSModeGroups.h"
#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSRunLoopInbox.h"
#include "Foundation/NSSchedule.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSWaiter.h"

#include <algorithm>
#include <deque>

namespace {

// A delayed request. It stands in the run loop's schedule and, to be cancelled, in its chains.
class DelayedPerform final : public NSScheduledEvent, public NSChainLink<DelayedPerform> {
 public:
  DelayedPerform(NSChains<DelayedPerform>& chains, const NSRef<NSObject>& target,
                 NSSelector selector, const NSRef<NSObject>& argument)
      : _chains(&chains), _target(target), _selector(selector), _argument(argument) {
    chains.add(*this, hashOf(target, argument));
  }
  DelayedPerform(const DelayedPerform&) = delete;
  ~DelayedPerform() override { _chains->remove(*this); }

  static NSUInteger hashOf(const NSRef<NSObject>& target, const NSRef<NSObject>& argument) {
    return std::hash<NSRef<NSObject>>()(target) * 31 + NSHashObject()(argument);
  }

  void happen() noexcept override {
    _chains->remove(*this);
    _selector.perform(_target, _argument);
  }
  /// The caller holds the request.
  void cancel() {
    unschedule();
    _chains->remove(*this);
    const auto target = std::move(_target);
    const auto argument = std::move(_argument);
  }

  bool isFor(const NSRef<NSObject>& target, NSSelector selector) const noexcept {
    return _target == target && _selector == selector;
  }
  bool takes(const NSRef<NSObject>& argument) const {
    return NSEqualObjects()(_argument, argument);
  }

 private:
  NSChains<DelayedPerform>* const _chains;
  NSRef<NSObject> _target;
  const NSSelector _selector;
  NSRef<NSObject> _argument;
};

// A request from the inbox, with its turn.
struct Request {
  NSWork work;
  std::uint64_t turn;
};

// What waits for one list of modes.
struct Waiting {
  NSSchedule schedule;
  std::deque<Request> requests;
};

// What may go on in a pass.
using Groups = std::vector<Waiting*>;

void fireEvents(const Groups& groups, std::uint64_t limit, NSRunLoop::Time time) {
  for (;;) {
    NSSchedule* first = nullptr;
    for (Waiting* const group : groups) {
      NSSchedule& schedule = group->schedule;
      if (schedule.isEmpty() || (first != nullptr && first->first() < schedule.first())) continue;
      first = &schedule;
    }
    // What has been scheduled in this pass is not earlier than its time.
    if (first == nullptr || first->first().time > time || first->first().turn >= limit) return;
    first->takeFirst()->happen();
  }
}

// Whether there were any.
bool performRequests(const Groups& groups, std::uint64_t limit) {
  for (bool hasPerformed = false;; hasPerformed = true) {
    std::deque<Request>* first = nullptr;
    for (Waiting* const group : groups) {
      auto& requests = group->requests;
      if (requests.empty() || (first != nullptr && first->front().turn < requests.front().turn)) {
        continue;
      }
      first = &requests;
    }
    if (first == nullptr || first->front().turn >= limit) return hasPerformed;
    NSWork work = std::move(first->front().work);
    first->pop_front();
    work.perform();
  }
}

bool isCommonModes(const NSRef<NSString>& mode) {
  return mode->isEqualToString(NSRunLoopCommonModes());
}

}  // namespace

struct NSRunLoop::Core {
  Groups groupsIn(const NSRef<NSString>& mode) { return waiting.in(mode, commonModes); }

  NSRunLoopInbox inbox;
  // Room for what the inbox gives, and for requests that may be cancelled.
  std::vector<NSRunLoopInbox::Item> spare;
  std::vector<NSRef<DelayedPerform>> candidates;
  // Outlives the requests, which stand in it.
  NSChains<DelayedPerform> delayedPerforms;
  NSModeGroups<Waiting> waiting;
  NSModeSet commonModes{NSDefaultRunLoopMode()};
  NSRef<NSString> currentMode;
  std::uint64_t nextTurn = 0;
  std::function<Time()> clock;
  NSRef<NSNotificationQueue> notifications;
  bool isHosted = false;
  bool isStopped = false;
  bool isEnded = false;
};

// The mode of a pass or a run, which may lie within another one.
class NSRunLoop::Running {
 public:
  Running(Core& core, const NSRef<NSString>& mode)
      : _core(&core), _former(std::exchange(core.currentMode, mode)) {}
  Running(const Running&) = delete;
  ~Running() { _core->currentMode = std::move(_former); }

 private:
  Core* _core;
  NSRef<NSString> _former;
};

const NSRef<NSString>& NSDefaultRunLoopMode() {
  static const NSNeverDestroyed<NSRef<NSString>> mode(u"NSDefaultRunLoopMode"_ns);
  return *mode;
}

const NSRef<NSString>& NSRunLoopCommonModes() {
  static const NSNeverDestroyed<NSRef<NSString>> modes(u"NSRunLoopCommonModes"_ns);
  return *modes;
}

const NSRef<NSArray>& NSDefaultRunLoopModes() {
  static const NSNeverDestroyed<NSRef<NSArray>> modes(NSMake<NSArray>({NSDefaultRunLoopMode()}));
  return *modes;
}

NSRunLoop::NSRunLoop() : _core(std::make_unique<Core>()) {}

NSRunLoop::~NSRunLoop() = default;

NSRef<NSRunLoop> NSRunLoop::currentRunLoop() { return NSThread::currentThread()->runLoop(); }

NSRef<NSRunLoop> NSRunLoop::mainRunLoop() { return NSThread::mainThread()->runLoop(); }

void NSRunLoop::post(NSWork&& work, const NSRef<NSArray>& modes) {
  if (modes && modes->count() == 0) return;
  _core->inbox.post({std::move(work), modes ? modes->copy() : nullptr});
}

void NSRunLoop::postAndWait(NSWork&& work, const NSRef<NSArray>& modes) {
  struct Wake {
    void operator()(NSWaiter* waiter) const { waiter->wake(); }
  };
  NSWaiter waiter;
  // Also when it is dropped.
  std::unique_ptr<NSWaiter, Wake> done(&waiter);
  post(NSWork([&work, done = std::move(done)] { work.perform(); }), modes);
  waiter.wait();
}

void NSRunLoop::addCommonMode(const NSRef<NSString>& mode) {
  requireOwnThread("addCommonMode:");
  if (!mode) NSRaiseNilArgument("mode", "addCommonMode:");
  _core->commonModes.add(mode->copy());
}

NSRef<NSString> NSRunLoop::currentMode() const { return _core->currentMode; }

void NSRunLoop::requireOwnThread(const char* operation) const {
  if (NSThread::currentThread()->runLoop().get() == this) return;
  NSException::raise(NSInternalInconsistencyException,
                     std::string("the run loop is another thread's (in '") + operation + "')");
}

NSRunLoop::Time NSRunLoop::now() const {
  return _core->clock ? _core->clock() : std::chrono::steady_clock::now();
}

void NSRunLoop::setClock(std::function<Time()> clock) {
  requireOwnThread("setClock:");
  _core->clock = std::move(clock);
}

void NSRunLoop::schedule(NSRef<NSScheduledEvent> event, const NSRef<NSArray>& modes, Time time) {
  if (_core->isEnded) return;
  _core->waiting.of(modes).schedule.add(std::move(event), {time, _core->nextTurn++});
  signal();
}

// During a pass a host learns what is next from the pass.
void NSRunLoop::signal() {
  if (_core->isHosted && !_core->currentMode) _core->inbox.signal();
}

void NSRunLoop::schedulePerform(const NSRef<NSObject>& target, NSSelector selector,
                                const NSRef<NSObject>& argument, NSDelay delay,
                                const NSRef<NSArray>& modes) {
  schedule(NSMake<DelayedPerform>(_core->delayedPerforms, target, selector, argument), modes,
           now() + delay.duration());
}

void NSRunLoop::cancelPerforms(const NSRef<NSObject>& target, NSSelector selector,
                               const NSRef<NSObject>& argument) {
  // Comparing arguments and letting them go may run anything: not while the chains are walked.
  auto candidates = std::move(_core->candidates);
  const auto collect = [&](DelayedPerform& request) {
    if (request.isFor(target, selector)) candidates.push_back(share(&request));
  };
  _core->delayedPerforms.forEach(DelayedPerform::hashOf(target, argument), collect);
  for (const auto& request : candidates) {
    if (request->isScheduled() && request->takes(argument)) request->cancel();
  }
  candidates.clear();
  _core->candidates = std::move(candidates);
}

const NSRef<NSNotificationQueue>& NSRunLoop::notificationQueue() {
  if (!_core->notifications) _core->notifications = NSMake<NSNotificationQueue>(*this);
  return _core->notifications;
}

// Gives everything that has come its turn.
void NSRunLoop::collect() {
  std::vector<NSRunLoopInbox::Item> items = std::move(_core->spare);
  _core->inbox.takeInto(items);
  for (auto& item : items) {
    _core->waiting.of(item.modes).requests.push_back({std::move(item.work), _core->nextTurn++});
  }
  items.clear();
  _core->spare = std::move(items);
}

bool NSRunLoop::pass(const NSRef<NSString>& mode) {
  const NSAutoreleasePool pool;
  collect();
  const Groups groups = _core->groupsIn(mode);
  const std::uint64_t limit = _core->nextTurn;
  fireEvents(groups, limit, now());
  const bool hasPerformed = performRequests(groups, limit);
  if (_core->notifications) _core->notifications->postSoon(mode, _core->commonModes);
  return hasPerformed;
}

// Whether a pass in the mode would have something to do at once, timers aside.
bool NSRunLoop::hasWork(const NSRef<NSString>& mode) {
  collect();
  const Groups groups = _core->groupsIn(mode);
  return std::ranges::any_of(groups,
                             [](const Waiting* group) { return !group->requests.empty(); }) ||
         (_core->notifications && _core->notifications->hasSoon(mode, _core->commonModes));
}

bool NSRunLoop::postIdle(const NSRef<NSString>& mode) {
  const NSAutoreleasePool pool;
  return _core->notifications && _core->notifications->postIdle(mode, _core->commonModes);
}

// The time of the next timer or delayed request.
std::optional<NSRunLoop::Time> NSRunLoop::nextTime(const NSRef<NSString>& mode) {
  std::optional<Time> next;
  for (Waiting* const group : _core->groupsIn(mode)) {
    if (group->schedule.isEmpty()) continue;
    const Time time = group->schedule.first().time;
    if (!next || time < *next) next = time;
  }
  return next;
}

NSRef<NSDate> NSRunLoop::limitDateForMode(const NSRef<NSString>& mode) {
  requireOwnThread("limitDateForMode:");
  if (!mode) NSRaiseNilArgument("mode", "limitDateForMode:");
  if (isCommonModes(mode) || _core->isEnded) return nullptr;
  const Running running(*_core, mode);
  pass(mode);
  const auto next = nextTime(mode);
  if (!next) return NSDate::distantFuture();
  return NSDate::dateWithTimeIntervalSinceNow(
      std::chrono::duration<NSTimeInterval>(*next - now()).count());
}

NSRunLoop::Time NSRunLoop::timeOf(const NSRef<NSDate>& date) const {
  return now() + NSDelay(date->timeIntervalSinceNow()).duration();
}

// Until a request has been performed, or that time. Whether the mode could be run in.
bool NSRunLoop::runOnce(const NSRef<NSString>& mode, Time limit) {
  if (isCommonModes(mode) || _core->isEnded) return false;
  const Running running(*_core, mode);
  for (;;) {
    if (pass(mode) || _core->isStopped) return true;
    const Time time = now();
    if (time >= limit) return true;
    if (hasWork(mode) || postIdle(mode)) continue;
    const Time next = std::min(limit, nextTime(mode).value_or(limit));
    if (next > time) _core->inbox.wait(next - time);
  }
}

bool NSRunLoop::runMode_beforeDate(const NSRef<NSString>& mode, const NSRef<NSDate>& limitDate) {
  requireOwnThread("runMode:beforeDate:");
  if (!mode) NSRaiseNilArgument("mode", "runMode:beforeDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runMode:beforeDate:");
  const bool hasRun = runOnce(mode, timeOf(limitDate));
  _core->isStopped = false;
  return hasRun;
}

void NSRunLoop::runUntilDate(const NSRef<NSDate>& limitDate) {
  requireOwnThread("runUntilDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runUntilDate:");
  const Time limit = timeOf(limitDate);
  while (runOnce(NSDefaultRunLoopMode(), limit) && !_core->isStopped && now() < limit) {
  }
  _core->isStopped = false;
}

void NSRunLoop::run() { runUntilDate(NSDate::distantFuture()); }

void NSRunLoop::stop() {
  requireOwnThread("stop");
  _core->isStopped = static_cast<bool>(_core->currentMode);
}

int NSRunLoop::wakeUpDescriptor() {
  requireOwnThread("wakeUpDescriptor");
  _core->isHosted = true;
  return _core->inbox.descriptor();
}

std::optional<std::chrono::nanoseconds> NSRunLoop::performPass() {
  const auto& mode = NSDefaultRunLoopMode();
  requireOwnThread("performPass");
  if (_core->isEnded) return std::nullopt;
  const Running running(*_core, mode);
  pass(mode);
  if (!hasWork(mode)) postIdle(mode);
  if (hasWork(mode)) return std::chrono::nanoseconds::zero();
  const auto next = nextTime(mode);
  if (!next) return std::nullopt;
  return std::max(*next - now(), std::chrono::nanoseconds::zero());
}

void NSRunLoop::end() {
  _core->isEnded = true;
  _core->inbox.close();
  if (_core->notifications) _core->notifications->close();
  _core->waiting.forEach([](Waiting& group) {
    // One by one: what dies may come back here.
    while (!group.requests.empty()) {
      const NSWork dropped = std::move(group.requests.front().work);
      group.requests.pop_front();
    }
    while (!group.schedule.isEmpty()) (void)group.schedule.takeFirst();
  });
}
