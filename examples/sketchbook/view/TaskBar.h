#pragma once

#include "examples/sketchbook/model/Task.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

/// Has the tasks of a window, one after the other, and shows how far the first one is with a button
/// that cancels it. Tasks that end soon are never seen; when the window goes, all are cancelled.
class TaskBar : public QWidget {
 public:
  TaskBar() {
    auto* const cancel = new QPushButton(inLanguage(u"Cancel"_ns));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(_title);
    row->addWidget(_progress);
    row->addWidget(cancel);
    connect(cancel, &QPushButton::clicked, this, [this] {
      if (!_tasks.empty()) _tasks.front()->cancel();
    });
    hide();
  }
  ~TaskBar() override {
    for (const auto& task : _tasks) task->cancel();
  }

  NSRef<Task> start(const NSRef<NSString>& title, Task::Work work, Task::Completion completion) {
    auto task = Task::start(localized(title), _queue, std::move(work), std::move(completion));
    _tasks.push_back(task);
    ZKFoundationExtensions::performBlock_afterDelay(
        NSWeakRef(_life), [this, task] { setVisible(isVisible() || task->isRunning()); }, 0.2);
    return task;
  }

 private:
  void showTasks() {
    std::erase_if(_tasks, [](const NSRef<Task>& task) { return !task->isRunning(); });
    if (_tasks.empty()) return hide();
    _title->setText(toQt(_tasks.front()->title()));
    _progress->setValue(static_cast<int>(_tasks.front()->progress() * 100));
  }

  const dispatch_queue_t _queue = dispatch_queue_create("sketchbook", DISPATCH_QUEUE_SERIAL);
  std::vector<NSRef<Task>> _tasks;
  QLabel* _title = new QLabel;
  QProgressBar* _progress = new QProgressBar;
  const NSRef<WidgetLife> _life = NSMake<WidgetLife>();
  const NSObservation _observation{TaskDidChange(), nullptr, [this] { showTasks(); }};
};

}  // namespace sketchbook
