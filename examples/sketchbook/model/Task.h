#pragma once

#include "examples/sketchbook/model/Pictures.h"

#include <atomic>
#include <functional>

namespace sketchbook {

/// Posted on the main thread, once a pass, when tasks have begun, gone on or ended.
const NSRef<NSString>& TaskDidChange();

/// Work in the background that tells how far it is, and that can be stopped. Belongs to the main
/// thread, which starts and cancels it and gets its result.
class Task : public NSObject {
 public:
  /// Runs on a queue; gives nil when the progress said to stop.
  using Work = std::function<NSRef<NSObject>(const Progress&)>;
  using Completion = std::function<void(const NSRef<NSObject>& result)>;

  /// Begins the work. Unless it is cancelled before, the main thread gets its result.
  static NSRef<Task> start(const NSRef<NSString>& title, const dispatch_queue_t& queue, Work work,
                           Completion completion);

  Task(const NSRef<NSString>& aTitle, Completion completion)
      : _title(aTitle), _completion(std::move(completion)) {}

  const NSRef<NSString>& title() const { return _title; }
  /// Gives what part of the work is done, 0 to 1.
  double progress() const { return _progress; }
  bool isRunning() const { return static_cast<bool>(_completion); }
  /// Stops the work; then nobody gets its result.
  void cancel();

 private:
  void noteChange();
  bool goOn(double progress);

  NSRef<NSString> _title;
  Completion _completion;
  std::atomic<double> _progress = 0;
  std::atomic<bool> _isCancelled = false;
};

}  // namespace sketchbook
