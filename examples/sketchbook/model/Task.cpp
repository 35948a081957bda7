#include "examples/sketchbook/model/Task.h"

#include <utility>

using namespace ZKFoundationExtensions;

namespace sketchbook {

const NSRef<NSString>& TaskDidChange() { return NSConstantString<u"TaskDidChange">(); }

NSRef<Task> Task::start(const NSRef<NSString>& title, const dispatch_queue_t& queue, Work work,
                        Completion completion) {
  auto task = NSMake<Task>(title, std::move(completion));
  task->noteChange();
  performBlock_onQueue_waitUntilDone(
      task,
      [work = std::move(work)](Task& self) {
        const auto result = work([&self](double progress) { return self.goOn(progress); });
        // What the completion holds is used, and dies, on the main thread.
        const auto finish = [result](Task& onMain) {
          if (const auto call = std::exchange(onMain._completion, nullptr)) call(result);
          onMain._progress = 1;
          onMain.noteChange();
        };
        performBlockOnMainThread_waitUntilDone(share(&self), finish, false);
      },
      queue, false);
  return task;
}

void Task::cancel() {
  _isCancelled = true;
  _completion = nullptr;
  noteChange();
}

bool Task::goOn(double progress) {
  // A hundred steps are as many as anybody sees.
  if (progress - _progress >= 0.01) {
    _progress = progress;
    noteChange();
  }
  return !_isCancelled;
}

void Task::noteChange() {
  enqueueNotificationInMainThread_postingStyle(
      NSNotification::notificationWithName_object(TaskDidChange(), self()), NSPostASAP);
}

}  // namespace sketchbook
