#include "Foundation/NSRunLoop.h"

#include <string>

#include <Foundation/NSDate.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSString.h>
#include <Foundation/NSThread.h>
#include <Foundation/NSTimer.h>
#include <Foundation/Threads/RunLoopCore.h>

namespace {

NSRunLoop::Time timeOf(const NSRef<NSDate>& date, const NSRunLoopCore& core) {
  return core.timeAfter(NSDelay(date->timeIntervalSinceNow()).duration());
}

}  // namespace

const NSRef<NSString>& NSDefaultRunLoopMode() {
  return NSConstantString<u"NSDefaultRunLoopMode">();
}

const NSRef<NSString>& NSRunLoopCommonModes() {
  return NSConstantString<u"NSRunLoopCommonModes">();
}

NSRunLoop::NSRunLoop(NSPasskey<NSThread> /*key*/) : _core(std::make_unique<NSRunLoopCore>()) {}

NSRunLoop::~NSRunLoop() { _core->end(); }

NSRef<NSRunLoop> NSRunLoop::currentRunLoop() { return NSThread::currentThread()->runLoop(); }

NSRef<NSRunLoop> NSRunLoop::mainRunLoop() { return NSThread::mainThread()->runLoop(); }

// For an operation that only the run loop's own thread may ask for.
NSRunLoopCore& NSRunLoop::ownCore(const char* operation) const {
  // What dies with a thread may still use its run loop, to no effect.
  if (!_core->isEnded() && NSRunLoopCore::current() != _core.get()) {
    NSException::raise(NSInternalInconsistencyException,
                       std::string("the run loop is another thread's (in '") + operation + "')");
  }
  return *_core;
}

void NSRunLoop::post(NSOnceClosure&& work, const NSRef<NSArray>& modes) {
  _core->post(std::move(work), modes);
}

void NSRunLoop::addCommonMode(const NSRef<NSString>& mode) {
  auto& core = ownCore("addCommonMode:");
  if (!mode) NSRaiseNilArgument("mode", "addCommonMode:");
  core.addCommonMode(mode->copy());
}

void NSRunLoop::addTimer_forMode(const NSRef<NSTimer>& timer, const NSRef<NSString>& mode) {
  auto& core = ownCore("addTimer:forMode:");
  if (!timer) NSRaiseNilArgument("timer", "addTimer:forMode:");
  if (!mode) NSRaiseNilArgument("mode", "addTimer:forMode:");
  timer->addTo(core, mode);
}

void NSRunLoop::addSource_forMode(const NSRef<NSDescriptorSource>& source,
                                  const NSRef<NSString>& mode) {
  auto& core = ownCore("addSource:forMode:");
  if (!source) NSRaiseNilArgument("source", "addSource:forMode:");
  if (!mode) NSRaiseNilArgument("mode", "addSource:forMode:");
  core.addSource(source, mode);
}

NSRef<NSString> NSRunLoop::currentMode() const { return _core->currentMode(); }

void NSRunLoop::setClock(std::function<Time()> clock) {
  ownCore("setClock:").setClock(std::move(clock));
}

void NSRunLoop::setManualClock(const NSRef<NSManualClock>& clock) {
  ownCore("setClock:").setClock(clock);
}

NSRef<NSDate> NSRunLoop::limitDateForMode(const NSRef<NSString>& mode) {
  auto& core = ownCore("limitDateForMode:");
  if (!mode) NSRaiseNilArgument("mode", "limitDateForMode:");
  if (!core.canRunIn(mode)) return nullptr;
  // What runs may change the caller's own reference.
  const auto next = core.makePass(NSRef(mode));
  if (!next) return NSDate::distantFuture();
  return NSDate::dateWithTimeIntervalSinceNow(
      std::chrono::duration<NSTimeInterval>(*next - core.now()).count());
}

bool NSRunLoop::runMode_beforeDate(const NSRef<NSString>& mode, const NSRef<NSDate>& limitDate) {
  auto& core = ownCore("runMode:beforeDate:");
  if (!mode) NSRaiseNilArgument("mode", "runMode:beforeDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runMode:beforeDate:");
  if (!core.canRunIn(mode)) return false;
  core.run(NSRef(mode), timeOf(limitDate, core), /*goesOn=*/false);
  return true;
}

void NSRunLoop::runUntilDate(const NSRef<NSDate>& limitDate) {
  auto& core = ownCore("runUntilDate:");
  if (!limitDate) NSRaiseNilArgument("limitDate", "runUntilDate:");
  if (core.isEnded()) return;
  core.run(NSDefaultRunLoopMode(), timeOf(limitDate, core), /*goesOn=*/true);
}

void NSRunLoop::run() {
  auto& core = ownCore("run");
  // A date would come by a clock that is moved far enough.
  if (!core.isEnded()) core.run(NSDefaultRunLoopMode(), std::nullopt, /*goesOn=*/true);
}

void NSRunLoop::stop() { ownCore("stop").stop(); }

int NSRunLoop::wakeUpDescriptor() { return ownCore("wakeUpDescriptor").descriptor(); }

NSRef<NSArray> NSRunLoop::pendingWork() const { return ownCore("pendingWork").pendingWork(); }

std::optional<std::chrono::nanoseconds> NSRunLoop::performPass() {
  auto& core = ownCore("performPass");
  return core.isEnded() ? std::nullopt : core.makeHostedPass(NSDefaultRunLoopMode());
}

std::optional<std::chrono::nanoseconds> NSRunLoop::performPassInMode(const NSRef<NSString>& mode) {
  auto& core = ownCore("performPassInMode:");
  if (!mode) NSRaiseNilArgument("mode", "performPassInMode:");
  // What runs may change the caller's own reference.
  return core.canRunIn(mode) ? core.makeHostedPass(NSRef(mode)) : std::nullopt;
}
