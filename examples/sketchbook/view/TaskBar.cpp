#include "examples/sketchbook/view/TaskBar.h"

#include "examples/sketchbook/view/Bridge.h"

#include <QHBoxLayout>

using namespace std::chrono_literals;
using namespace ZKFoundationExtensions;

namespace sketchbook {

TaskBar::TaskBar() {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  for (QWidget* const part : {static_cast<QWidget*>(_title), static_cast<QWidget*>(_progress),
                              static_cast<QWidget*>(_cancel)}) {
    row->addWidget(part);
  }
  _progress->setRange(0, 100);
  _cancel->setText(inLanguage(u"Cancel"_ns));
  connect(_cancel, &QPushButton::clicked, this, [this] {
    if (_task) _task->cancel();
  });
  hide();
}

void TaskBar::follow(const NSRef<Task>& task) {
  _task = task;
  _title->setText(toQt(task->title()));
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {center, center->addObserverForName_object_queue_usingBlock(
                              TaskDidChange(), task, nullptr, [this] { showTask(); })};
  performBlock_afterDelay(
      NSWeakRef(_life), [this, task] { setVisible(_task.is(task) && task->isRunning()); }, 200ms);
}

void TaskBar::showTask() {
  _progress->setValue(static_cast<int>(_task->progress() * 100));
  if (_task->isRunning()) return;
  hide();
  _task = nullptr;
}

}  // namespace sketchbook
