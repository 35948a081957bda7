#include "examples/sketchbook/model/Task.h"
#include "tests/RunLoops.h"

using namespace sketchbook;

TEST(SketchbookTask, givesItsResultToTheMainThread) {
  const auto queue = dispatch_queue_create("tasks", DISPATCH_QUEUE_SERIAL);
  std::vector<double> shown;
  NSRef<NSObject> given;
  const auto task = Task::start(
      u"Count"_ns, queue,
      [](const Progress& progress) {
        for (int k = 0; k <= 1000; ++k) EXPECT_TRUE(progress(k / 1000.0));
        return u"done"_ns;
      },
      [&](const NSRef<NSObject>& result) { given = result; });
  const NSObservation observation(TaskDidChange(), task,
                                  [&] { shown.push_back(task->progress()); });
  dispatch_sync(queue, [] {});
  EXPECT_TRUE(task->isRunning() && !given);
  makePass();
  makePass();
  EXPECT_EQ(given, u"done"_ns);
  EXPECT_FALSE(task->isRunning());
  // A thousand steps are shown as one for each pass.
  EXPECT_TRUE(!shown.empty() && shown.size() <= 2 && shown.back() == 1);
}

TEST(SketchbookTask, isSilentAfterItWasCancelled) {
  const auto queue = dispatch_queue_create("tasks", DISPATCH_QUEUE_SERIAL);
  bool isStopped = false;
  const auto task = Task::start(
      u"Wait"_ns, queue,
      [&](const Progress& progress) -> NSRef<NSObject> {
        while (progress(0.5)) std::this_thread::yield();
        isStopped = true;
        return u"too late"_ns;
      },
      [](const NSRef<NSObject>&) { ADD_FAILURE(); });
  task->cancel();
  dispatch_sync(queue, [] {});
  EXPECT_TRUE(isStopped && !task->isRunning());
  makePass();
  makePass();
}
