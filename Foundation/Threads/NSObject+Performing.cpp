#include "Foundation/NSObject.h"

#include <utility>

#include <Foundation/NSArray.h>
#include <Foundation/NSDelay.h>
#include <Foundation/NSException.h>
#include <Foundation/NSSelector.h>
#include <Foundation/NSString.h>
#include <Foundation/NSThread.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/RunLoopCore.h>

namespace {

// Nil modes are the common ones.
void perform(NSRef<NSObject> receiver, NSSelector selector, const NSRef<NSThread>& thread,
             NSRef<NSObject> object, bool wait, const NSRef<NSArray>& modes) {
  constexpr auto operation = "performSelector:onThread:withObject:waitUntilDone:";
  if (!thread) NSRaiseNilArgument("thread", operation);
  if (wait && thread.is(NSThread::currentThread())) return selector.perform(receiver, object);
  NSOnceClosure work([target = std::move(receiver), selector, argument = std::move(object)] {
    selector.perform(target, argument);
  });
  const auto runLoop = thread->runLoop();
  auto& core = NSAccess::core(*runLoop);
  if (!wait) return core.post(std::move(work), modes);
  if (core.postAndWait(std::move(work), modes)) return;
  NSRaiseEndlessWait(thread->description()->utf8(), operation);
}

}  // namespace

void NSObject::performSelector_withObject_afterDelay(NSSelector aSelector, NSRef<NSObject> object,
                                                     NSDelay delay) {
  performSelector_withObject_afterDelay_inModes(aSelector, std::move(object), delay,
                                                NSDefaultRunLoopModes());
}

void NSObject::performSelector_withObject_afterDelay_inModes(NSSelector aSelector,
                                                             NSRef<NSObject> object, NSDelay delay,
                                                             const NSRef<NSArray>& modes) {
  if (!modes || modes->count() == 0) return;
  auto* const loop = NSRunLoopCore::current();
  if (loop == nullptr) return;
  loop->schedule(loop->delayedPerforms().make(self(), aSelector, std::move(object)), modes,
                 loop->timeAfter(delay.duration()));
}

NSUInteger NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
    const NSRef<NSObject>& aTarget, NSSelector aSelector, const NSRef<NSObject>& object) {
  auto* const loop = NSRunLoopCore::current();
  return loop != nullptr ? loop->delayedPerforms().cancel(aTarget, aSelector, object) : 0;
}

void NSObject::performSelector_onThread_withObject_waitUntilDone(NSSelector aSelector,
                                                                 const NSRef<NSThread>& thread,
                                                                 NSRef<NSObject> object,
                                                                 bool wait) {
  perform(self(), aSelector, thread, std::move(object), wait, nullptr);
}

void NSObject::performSelector_onThread_withObject_waitUntilDone_modes(
    NSSelector aSelector, const NSRef<NSThread>& thread, NSRef<NSObject> object, bool wait,
    const NSRef<NSArray>& modes) {
  if (modes && modes->count() > 0)
    perform(self(), aSelector, thread, std::move(object), wait, modes);
}

void NSObject::performSelectorOnMainThread_withObject_waitUntilDone(NSSelector aSelector,
                                                                    NSRef<NSObject> object,
                                                                    bool wait) {
  perform(self(), aSelector, NSThread::mainThread(), std::move(object), wait, nullptr);
}

void NSObject::performSelectorOnMainThread_withObject_waitUntilDone_modes(
    NSSelector aSelector, NSRef<NSObject> object, bool wait, const NSRef<NSArray>& modes) {
  performSelector_onThread_withObject_waitUntilDone_modes(aSelector, NSThread::mainThread(),
                                                          std::move(object), wait, modes);
}

void NSObject::performSelectorInBackground_withObject(NSSelector aSelector,
                                                      NSRef<NSObject> object) {
  NSThread::detachNewThreadSelector_toTarget_withObject(aSelector, self(), std::move(object));
}
