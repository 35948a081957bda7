#include "Foundation/NSTimer.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>
#include <Foundation/Threads/PendingWork.h>
#include <Foundation/Threads/RunLoopCore.h>
#include <Foundation/detail/OnceClosure.h>

namespace {

constexpr std::chrono::nanoseconds shortestInterval = std::chrono::microseconds(100);

}  // namespace

// A valid timer in a run loop.
class NSTimer::Event final : public NSScheduledEvent {
 public:
  Event(NSRunLoopCore& runLoop, NSRef<NSTimer> timer)
      : _runLoop(&runLoop), _timer(std::move(timer)), _time(runLoop.timeAfter(_timer->_interval)) {
    _timer->_event = this;
  }
  Event(const Event&) = delete;
  ~Event() override { leave(); }

  [[nodiscard]] bool isOf(const NSRunLoopCore& runLoop) const noexcept {
    return _runLoop == &runLoop;
  }

  void addMode(const NSRef<NSString>& mode) {
    if (!_modes) return setModes(listOf(mode), _time);
    if (_modes->containsObject(mode)) return;
    auto modes = _modes->mutableCopy();
    modes->addObject(mode->copy());
    setModes(std::move(modes), std::max(_time, _runLoop->now()));
  }

  /// The caller holds the event.
  void cancel() {
    unschedule();
    leave();
  }

  void drop() noexcept override {
    if (const auto timer = _timer) timer->invalidate();
  }
  [[nodiscard]] std::string purpose() const override {
    const std::chrono::duration<double> interval = _timer->_interval;
    return "timer of " + _timer->_block->objectClass().name()->utf8() +
           (_timer->_repeats ? ", every " + NSSecondsText(interval) : "");
  }
  void happen() noexcept override {
    _isFiring = true;
    NSCallOrTerminate([this] { NSRef(_timer)->fire(); });
    _isFiring = false;
    if (!_timer) return;
    const auto interval = _timer->_interval;
    _time += (_runLoop->now() - _time) / interval * interval;
    _time = NSTimeAfter(_time, interval);
    _runLoop->schedule(share(this), _modes, _time);
  }

 private:
  static NSRef<NSArray> listOf(const NSRef<NSString>& mode) {
    // Mostly it is this one.
    if (mode.is(NSDefaultRunLoopMode())) return NSDefaultRunLoopModes();
    return NSMake<NSArray>({mode->copy()});
  }
  void setModes(NSRef<NSArray> modes, NSRunLoop::Time time) {
    // While it fires, it is scheduled afterwards.
    if (!_isFiring) _runLoop->schedule(share(this), modes, time);
    _modes = std::move(modes);
  }
  void leave() noexcept {
    if (_timer) std::exchange(_timer, nullptr).get()->_event = nullptr;
  }

  NSRunLoopCore* _runLoop;
  NSRef<NSTimer> _timer;
  NSRef<NSArray> _modes;
  NSRunLoop::Time _time;
  bool _isFiring = false;
};

NSTimer::NSTimer(NSDelay interval, bool repeats, NSRef<NSBlock> block)
    : _repeats(repeats),
      _interval(std::max(interval.duration(), shortestInterval)),
      _block(std::move(block)) {}

NSTimer::~NSTimer() = default;

void NSTimer::fire() {
  const auto alive = self();
  const auto block = _block;
  if (!block) return;
  // What the block throws, or fires by running the run loop, finds it ended.
  if (!_repeats) invalidate();
  block->invoke(alive);
}

void NSTimer::invalidate() {
  const auto block = std::move(_block);
  if (const auto event = share(_event)) event->cancel();
}

NSTimeInterval NSTimer::timeInterval() const noexcept {
  return _repeats ? std::chrono::duration<NSTimeInterval>(_interval).count() : 0;
}

void NSTimer::addTo(NSRunLoopCore& runLoop, const NSRef<NSString>& mode) {
  if (!isValid()) return;
  if (_event == nullptr) {
    NSMake<Event>(runLoop, share(this))->addMode(mode);
  } else if (_event->isOf(runLoop)) {
    _event->addMode(mode);
  } else {
    NSException::raise(NSInvalidArgumentException,
                       "the timer is in another run loop (in 'addTimer:forMode:')");
  }
}
