#include "Foundation/NSArray.h"
#include "Foundation/NSDelay.h"
#include "Foundation/NSException.h"
#include "Foundation/NSModeGroups.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSSelector.h"
#include "Foundation/NSString.h"
#include "Foundation/NSThread.h"

namespace {

// Nil modes are the common ones.
void perform(NSRef<NSObject> receiver, NSSelector selector, const NSRef<NSThread>& thread,
             const NSRef<NSObject>& object, bool wait, const NSRef<NSArray>& modes) {
  if (!thread) {
    NSRaiseNilArgument("thread", "performSelector:onThread:withObject:waitUntilDone:");
  }
  if (wait && thread == NSThread::currentThread()) return selector.perform(receiver, object);
  NSWork work([target = std::move(receiver), selector, argument = NSRef(object)] {
    selector.perform(target, argument);
  });
  const auto runLoop = thread->runLoop();
  if (wait) {
    runLoop->postAndWait(std::move(work), modes);
  } else {
    runLoop->post(std::move(work), modes);
  }
}

}  // namespace

void NSObject::performSelector_withObject_afterDelay(NSSelector aSelector,
                                                     const NSRef<NSObject>& object, NSDelay delay) {
  performSelector_withObject_afterDelay_inModes(aSelector, object, delay, NSDefaultRunLoopModes());
}

void NSObject::performSelector_withObject_afterDelay_inModes(NSSelector aSelector,
                                                             const NSRef<NSObject>& object,
                                                             NSDelay delay,
                                                             const NSRef<NSArray>& modes) {
  if (!modes || modes->count() == 0) return;
  NSRunLoop::currentRunLoop()->schedulePerform(self(), aSelector, object, delay, modes);
}

void NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(
    const NSRef<NSObject>& aTarget, NSSelector aSelector, const NSRef<NSObject>& object) {
  NSRunLoop::currentRunLoop()->cancelPerforms(aTarget, aSelector, object);
}

void NSObject::performSelector_onThread_withObject_waitUntilDone(NSSelector aSelector,
                                                                 const NSRef<NSThread>& thread,
                                                                 const NSRef<NSObject>& object,
                                                                 bool wait) {
  perform(self(), aSelector, thread, object, wait, nullptr);
}

void NSObject::performSelector_onThread_withObject_waitUntilDone_modes(
    NSSelector aSelector, const NSRef<NSThread>& thread, const NSRef<NSObject>& object, bool wait,
    const NSRef<NSArray>& modes) {
  if (modes && modes->count() > 0) perform(self(), aSelector, thread, object, wait, modes);
}

void NSObject::performSelectorOnMainThread_withObject_waitUntilDone(NSSelector aSelector,
                                                                    const NSRef<NSObject>& object,
                                                                    bool wait) {
  perform(self(), aSelector, NSThread::mainThread(), object, wait, nullptr);
}

void NSObject::performSelectorOnMainThread_withObject_waitUntilDone_modes(
    NSSelector aSelector, const NSRef<NSObject>& object, bool wait, const NSRef<NSArray>& modes) {
  performSelector_onThread_withObject_waitUntilDone_modes(aSelector, NSThread::mainThread(), object,
                                                          wait, modes);
}

void NSObject::performSelectorInBackground_withObject(NSSelector aSelector,
                                                      const NSRef<NSObject>& object) {
  NSThread::detachNewThreadSelector_toTarget_withObject(aSelector, self(), object);
}
