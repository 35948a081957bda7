#pragma once

#include "examples/sketchbook/model/Task.h"
#include "examples/sketchbook/view/Bridge.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

namespace sketchbook {

/// Shows how far the last task is that was begun, with a button that cancels it. A task that ends
/// soon is never seen.
class TaskBar : public QWidget {
 public:
  TaskBar();
  void follow(const NSRef<Task>& task);

 private:
  void showTask();

  NSRef<Task> _task;
  QLabel* _title = new QLabel;
  QProgressBar* _progress = new QProgressBar;
  QPushButton* _cancel = new QPushButton;
  const NSRef<WidgetLife> _life = NSMake<WidgetLife>();
  NSObservation _observation;
};

}  // namespace sketchbook
