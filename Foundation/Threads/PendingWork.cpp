#include "Foundation/Threads/PendingWork.h"

#include <array>
#include <cstdio>

#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/QueuedNotifications.h>
#include <Foundation/Threads/RunLoopCore.h>

std::string NSSecondsText(std::chrono::duration<double> seconds) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%g s", seconds.count());
  return text.data();
}

std::string NSPendingWork::textOf(const NSOnceClosure& work) {
  return "block " + NSClass(work.type()).name()->utf8();
}

std::string NSPendingWork::textOf(const NSRef<NSArray>& modes) {
  if (!modes) return ", in the common modes";
  std::string text;
  for (const auto& mode : modes)
    text += (text.empty() ? ", in " : ", ") + mode->description()->utf8();
  return text;
}

NSRef<NSArray> NSRunLoopCore::pendingWork() {
  NSPendingWork pending;
  collect();
  // What has been taken from the inbox is still to be done.
  signal();
  const Time time = now();
  _waiting.forEachWithModes([&](const Waiting& group, const NSRef<NSArray>& modes) {
    const auto where = NSPendingWork::textOf(modes);
    group.requests.forEach([&](const NSRunLoopInbox::Request& request) {
      pending.add(NSPendingWork::textOf(request.work) + where);
    });
    group.schedule.forEach([&](const NSScheduledEvent& event, Time due) {
      pending.add(event.purpose() + ", due in " + NSSecondsText(NSTimeUntil(due, time)) + where);
    });
  });
  _sources.forEach([&](const NSDescriptorSource& source, const NSRef<NSString>& mode) {
    pending.add("descriptor " + std::to_string(source.descriptor()) + ", in " + mode->utf8());
  });
  if (!_notifications) return pending.lines();
  NSAccess::core(*_notifications)
      .forEach([&](const NSNotification& notification, NSPostingStyle style, const auto& modes) {
        const auto& object = NSAccess::object(notification);
        pending.add("notification " + NSAccess::name(notification)->utf8() +
                    (object ? " of " + object->objectClass().name()->utf8() : "") +
                    (style == NSPostWhenIdle ? ", when idle" : "") + NSPendingWork::textOf(modes));
      });
  return pending.lines();
}
