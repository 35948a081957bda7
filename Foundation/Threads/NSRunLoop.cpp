#include "Foundation/NSRunLoop.h"

#include <algorithm>
#include <atomic>
#include <deque>

#include <Foundation/NSArray.h>
#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSNotificationQueue.h>
#include <Foundation/NSThread.h>
#include <Foundation/NSTimer.h>
#include <Foundation/Threads/BlockedThread.h>
#include <Foundation/Threads/DelayedPerforms.h>
#include <Foundation/Threads/RunLoopInbox.h>
#include <Foundation/Threads/RunLoopModes.h>
#include <Foundation/Threads/Schedule.h>

namespace {

// A request from the inbox, with its turn.
struct Request {
  NSOnceClosure work;
  std::uint64_t turn;
};

// What waits for one list of modes.
struct Waiting {
  bool empty() noexcept { return requests.empty() && schedule.isEmpty(); }

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
    NSOnceClosure work = std::move(first->front().work);
    first->pop_front();
    work.perform();
  }
}

// What a burst has needed beyond is given back.
constexpr std::size_t largestSpare = 10'000;

bool isCommonModes(const NSRef<NSString>& mode) {
  return mode->isEqualToString(NSRunLoopCommonModes());
}

}  // namespace

struct NSRunLoop::Core {
  Groups groupsIn(const NSRef<NSString>& mode) { return waiting.in(mode, commonModes); }
  // Between passes, when nobody walks over the groups.
  void tidy() {
    waiting.tidy();
    if (notifications) notifications->tidy();
  }

  NSRunLoopInbox inbox;
  NSServingThread server;
  // Room for what the inbox gives.
  std::vector<NSRunLoopInbox::Item> spare;
  // Outlives the requests, which stand in it.
  NSDelayedPerforms delayedPerforms;
  NSModePartition<Waiting> waiting;
  NSModeSet commonModes{NSDefaultRunLoopMode()};
  NSRef<NSString> currentMode;
  std::uint64_t nextTurn = 0;
  std::function<Time()> clock;
  NSRef<NSNotificationQueue> notifications;
  Run* run = nullptr;
  bool isHosted = false;
  std::atomic<bool> isEnded = false;
};

// The mode of some passes, which may lie within another one.
class NSRunLoop::Mode {
 public:
  Mode(Core& core, const NSRef<NSString>& mode)
      : _core(&core), _former(std::exchange(core.currentMode, mode)) {}
  Mode(const Mode&) = delete;
  ~Mode() {
    _core->currentMode = std::move(_former);
    if (!_core->currentMode) _core->tidy();
  }

 private:
  Core* _core;
  NSRef<NSString> _former;
};

// A run, which may lie within another one and is stopped by itself.
class NSRunLoop::Run {
 public:
  explicit Run(NSRunLoop& runLoop) : _runLoop(&runLoop) {
    _former = std::exchange(runLoop._core->run, this);
  }
  Run(const Run&) = delete;
  ~Run() {
    _runLoop->_core->run = _former;
    // What it found and left is news to a host.
    _runLoop->signal();
  }

  void stop() noexcept { _isStopped = true; }
  bool isStopped() const noexcept { return _isStopped; }

 private:
  NSRunLoop* _runLoop;
  Run* _former = nullptr;
  bool _isStopped = false;
};

const NSRef<NSString>& NSDefaultRunLoopMode() {
  return NSConstantString<u"NSDefaultRunLoopMode">();
}

const NSRef<NSString>& NSRunLoopCommonModes() {
  return NSConstantString<u"NSRunLoopCommonModes">();
}

NSRunLoop::NSRunLoop() : _core(std::make_unique<Core>()) {}

NSRunLoop::~NSRunLoop() { end(); }

NSRef<NSRunLoop> NSRunLoop::currentRunLoop() { return NSThread::currentThread()->runLoop(); }

NSRef<NSRunLoop> NSRunLoop::mainRunLoop() { return NSThread::mainThread()->runLoop(); }

void NSRunLoop::post(NSOnceClosure&& work, const NSRef<NSArray>& modes) {
  if (modes && modes->count() == 0) return;
  _core->inbox.post({std::move(work), modes ? NSCopiedModes(modes) : nullptr});
}

bool NSRunLoop::postAndWait(NSOnceClosure&& work, const NSRef<NSArray>& modes) {
  struct Wake {
    void operator()(NSBlockedThread* waiter) const { waiter->wake(); }
  };
  NSBlockedThread waiter(_core->server);
  if (waiter.isEndless()) return false;
  // Also when it is dropped.
  std::unique_ptr<NSBlockedThread, Wake> done(&waiter);
  post(NSOnceClosure([&work, done = std::move(done)] { work.perform(); }), modes);
  waiter.wait();
  return true;
}

void NSRunLoop::addCommonMode(const NSRef<NSString>& mode) {
  requireOwnThread("addCommonMode:");
  if (!mode) NSRaiseNilArgument("mode", "addCommonMode:");
  _core->commonModes.add(mode->copy());
}

void NSRunLoop::addTimer_forMode(const NSRef<NSTimer>& timer, const NSRef<NSString>& mode) {
  requireOwnThread("addTimer:forMode:");
  if (!timer) NSRaiseNilArgument("timer", "addTimer:forMode:");
  if (!mode) NSRaiseNilArgument("mode", "addTimer:forMode:");
  timer->addTo(*this, mode);
}

NSRef<NSString> NSRunLoop::currentMode() const { return _core->currentMode; }

void NSRunLoop::requireOwnThread(const char* operation) const {
  // What dies with a thread may still use its run loop, to no effect.
  if (_core->isEnded || NSThread::currentThread()->runLoop().get() == this) return;
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

void NSRunLoop::signal() {
  if (_core->isHosted) _core->inbox.signal();
}

void NSRunLoop::schedulePerform(NSRef<NSObject> target, NSSelector selector,
                                NSRef<NSObject> argument, NSDelay delay,
                                const NSRef<NSArray>& modes) {
  schedule(_core->delayedPerforms.make(std::move(target), selector, std::move(argument)), modes,
           now() + delay.duration());
}

void NSRunLoop::cancelPerforms(const NSRef<NSObject>& target, NSSelector selector,
                               const NSRef<NSObject>& argument) {
  _core->delayedPerforms.cancel(target, selector, argument);
}

const NSRef<NSNotificationQueue>& NSRunLoop::notificationQueue() {
  if (!_core->notifications) {
    _core->notifications = NSMake<NSNotificationQueue>(*this);
    if (_core->isEnded) _core->notifications->close();
  }
  return _core->notifications;
}

// Gives everything that has come its turn.
void NSRunLoop::collect() {
  auto items = std::exchange(_core->spare, {});
  _core->inbox.takeInto(items);
  for (auto& item : items) {
    _core->waiting.of(item.modes).requests.push_back({std::move(item.work), _core->nextTurn++});
  }
  items.clear();
  if (items.capacity() <= largestSpare) _core->spare = std::move(items);
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
  // What runs may change the caller's own reference.
  const auto held = NSRef<NSString>::share(mode.get());
  {
    const Mode current(*_core, held);
    pass(held);
  }
  // What it found and left is news to a host.
  signal();
  const auto next = nextTime(held);
  if (!next) return NSDate::distantFuture();
  return NSDate::dateWithTimeIntervalSinceNow(
      std::chrono::duration<NSTimeInterval>(*next - now()).count());
}

NSRunLoop::Time NSRunLoop::timeOf(const NSRef<NSDate>& date) const {
  return now() + NSDelay(date->timeIntervalSinceNow()).duration();
}

// Passes until a request has been performed, or that time. Whether the mode could be run in.
bool NSRunLoop::runOnce(const Run& run, const NSRef<NSString>& mode, Time limit) {
  if (isCommonModes(mode) || _core->isEnded) return false;
  const Mode current(*_core, mode);
  while (!pass(mode) && !run.isStopped() && now() < limit) {
    const auto idle = idleTime(mode);
    if (run.isStopped()) break;
    const auto left = limit - now();
    _core->inbox.wait(idle ? std::min(*idle, left) : left);
  }
  return true;
}

// How long nothing will have to be done; none if that is for ever. Uses the time for what waits for
// an idle moment.
std::optional<std::chrono::nanoseconds> NSRunLoop::idleTime(const NSRef<NSString>& mode) {
  constexpr auto none = std::chrono::nanoseconds::zero();
  if (hasWork(mode)) return none;
  const auto next = nextTime(mode);
  if (next && *next <= now()) return none;
  if (postIdle(mode)) return none;
  if (!next) return std::nullopt;
  return std::max(*next - now(), none);
}

bool NSRunLoop::runMode_beforeDate(const NSRef<NSString>& mode, const NSRef<NSDate>& limitDate) {
  requireOwnThread("runMode:beforeDate:");
  if (!mode) NSRaiseNilArgument("mode", "runMode:beforeDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runMode:beforeDate:");
  const Run run(*this);
  return runOnce(run, NSRef(mode), timeOf(limitDate));
}

void NSRunLoop::runUntilDate(const NSRef<NSDate>& limitDate) {
  requireOwnThread("runUntilDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runUntilDate:");
  const Run run(*this);
  const Time limit = timeOf(limitDate);
  while (runOnce(run, NSDefaultRunLoopMode(), limit) && !run.isStopped() && now() < limit) {
  }
}

void NSRunLoop::run() {
  requireOwnThread("run");
  runUntilDate(NSDate::distantFuture());
}

void NSRunLoop::stop() {
  requireOwnThread("stop");
  if (_core->run != nullptr) _core->run->stop();
}

int NSRunLoop::wakeUpDescriptor() {
  requireOwnThread("wakeUpDescriptor");
  const int descriptor = _core->inbox.descriptor();
  _core->isHosted = true;
  return descriptor;
}

std::optional<std::chrono::nanoseconds> NSRunLoop::performPass() {
  const auto& mode = NSDefaultRunLoopMode();
  requireOwnThread("performPass");
  if (_core->isEnded) return std::nullopt;
  const Mode current(*_core, mode);
  pass(mode);
  const auto result = idleTime(mode);
  // Looks once more: what the descriptor has told meanwhile must be in the result.
  return hasWork(mode) ? std::chrono::nanoseconds::zero() : result;
}

void NSRunLoop::begin(pid_t thread) { _core->server.set(thread); }

void NSRunLoop::end() {
  _core->isEnded = true;
  _core->server.clear();
  _core->inbox.close();
  if (_core->notifications) _core->notifications->close();
  _core->waiting.forEach([](Waiting& group) {
    // One by one: what dies may come back here.
    while (!group.requests.empty()) {
      const NSOnceClosure dropped = std::move(group.requests.front().work);
      group.requests.pop_front();
    }
    while (!group.schedule.isEmpty()) group.schedule.takeFirst()->drop();
  });
}
